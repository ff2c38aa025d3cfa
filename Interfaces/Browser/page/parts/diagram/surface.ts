// SPDX-License-Identifier: MIT
// What the drawing of a diagram needs of a target, and the two targets: a canvas and an SVG document.
import type { Path } from "./lines";
import type { Frame, Place } from "./view";

export interface Stroke {
  readonly color: string;
  readonly width: number;
  /** Lengths of dashes and gaps [px]; none for a full line. */
  readonly dashes?: readonly number[];
}

export interface Lettering {
  readonly size: number;
  readonly color: string;
  readonly bold?: boolean;
  /** Around the middle of the text unless said otherwise. */
  readonly anchor?: "start" | "middle" | "end";
  readonly angle?: number;
}

/** Lengths are in px. */
export interface Surface {
  clipped(frame: Frame, draw: () => void): void;
  lines(paths: readonly Path[], stroke: Stroke): void;
  area(path: Path, color: string): void;
  /** A turned rectangle. */
  box(corners: readonly Place[], color: string): void;
  disc(center: Place, radius: number, fill: string, stroke?: Stroke): void;
  text(text: string, at: Place, lettering: Lettering): void;
}

export const fontFamily = 'system-ui, -apple-system, "Segoe UI", "DejaVu Sans", sans-serif';
const fontOf = (size: number, bold = false) => `${bold ? "600 " : ""}${size}px ${fontFamily}`;

const widths = new Map<string, number>();
let measuring: CanvasRenderingContext2D | null = null;

/** The width of a text; of a guess where there is no canvas. */
export function textWidth(text: string, size: number, bold = false): number {
  const key = `${size}${bold} ${text}`;
  let width = widths.get(key);
  if (width === undefined) {
    measuring ??= document.createElement("canvas").getContext("2d");
    if (measuring) measuring.font = fontOf(size, bold);
    width = measuring?.measureText(text).width ?? 0.6 * size * text.length;
    if (widths.size > 4000) widths.clear();
    widths.set(key, width);
  }
  return width;
}

/** From the middle of a text's letters down to its base line, as a part of its size. */
const baseLine = 0.35;

export class CanvasSurface implements Surface {
  constructor(private readonly to: CanvasRenderingContext2D) {
    to.lineJoin = "round";
    to.lineCap = "round";
  }

  clipped(frame: Frame, draw: () => void): void {
    this.to.save();
    this.to.beginPath();
    this.to.rect(frame.left, frame.top, frame.right - frame.left, frame.bottom - frame.top);
    this.to.clip();
    draw();
    this.to.restore();
  }

  private trace(path: Path): void {
    this.to.moveTo(path[0]!, path[1]!);
    for (let i = 2; i + 1 < path.length; i += 2) this.to.lineTo(path[i]!, path[i + 1]!);
  }

  private stroke(stroke: Stroke): void {
    this.to.strokeStyle = stroke.color;
    this.to.lineWidth = stroke.width;
    this.to.setLineDash((stroke.dashes ?? []) as number[]);
    this.to.stroke();
  }

  lines(paths: readonly Path[], stroke: Stroke): void {
    this.to.beginPath();
    for (const path of paths) this.trace(path);
    this.stroke(stroke);
  }

  area(path: Path, color: string): void {
    this.to.beginPath();
    this.trace(path);
    this.to.fillStyle = color;
    this.to.fill();
  }

  box(corners: readonly Place[], color: string): void {
    this.area(Float64Array.from(corners.flatMap(({ x, y }) => [x, y])), color);
  }

  disc(center: Place, radius: number, fill: string, stroke?: Stroke): void {
    this.to.beginPath();
    this.to.arc(center.x, center.y, radius, 0, 2 * Math.PI);
    this.to.fillStyle = fill;
    this.to.fill();
    if (stroke) this.stroke(stroke);
  }

  text(text: string, at: Place, { size, color, bold, anchor = "middle", angle = 0 }: Lettering): void {
    this.to.save();
    this.to.translate(at.x, at.y);
    this.to.rotate(angle);
    this.to.font = fontOf(size, bold);
    this.to.fillStyle = color;
    this.to.textAlign = anchor === "middle" ? "center" : anchor;
    this.to.fillText(text, 0, baseLine * size);
    this.to.restore();
  }
}

const svgNamespace = "http://www.w3.org/2000/svg";

export function svgElement<Name extends keyof SVGElementTagNameMap>(
  name: Name,
  attributes: Readonly<Record<string, string | number>> = {},
): SVGElementTagNameMap[Name] {
  const element = document.createElementNS(svgNamespace, name);
  for (const [key, value] of Object.entries(attributes)) element.setAttribute(key, String(value));
  return element;
}

const rounded = (value: number) => String(Number(value.toFixed(2)));

export class SvgSurface implements Surface {
  private clips = 0;
  private into: SVGElement;

  constructor(root: SVGSVGElement) {
    this.into = root;
  }

  private add<Name extends keyof SVGElementTagNameMap>(
    name: Name,
    attributes: Readonly<Record<string, string | number>>,
  ): SVGElementTagNameMap[Name] {
    return this.into.appendChild(svgElement(name, attributes));
  }

  private static data(path: Path): string {
    let data = "";
    for (let i = 0; i + 1 < path.length; i += 2)
      data += `${i ? "L" : "M"}${rounded(path[i]!)} ${rounded(path[i + 1]!)}`;
    return data;
  }

  private static attributes(stroke: Stroke): Record<string, string | number> {
    return {
      stroke: stroke.color,
      "stroke-width": stroke.width,
      ...(stroke.dashes && { "stroke-dasharray": stroke.dashes.join(" ") }),
    };
  }

  clipped(frame: Frame, draw: () => void): void {
    const id = `frame${++this.clips}`;
    const place = { x: frame.left, y: frame.top, width: frame.right - frame.left, height: frame.bottom - frame.top };
    this.add("clipPath", { id }).append(svgElement("rect", place));
    const outer = this.into;
    this.into = this.add("g", { "clip-path": `url(#${id})` });
    draw();
    this.into = outer;
  }

  lines(paths: readonly Path[], stroke: Stroke): void {
    const d = paths.map((path) => SvgSurface.data(path)).join("");
    const ends = { fill: "none", "stroke-linejoin": "round", "stroke-linecap": "round" };
    if (d) this.add("path", { d, ...ends, ...SvgSurface.attributes(stroke) });
  }

  area(path: Path, color: string): void {
    this.add("path", { d: `${SvgSurface.data(path)}Z`, fill: color });
  }

  box(corners: readonly Place[], color: string): void {
    this.add("path", {
      d: `${SvgSurface.data(Float64Array.from(corners.flatMap(({ x, y }) => [x, y])))}Z`,
      fill: color,
    });
  }

  disc(center: Place, radius: number, fill: string, stroke?: Stroke): void {
    const place = { cx: rounded(center.x), cy: rounded(center.y), r: radius };
    this.add("circle", { ...place, fill, ...(stroke && SvgSurface.attributes(stroke)) });
  }

  text(text: string, at: Place, { size, color, bold, anchor = "middle", angle = 0 }: Lettering): void {
    const turn = angle ? ` rotate(${rounded((angle * 180) / Math.PI)})` : "";
    this.add("text", {
      transform: `translate(${rounded(at.x)} ${rounded(at.y)})${turn}`,
      y: rounded(baseLine * size),
      "font-size": size,
      "font-family": fontFamily,
      ...(bold && { "font-weight": 600 }),
      "text-anchor": anchor,
      fill: color,
    }).textContent = text;
  }
}
