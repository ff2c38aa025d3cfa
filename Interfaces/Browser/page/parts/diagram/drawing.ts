// SPDX-License-Identifier: MIT
// The one drawing of a diagram, on any surface: curves, texts on lines, the critical point, states and paths.
import type { Diagram, Isoline, Library, Polyline, UnitSystem } from "../../../core/library";
import { unitText } from "../../numbers";
import { roundText, ShownAxis } from "./axes";
import { Box, Crowd, distancesAlong, type Path, pointAlong, visible } from "./lines";
import type { Palette } from "./palette";
import { type Surface, textWidth } from "./surface";
import { heightOf, type Place, Plane, widthOf } from "./view";

/** A state with its name on the diagram [SI]. */
export interface Mark {
  readonly x: number;
  readonly y: number;
  readonly name: string;
}

/** A line through states [SI]. */
export interface DrawnPath {
  readonly points: readonly Polyline[];
  readonly marks: readonly Mark[];
  /** Whether it is an old one that no longer holds. */
  readonly faded?: boolean;
}

/** What is drawn. */
export interface Scene {
  readonly diagram?: Diagram;
  readonly states: readonly Mark[];
  readonly path?: DrawnPath;
  /** The place of the cross hair [SI]. */
  readonly pointer?: Place;
  /** What stands above a saved drawing. */
  readonly heading?: string;
}

const labelSize = 11;
const markSize = 12;

interface DrawnLine {
  readonly of: Isoline;
  readonly parts: Path[];
}

/** Draws curves and states. Returns the boxes of all texts on lines. */
export class Drawing {
  /** Texts on the drawing: nothing else may be written over them. */
  readonly texts: Box[] = [];
  readonly axes: { readonly x: ShownAxis; readonly y: ShownAxis };
  private readonly crowd: Crowd;

  constructor(
    private readonly library: Library,
    private readonly surface: Surface,
    private readonly plane: Plane,
    private readonly palette: Palette,
    private readonly units: UnitSystem,
  ) {
    this.crowd = new Crowd(plane.frame);
    this.axes = {
      x: new ShownAxis(library, plane, plane.kind.x, units),
      y: new ShownAxis(library, plane, plane.kind.y, units),
    };
  }

  draw(scene: Scene): void {
    const { surface, plane, palette } = this;
    const lines = (scene.diagram?.lines ?? []).map((of): DrawnLine => ({
      of,
      parts: of.pieces.flatMap((piece) => visible(piece, plane)),
    }));
    const dome = scene.diagram ? visible(scene.diagram.dome, plane) : [];
    surface.clipped(plane.frame, () => {
      if (scene.diagram) this.drawMixture(scene.diagram);
      this.drawGrid();
      for (const { of, parts } of lines)
        surface.lines(parts, {
          color: palette.lines[of.what],
          width: of.what === "q" ? 0.9 : 1.1,
          ...(of.what === "q" && { dashes: [4, 4] }),
        });
      surface.lines(dome, { color: palette.dome, width: 2 });
    });
    for (const { parts } of lines) this.crowd.add(parts);
    this.crowd.add(dome);
    if (scene.path) this.drawPath(scene.path);
    this.drawCritical(scene.diagram);
    for (const state of scene.states) this.drawMark(state, palette.state);
    for (const line of lines) this.label(line);
    this.drawFrame();
    if (scene.pointer) this.drawPointer(scene.pointer);
  }

  private place(x: number, y: number): Place {
    return this.plane.place(x, y);
  }

  /** The region of mixtures of liquid and vapor, which the saturation line encloses. */
  private drawMixture({ dome, kind }: Diagram): void {
    if (!dome.length || kind.x === "t") return;
    const finite = (place: number) => Math.min(Math.max(place, -1e7), 1e7);
    const outline = new Float64Array(dome.length);
    for (let i = 0; i < dome.length; i += 2) {
      outline[i] = finite(this.plane.x.place(dome[i]!));
      outline[i + 1] = finite(this.plane.y.place(dome[i + 1]!));
    }
    this.surface.area(outline, this.palette.mixture);
  }

  private drawGrid(): void {
    const { left, right, top, bottom } = this.plane.frame;
    const { x, y } = this.axes;
    const lines = [
      ...x.numbered.map((tick) => Float64Array.of(x.scale(tick), top, x.scale(tick), bottom)),
      ...y.numbered.map((tick) => Float64Array.of(left, y.scale(tick), right, y.scale(tick))),
    ];
    this.surface.lines(lines, { color: this.palette.grid, width: 1 });
  }

  private drawFrame(): void {
    const { left, right, top, bottom } = this.plane.frame;
    const outline = Float64Array.of(left, top, right, top, right, bottom, left, bottom, left, top);
    this.surface.lines([outline], { color: this.palette.faint, width: 1 });
  }

  private drawPath(path: DrawnPath): void {
    const parts = path.points.flatMap((points) => visible(points, this.plane));
    const color = path.faded ? this.palette.faint : this.palette.path;
    this.surface.lines(parts, { color, width: 2.4, ...(path.faded && { dashes: [6, 5] }) });
    this.crowd.add(parts);
    if (!path.faded) for (const mark of path.marks) this.drawMark(mark, color);
  }

  private drawCritical(diagram: Diagram | undefined): void {
    if (!diagram?.critical) return;
    const at = this.place(...diagram.critical);
    if (!this.plane.contains(at)) return;
    this.surface.disc(at, 3.6, this.palette.paper, { color: this.palette.dome, width: 1.8 });
    this.texts.push(new Box(at, 10, 10));
  }

  /** A point with its name beside it, where there is room. */
  private drawMark(mark: Mark, color: string): void {
    const at = this.place(mark.x, mark.y);
    if (!this.plane.contains(at)) return;
    const width = textWidth(mark.name, markSize, true) + 4;
    const away = 5 + width / 2;
    const boxes = [
      [away, -9],
      [-away, -9],
      [away, 10],
      [-away, 10],
      [0, -15],
      [0, 16],
      [away + 4, 0],
      [-away - 4, 0],
    ].map(([x = 0, y = 0]) => new Box({ x: at.x + x, y: at.y + y }, width, markSize + 2));
    const free = boxes.filter((box) => box.isIn(this.plane.frame));
    const best = free.find((box) => this.texts.every((text) => text.isApartFrom(box))) ?? free[0] ?? boxes[0]!;
    this.surface.disc(at, 4.2, color, { color: this.palette.paper, width: 1.4 });
    this.surface.box(best.corners, this.palette.paper);
    this.surface.text(mark.name, best.center, { size: markSize, color, bold: true });
    this.texts.push(best, new Box(at, 10, 10));
  }

  private drawPointer(pointer: Place): void {
    const at = this.place(pointer.x, pointer.y);
    if (!this.plane.contains(at)) return;
    const { left, right, top, bottom } = this.plane.frame;
    const hairs = [Float64Array.of(left, at.y, right, at.y), Float64Array.of(at.x, top, at.x, bottom)];
    this.surface.lines(hairs, { color: this.palette.state, width: 0.8, dashes: [3, 3] });
    this.surface.disc(at, 3, this.palette.paper, { color: this.palette.state, width: 1.6 });
  }

  private labelOf(line: Isoline): string {
    const unit = this.library.units.shown(this.library.properties[line.what].si, this.units);
    return roundText(this.library.units.to(line.value, unit));
  }

  /** Writes the value of a line into it, where it is straight and crosses few others; not at all if it has no room. */
  private label({ of, parts }: DrawnLine): void {
    const text = this.labelOf(of);
    const width = textWidth(text, labelSize);
    // A minus sign must not look like a piece of the line.
    const gap = text.startsWith("−") ? 14 : 7;
    let least = 5; // A text that hides more than this is worse than none.
    let best: Box | undefined;
    for (const part of parts) {
      const distances = distancesAlong(part);
      const length = distances[distances.length - 1]!;
      if (length < 2 * width) continue;
      const places = Math.min(24, Math.floor(length / 14));
      for (let i = 1; i < places; ++i) {
        const share = i / places;
        const middle = share * length;
        if (middle < 0.6 * width || middle > length - 0.6 * width) continue;
        const before = pointAlong(part, distances, middle - width / 2);
        const after = pointAlong(part, distances, middle + width / 2);
        const on = pointAlong(part, distances, middle);
        const center = { x: (before.x + after.x) / 2, y: (before.y + after.y) / 2 };
        const bend = Math.hypot(on.x - center.x, on.y - center.y);
        if (bend > 0.3 * labelSize || Math.hypot(after.x - before.x, after.y - before.y) < 0.9 * width) continue;
        let angle = Math.atan2(after.y - before.y, after.x - before.x);
        if (angle > Math.PI / 2 + 1e-3) angle -= Math.PI;
        else if (angle <= -Math.PI / 2 + 1e-3) angle += Math.PI;
        const box = new Box(center, width + gap, 1.05 * labelSize, angle);
        if (!box.isIn(this.plane.frame)) continue;
        const cost = this.crowd.along(box) + 0.6 * Math.abs(share - 0.8) + bend / labelSize;
        if (cost >= least || !this.texts.every((other) => other.isApartFrom(box))) continue;
        least = cost;
        best = box;
      }
    }
    if (!best) return;
    this.surface.box(best.corners, this.palette.paper);
    this.surface.text(text, best.center, { size: labelSize, color: this.palette.lines[of.what], angle: best.angle });
    this.texts.push(best);
  }

  /** What the colors mean, in one row above the frame, and the heading. For drawings that leave the page. */
  drawKey(scene: Scene): void {
    const { left, right, top } = this.plane.frame;
    const families = [...new Set((scene.diagram?.lines ?? []).map((line) => line.what))];
    let at = right;
    for (const letter of families.reverse()) {
      const property = this.library.properties[letter];
      const unit = unitText(this.library.units.shown(property.si, this.units).name);
      const text = `${property.symbol}${unit ? ` in ${unit}` : ""}`;
      at -= textWidth(text, labelSize);
      this.surface.text(text, { x: at, y: top - 12 }, { size: labelSize, color: this.palette.ink, anchor: "start" });
      at -= 26;
      this.surface.lines([Float64Array.of(at, top - 12, at + 20, top - 12)], {
        color: this.palette.lines[letter],
        width: 1.6,
        ...(letter === "q" && { dashes: [4, 4] }),
      });
      at -= 14;
    }
    const heading = { size: markSize + 1, color: this.palette.ink, bold: true, anchor: "start" } as const;
    if (scene.heading) this.surface.text(scene.heading, { x: left, y: top - 12 }, heading);
  }
}

/** The middle of a plane's frame. */
export const middleOf = ({ frame }: Plane): Place => ({
  x: frame.left + widthOf(frame) / 2,
  y: frame.top + heightOf(frame) / 2,
});
