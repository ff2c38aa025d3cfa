// SPDX-License-Identifier: MIT
// Lines and boxes on the screen, in px: what of a line is inside of a frame, and which texts are apart.
import type { Frame, Place, Plane } from "./view";
import type { Polyline } from "../../../core/library";

/** Points x0, y0, x1, y1, ... on the screen. */
export type Path = Float64Array;

/** The part of a line between two points that is in a frame, as shares of the line; nothing if it misses. */
function clippedShares(x0: number, y0: number, x1: number, y1: number, into: Frame): [number, number] | undefined {
  let from = 0;
  let to = 1;
  const cut = (start: number, step: number, low: number, high: number): boolean => {
    if (step === 0) return start >= low && start <= high;
    from = Math.max(from, ((step > 0 ? low : high) - start) / step);
    to = Math.min(to, ((step > 0 ? high : low) - start) / step);
    return from <= to;
  };
  const inside = cut(x0, x1 - x0, into.left, into.right) && cut(y0, y1 - y0, into.top, into.bottom);
  return inside ? [from, to] : undefined;
}

/** The parts of a curve that a plane shows. */
export function visible(curve: Polyline, plane: Plane): Path[] {
  const { frame } = plane;
  const parts: number[][] = [];
  let lastX = NaN;
  let lastY = NaN;
  for (let i = 0; i + 1 < curve.length; i += 2) {
    const x = plane.x.place(curve[i]!);
    const y = plane.y.place(curve[i + 1]!);
    const shares = Number.isFinite(lastX + lastY + x + y) ? clippedShares(lastX, lastY, x, y, frame) : undefined;
    if (shares) {
      const [from, to] = shares;
      if (from > 0 || !parts.length || i === 2) parts.push([lastX + from * (x - lastX), lastY + from * (y - lastY)]);
      parts[parts.length - 1]!.push(lastX + to * (x - lastX), lastY + to * (y - lastY));
    }
    lastX = x;
    lastY = y;
  }
  return parts.map((part) => Float64Array.from(part));
}

/** Distances of the points of a path from its beginning, along it. */
export function distancesAlong(path: Path): Float64Array {
  const distances = new Float64Array(path.length / 2);
  for (let i = 1; i < distances.length; ++i)
    distances[i] = distances[i - 1]! + Math.hypot(path[2 * i]! - path[2 * i - 2]!, path[2 * i + 1]! - path[2 * i - 1]!);
  return distances;
}

/** The point of a path at a distance from its beginning. */
export function pointAlong(path: Path, distances: Float64Array, at: number): Place {
  let low = 0;
  let high = distances.length - 1;
  while (high - low > 1) {
    const middle = (low + high) >> 1;
    if (distances[middle]! <= at) low = middle;
    else high = middle;
  }
  const step = distances[high]! - distances[low]!;
  const share = step > 0 ? (at - distances[low]!) / step : 0;
  return {
    x: path[2 * low]! + share * (path[2 * high]! - path[2 * low]!),
    y: path[2 * low + 1]! + share * (path[2 * high + 1]! - path[2 * low + 1]!),
  };
}

/** A rectangle around a center, turned by an angle [rad]. */
export class Box {
  readonly corners: readonly Place[];

  constructor(
    readonly center: Place,
    readonly width: number,
    readonly height: number,
    readonly angle = 0,
  ) {
    const c = Math.cos(angle);
    const s = Math.sin(angle);
    const corner = (signX: number, signY: number): Place => {
      const x = (signX * width) / 2;
      const y = (signY * height) / 2;
      return { x: center.x + c * x - s * y, y: center.y + s * x + c * y };
    };
    this.corners = [corner(-1, -1), corner(1, -1), corner(1, 1), corner(-1, 1)];
  }

  isIn(frame: Frame): boolean {
    return this.corners.every(({ x, y }) => x >= frame.left && x <= frame.right && y >= frame.top && y <= frame.bottom);
  }

  isApartFrom(other: Box): boolean {
    const radius = (box: Box) => Math.hypot(box.width, box.height) / 2;
    const distance = Math.hypot(this.center.x - other.center.x, this.center.y - other.center.y);
    if (distance > radius(this) + radius(other)) return true;
    return [this.angle, this.angle + Math.PI / 2, other.angle, other.angle + Math.PI / 2].some((angle) => {
      const along = ({ x, y }: Place) => x * Math.cos(angle) + y * Math.sin(angle);
      const mine = this.corners.map(along);
      const its = other.corners.map(along);
      return Math.max(...mine) < Math.min(...its) || Math.max(...its) < Math.min(...mine);
    });
  }
}

/** Counts lines in small cells, so that a text can be placed where few lines are. */
export class Crowd {
  private static readonly cell = 6;
  private readonly columns: number;
  private readonly counts: Uint8Array;
  private readonly lastLine: Int32Array;
  private line = 0;

  constructor(private readonly frame: Frame) {
    this.columns = Math.ceil((frame.right - frame.left) / Crowd.cell) + 1;
    const rows = Math.ceil((frame.bottom - frame.top) / Crowd.cell) + 1;
    this.counts = new Uint8Array(this.columns * rows);
    this.lastLine = new Int32Array(this.columns * rows);
  }

  private cellAt(x: number, y: number): number {
    const column = Math.floor((x - this.frame.left) / Crowd.cell);
    return Math.floor((y - this.frame.top) / Crowd.cell) * this.columns + column;
  }

  add(paths: readonly Path[]): void {
    ++this.line;
    for (const path of paths)
      for (let i = 2; i < path.length; i += 2) {
        const dx = path[i]! - path[i - 2]!;
        const dy = path[i + 1]! - path[i - 1]!;
        const steps = Math.max(1, Math.ceil(Math.max(Math.abs(dx), Math.abs(dy)) / Crowd.cell));
        for (let k = 0; k < steps; ++k) {
          const cell = this.cellAt(path[i - 2]! + (k / steps) * dx, path[i - 1]! + (k / steps) * dy);
          if (this.lastLine[cell] === this.line) continue;
          this.lastLine[cell] = this.line;
          ++this.counts[cell]!;
        }
      }
  }

  /** How many lines there are along the middle of a box, besides its own. */
  along(box: Box): number {
    const c = Math.cos(box.angle);
    const s = Math.sin(box.angle);
    let lines = 0;
    for (let at = -box.width / 2; at <= box.width / 2; at += Crowd.cell)
      lines += Math.max(0, (this.counts[this.cellAt(box.center.x + c * at, box.center.y + s * at)] ?? 0) - 1);
    return lines;
  }
}
