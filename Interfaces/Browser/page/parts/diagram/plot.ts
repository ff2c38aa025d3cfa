// SPDX-License-Identifier: MIT
// A diagram on the screen that follows gestures and keys.
//
// At each frame of a gesture the curves are computed anew for what is visible. If that takes too long for a frame, the
// last curves are drawn in the new view at most frames. Each frame tells its times by the event "frame" of the host.
import { pointer, select } from "d3-selection";
import { zoom, zoomIdentity, type D3ZoomEvent, type ZoomTransform } from "d3-zoom";
import { LibraryError, type Diagram, type Fluid, type Library, type UnitSystem } from "../../../core/library";
import { drawAxes, ShownAxis } from "./axes";
import { Drawing, type DrawnPath, type Mark, middleOf, type Scene } from "./drawing";
import { Box } from "./lines";
import { dark, light, type Palette } from "./palette";
import { CanvasSurface, SvgSurface, svgElement, textWidth } from "./surface";
import { containing, type Frame, kindNamed, limited, type Place, Plane, type View } from "./view";

/** The buttons over the frame's upper right corner [px]. */
const buttonsWidth = 140;
const buttonsHeight = 48;

/** What a plot shows. It is never changed, but replaced. */
export interface Shown {
  readonly fluid: Fluid;
  readonly kind: string;
  readonly units: UnitSystem;
  /** Letters of the isolines. */
  readonly families: string;
  /** Chosen from the fluid if not given. */
  readonly view?: View;
  readonly states: readonly Mark[];
  readonly path?: DrawnPath;
}

export interface PlotEvents {
  /** A gesture has ended; nothing is the automatic view. */
  viewed(view: View | undefined): void;
  /** The place under the pointer or under the cross hair [SI]; nothing outside of the diagram. */
  pointed(at: Place | undefined, byKey: boolean): void;
  put(at: Place): void;
  /** Takes the last state away. */
  takeBack(): void;
  /** The curves have been computed; or there are none, with the reason. */
  computed(diagram: Diagram | undefined, problem: string): void;
}

/** The times of a frame [ms]. */
export interface FrameTimes {
  readonly curves: number;
  readonly drawing: number;
}

/** Curves that take longer would cost frames [ms]. */
const budget = 9;
/** They are computed again when so many times their cost has passed. */
const patience = 4;
/** Between two tellings of the place under the pointer during a gesture [ms]. */
const numbersPause = 60;
/** Two clicks in this time are a double click [ms]. */
const twoClicks = 700;

const isNarrow = (width: number): boolean => width < 480;
const axesSize = (width: number): number => (isNarrow(width) ? 11 : 12);
const marginsOf = (width: number): Frame =>
  isNarrow(width) ? { left: 48, right: 14, top: 8, bottom: 42 } : { left: 56, right: 20, top: 10, bottom: 46 };

export class Plot {
  private readonly canvas = document.createElement("canvas");
  private readonly svg = svgElement("svg", { "aria-hidden": "true" });
  private readonly axes = this.svg.appendChild(svgElement("g"));
  private readonly observer = new ResizeObserver(() => this.ask());
  private readonly darkness = matchMedia("(prefers-color-scheme: dark)");
  private readonly stillness = matchMedia("(prefers-reduced-motion: reduce)");
  private shown: Shown | undefined;
  private view: View | undefined;
  private automatic: View | undefined;
  private plane: Plane | undefined;
  private diagram: Diagram | undefined;
  private problem = "";
  private stale = true;
  private moving = false;
  /** What the last curves cost, and when they were ready [ms]. */
  private cost = 0;
  private ready = 0;
  /** The place of the cross hair on the screen. */
  private hair: Place | undefined;
  private hairByKey = false;
  private pointed: Place | undefined;
  /** When the page was told it [ms]. */
  private told = -Infinity;
  private left = 0;
  /** When a click put a state down. */
  private clicked = -Infinity;
  private request = 0;
  private timer: ReturnType<typeof setTimeout> | undefined;
  private last: ZoomTransform = zoomIdentity;

  constructor(
    private readonly library: Library,
    private readonly host: HTMLElement,
    private readonly layer: HTMLElement,
    private readonly events: PlotEvents,
  ) {
    host.prepend(this.canvas, this.svg);
    this.observer.observe(host);
    this.darkness.addEventListener("change", this.ask);
    addEventListener("resize", this.ask);
    this.listen();
  }

  destroy(): void {
    this.observer.disconnect();
    this.darkness.removeEventListener("change", this.ask);
    removeEventListener("resize", this.ask);
    cancelAnimationFrame(this.request);
    clearTimeout(this.timer);
    this.canvas.remove();
    this.svg.remove();
  }

  show(shown: Shown): void {
    const before = this.shown;
    this.shown = shown;
    const same = before?.fluid === shown.fluid && before.kind === shown.kind && before.units === shown.units;
    if (!same) {
      this.automatic = undefined;
      this.diagram = undefined;
    }
    if (!same || !isSameView(shown.view, before.view)) {
      this.view = shown.view;
      this.stale = true;
    }
    if (shown.families !== before?.families) this.stale = true;
    if (shown.path !== before?.path) this.stretch();
    this.ask();
  }

  // ---- Frames

  private readonly ask = (): void => {
    this.request ||= requestAnimationFrame(() => {
      this.request = 0;
      this.drawFrame();
    });
  };

  private drawFrame(): void {
    if (!this.shown || !this.host.clientWidth) return;
    const began = performance.now();
    if (this.stale) {
      const wait = this.moving && this.cost > budget ? this.ready + patience * this.cost - began : 0;
      if (this.diagram && wait > 0) this.askLater(wait);
      else this.compute();
    }
    const computed = performance.now();
    this.render();
    this.tellPointed();
    const times: FrameTimes = { curves: computed - began, drawing: performance.now() - computed };
    this.host.dispatchEvent(new CustomEvent("frame", { detail: times }));
  }

  private askLater(wait: number): void {
    clearTimeout(this.timer);
    this.timer = setTimeout(this.ask, wait);
  }

  private compute(): void {
    const { fluid, kind, units, families } = this.shown!;
    this.stale = false;
    let began = performance.now();
    try {
      if (!this.automatic) {
        this.automatic = viewOf(this.library.curves(fluid, kind, { units, families: "" }));
        this.stretch();
      }
      this.view = limited(this.library, kindNamed(this.library, kind), this.view ?? this.automatic, this.automatic);
      const { x, y } = this.view;
      began = performance.now();
      this.diagram = this.library.curves(fluid, kind, { units, families, x, y });
      this.problem = "";
    } catch (problem) {
      if (!(problem instanceof LibraryError)) throw problem;
      this.diagram = undefined;
      this.problem = problem.message;
    }
    this.ready = performance.now();
    this.cost = this.ready - began;
    this.events.computed(this.diagram, this.problem);
  }

  /** The automatic view grows until it has the whole path, so that it does not jump while the path moves. */
  private stretch(): void {
    const { automatic, shown } = this;
    if (!automatic || !shown?.path || shown.path.faded) return;
    const stretched = containing(this.library, kindNamed(this.library, shown.kind), automatic, shown.path.points);
    if (stretched === automatic) return;
    if (!shown.view) [this.view, this.stale] = [stretched, true];
    this.automatic = stretched;
  }

  private frameOf(width: number, height: number, left: number): Frame {
    const { right, top, bottom } = marginsOf(width);
    return { left, top, right: width - right, bottom: height - bottom };
  }

  /** Room for the numbers of the vertical axis. It does not shrink while a gesture moves them. */
  private leftMargin(width: number, height: number, size: number): number {
    const least = marginsOf(width).left;
    const plane = this.planeIn(this.frameOf(width, height, least));
    if (!plane) return least;
    const { y } = plane.kind;
    const texts = [...new ShownAxis(this.library, plane, y, this.shown!.units).numbers().values()];
    const needed = Math.max(...texts.map((text) => textWidth(text, size))) + 1.8 * size + 14;
    this.left = Math.max(least, needed, this.moving ? this.left : 0);
    return Math.ceil(this.left);
  }

  private planeIn(frame: Frame): Plane | undefined {
    return this.view && new Plane(this.library, kindNamed(this.library, this.shown!.kind), this.view, frame);
  }

  private get palette(): Palette {
    return this.darkness.matches ? dark : light;
  }

  private render(): void {
    const { clientWidth: width, clientHeight: height } = this.host;
    const context = this.canvas.getContext("2d");
    const size = axesSize(width);
    this.plane = this.planeIn(this.frameOf(width, height, this.leftMargin(width, height, size)));
    if (!context) return;
    const ratio = devicePixelRatio || 1;
    const pixels = [Math.round(width * ratio), Math.round(height * ratio)] as const;
    if (this.canvas.width !== pixels[0] || this.canvas.height !== pixels[1])
      [this.canvas.width, this.canvas.height] = pixels;
    context.setTransform(ratio, 0, 0, ratio, 0, 0);
    context.fillStyle = this.palette.paper;
    context.fillRect(0, 0, width, height);
    this.svg.setAttribute("viewBox", `0 0 ${width} ${height}`);
    this.axes.style.display = this.plane ? "" : "none";
    if (!this.plane) return;
    const { units, states, path } = this.shown!;
    const drawing = new Drawing(this.library, new CanvasSurface(context), this.plane, this.palette, units);
    const pointed = this.hair && this.plane.value(this.hair);
    const { right, top } = this.plane.frame;
    const corner = { x: right - buttonsWidth / 2, y: top + buttonsHeight / 2 };
    drawing.texts.push(new Box(corner, buttonsWidth, buttonsHeight));
    drawing.draw({ diagram: this.diagram, states, path, pointer: pointed });
    drawAxes(this.axes, this.plane, drawing.axes, this.palette, size);
  }

  /** The drawing as an SVG document, in light colors. */
  save(heading: string, width = 1000, height = 700): string {
    const root = svgElement("svg", {
      xmlns: "http://www.w3.org/2000/svg",
      width,
      height,
      viewBox: `0 0 ${width} ${height}`,
    });
    root.append(svgElement("rect", { width, height, fill: light.paper }));
    const size = 13;
    const inner = this.frameOf(width, height, this.leftMargin(width, height, size));
    const plane = this.planeIn({ ...inner, top: inner.top + 24 });
    if (plane && this.shown) {
      const { units, states, path } = this.shown;
      const drawing = new Drawing(this.library, new SvgSurface(root), plane, light, units);
      const scene: Scene = { diagram: this.diagram, states, path, heading };
      drawing.draw(scene);
      drawing.drawKey(scene);
      drawAxes(root.appendChild(svgElement("g")), plane, drawing.axes, light, size);
    }
    return `<?xml version="1.0" encoding="UTF-8"?>\n${new XMLSerializer().serializeToString(root)}\n`;
  }

  // ---- The view

  private move(view: View): void {
    if (!this.automatic || !this.shown) return;
    this.view = limited(this.library, kindNamed(this.library, this.shown.kind), view, this.automatic);
    this.stale = true;
    this.ask();
  }

  /** Zooms around the cross hair, or else around the middle. */
  zoomBy(factor: number): void {
    if (!this.plane) return;
    const at = this.hair ?? middleOf(this.plane);
    this.move(this.plane.moved(at, at, factor));
    this.settle();
  }

  panBy(x: number, y: number): void {
    if (!this.plane) return;
    this.move(this.plane.moved({ x: 0, y: 0 }, { x, y }, 1));
    this.settle();
  }

  reset(): void {
    this.view = undefined;
    this.automatic = undefined;
    this.stale = true;
    this.ask();
    this.settle();
  }

  /** Tells the view that a gesture has reached. */
  private settle(): void {
    this.moving = false;
    if (this.stale) this.ask();
    const view = this.view === this.automatic ? undefined : this.view;
    // The page's answer must not compute the same curves again.
    if (this.shown) this.shown = { ...this.shown, view };
    this.events.viewed(view);
  }

  /** How far neighboring pixels are apart at a place [SI]. */
  resolutionAt(at: Place): Place {
    if (!this.plane) return { x: 0, y: 0 };
    const { x, y } = this.plane.place(at.x, at.y);
    const next = this.plane.value({ x: x + 1, y: y - 1 });
    return { x: Math.abs(next.x - at.x), y: Math.abs(next.y - at.y) };
  }

  // ---- Gestures and keys

  private listen(): void {
    const behavior = zoom<HTMLElement, unknown>()
      .scaleExtent([0, Infinity])
      .clickDistance(4)
      .on("start", (event: D3ZoomEvent<HTMLElement, unknown>) => {
        this.moving = true;
        // Of two taps, d3 keeps the second one for itself.
        if ((event.sourceEvent as Event | null)?.type === "touchend") this.takeClickBack();
      })
      .on("zoom", (event: D3ZoomEvent<HTMLElement, unknown>) => {
        const { transform } = event;
        const { last } = this;
        this.last = transform;
        // The frame may not be there yet: gestures between two frames count together.
        const plane = this.plane && this.planeIn(this.plane.frame);
        if (plane) this.move(plane.moved(last, transform, transform.k / last.k));
      })
      .on("end", () => {
        this.settle();
        this.forgetTransform();
      });
    const layer = select(this.layer);
    layer.call(behavior);
    const setDuration = () => behavior.duration(this.stillness.matches ? 0 : 200);
    setDuration();
    this.stillness.addEventListener("change", setDuration);
    layer
      .on("pointermove.hair pointerdown.hair", (event: PointerEvent) => {
        const [x, y] = pointer(event, this.layer);
        this.setHair({ x, y }, false);
      })
      .on("pointerleave.hair", (event: PointerEvent) => {
        if (event.pointerType === "mouse") this.setHair(undefined, false);
      })
      // The first click of two puts a state down; the second one takes it back, because two zoom.
      .on("click.put", (event: MouseEvent) => {
        if (event.detail > 1) {
          this.takeClickBack();
          return;
        }
        const [x, y] = pointer(event, this.layer);
        if (!this.plane?.contains({ x, y })) return;
        this.clicked = performance.now();
        this.events.put(this.plane.value({ x, y }));
      })
      .on("keydown.keys", (event: KeyboardEvent) => {
        if (this.key(event)) event.preventDefault();
      });
  }

  private takeClickBack(): void {
    if (performance.now() - this.clicked < twoClicks) this.events.takeBack();
    this.clicked = -Infinity;
  }

  /** The view is kept as ranges; the transform of d3 only counts from the beginning of a gesture. */
  private forgetTransform(): void {
    this.last = zoomIdentity;
    (this.layer as HTMLElement & { __zoom?: ZoomTransform }).__zoom = zoomIdentity;
  }

  private setHair(at: Place | undefined, byKey: boolean): void {
    this.hair = at && this.plane?.contains(at) ? at : undefined;
    this.hairByKey = byKey;
    this.ask();
  }

  private tellPointed(): void {
    const at = this.hair && this.plane?.value(this.hair);
    if (at?.x === this.pointed?.x && at?.y === this.pointed?.y) return;
    // In a gesture, the numbers of the page would take time from the curves.
    const wait = this.moving ? this.told + numbersPause - performance.now() : 0;
    if (at && wait > 0) {
      this.askLater(wait);
      return;
    }
    this.told = performance.now();
    this.pointed = at;
    this.events.pointed(at, this.hairByKey);
  }

  /** Whether a key means something. */
  private key(event: KeyboardEvent): boolean {
    const { plane } = this;
    if (!plane || event.altKey || event.metaKey) return false;
    const direction = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1] }[event.key];
    if (direction) {
      const [x = 0, y = 0] = direction;
      if (event.shiftKey) this.panBy(-60 * x, -60 * y);
      else this.stepHair(plane, x, y, event.ctrlKey ? 1 : 8);
      return true;
    }
    if (event.ctrlKey) return false;
    switch (event.key) {
      case "+":
      case "=":
        this.zoomBy(1.25);
        return true;
      case "-":
        this.zoomBy(1 / 1.25);
        return true;
      case "0":
      case "Home":
        this.reset();
        return true;
      case "Enter":
      case " ":
        if (this.hair) this.events.put(plane.value(this.hair));
        else this.setHair(middleOf(plane), true);
        return true;
      case "Delete":
      case "Backspace":
        this.events.takeBack();
        return true;
      case "Escape":
        this.setHair(undefined, true);
        return true;
      default:
        return false;
    }
  }

  private stepHair(plane: Plane, x: number, y: number, step: number): void {
    const { left, right, top, bottom } = plane.frame;
    const from = this.hair;
    const within = (place: number, low: number, high: number) => Math.min(Math.max(place, low), high);
    const to = from && { x: within(from.x + step * x, left, right), y: within(from.y + step * y, top, bottom) };
    this.setHair(to ?? middleOf(plane), true);
  }
}

const viewOf = ({ x, y }: Diagram): View => ({ x, y });
const isSameView = (a: View | undefined, b: View | undefined): boolean => JSON.stringify(a) === JSON.stringify(b);
