// SPDX-License-Identifier: MIT
// The part of a plane that a diagram shows, and how gestures move it.
import type { AxisRange, DiagramKind, Letter, Library, Polyline } from "../../../core/library";

/** Both axes of a diagram [SI]. */
export interface View {
  readonly x: AxisRange;
  readonly y: AxisRange;
}

/** Places on the screen, or lengths there [px]. */
export interface Place {
  readonly x: number;
  readonly y: number;
}

/** The inner part of a drawing, in which the curves are [px]. */
export interface Frame {
  readonly left: number;
  readonly top: number;
  readonly right: number;
  readonly bottom: number;
}

export const widthOf = (frame: Frame): number => frame.right - frame.left;
export const heightOf = (frame: Frame): number => frame.bottom - frame.top;

/** One axis as a straight line, on which logarithmic values are equally far apart in equal ratios. */
export class Ruler {
  private readonly low: number;
  private readonly step: number;

  constructor(
    range: AxisRange,
    readonly logarithmic: boolean,
    private readonly from: number,
    to: number,
  ) {
    this.low = logarithmic ? Math.log(range[0]) : range[0];
    this.step = (to - from) / ((logarithmic ? Math.log(range[1]) : range[1]) - this.low);
  }

  place(value: number): number {
    return this.from + ((this.logarithmic ? Math.log(value) : value) - this.low) * this.step;
  }

  value(place: number): number {
    const along = this.low + (place - this.from) / this.step;
    return this.logarithmic ? Math.exp(along) : along;
  }
}

/** How a plane lies on the screen. */
export class Plane {
  readonly x: Ruler;
  readonly y: Ruler;

  constructor(
    library: Library,
    readonly kind: DiagramKind,
    readonly view: View,
    readonly frame: Frame,
  ) {
    const isLogarithmic = (letter: Letter) => library.properties[letter].logarithmic;
    this.x = new Ruler(view.x, isLogarithmic(kind.x), frame.left, frame.right);
    this.y = new Ruler(view.y, isLogarithmic(kind.y), frame.bottom, frame.top);
  }

  place(x: number, y: number): Place {
    return { x: this.x.place(x), y: this.y.place(y) };
  }

  value(at: Place): Place {
    return { x: this.x.value(at.x), y: this.y.value(at.y) };
  }

  contains(at: Place): boolean {
    const { left, right, top, bottom } = this.frame;
    return at.x >= left && at.x <= right && at.y >= top && at.y <= bottom;
  }

  /** The view in which a place of this one has moved to another place, with all lengths multiplied by a factor. */
  moved(from: Place, to: Place, factor: number): View {
    const { left, right, top, bottom } = this.frame;
    const back = (place: number, was: number, is: number) => was + (place - is) / factor;
    return {
      x: [this.x.value(back(left, from.x, to.x)), this.x.value(back(right, from.x, to.x))],
      y: [this.y.value(back(bottom, from.y, to.y)), this.y.value(back(top, from.y, to.y))],
    };
  }
}

/** Farther in, neighboring curves differ by little more than the rounding of their points. */
const narrowest = 1e-5;
/** Farther out there is nothing to be seen. */
const widest = 2;

/** The range, no wider and no narrower than is sensible, and with a part of the automatic one. */
function limitedRange(range: AxisRange, automatic: AxisRange, logarithmic: boolean): AxisRange {
  const straight = (value: number) => (logarithmic ? Math.log(value) : value);
  const curved = (value: number) => (logarithmic ? Math.exp(value) : value);
  const [low, high] = [straight(automatic[0]), straight(automatic[1])];
  const full = high - low;
  const begin = straight(range[0]);
  const width = Math.min(Math.max(straight(range[1]) - begin, narrowest * full), widest * full);
  const first = Math.min(Math.max(begin, low - 0.9 * width), high - 0.1 * width);
  return [curved(first), curved(first + width)];
}

export function limited(library: Library, kind: DiagramKind, view: View, automatic: View): View {
  const range = (letter: Letter, of: AxisRange, standard: AxisRange) =>
    limitedRange(of, standard, library.properties[letter].logarithmic);
  return { x: range(kind.x, view.x, automatic.x), y: range(kind.y, view.y, automatic.y) };
}

/** Beside a path there is some room, as a part of the range. */
const room = 0.04;

/** The view, or a wider one that has all points inside. */
export function containing(library: Library, kind: DiagramKind, view: View, paths: readonly Polyline[]): View {
  const wider = (range: AxisRange, letter: Letter, offset: 0 | 1): AxisRange => {
    let low = Infinity;
    let high = -Infinity;
    for (const path of paths)
      for (let i = offset; i < path.length; i += 2) {
        low = Math.min(low, path[i]!);
        high = Math.max(high, path[i]!);
      }
    if (!(low < range[0]) && !(high > range[1])) return range;
    const { logarithmic } = library.properties[letter];
    const [first, last] = [Math.min(low, range[0]), Math.max(high, range[1])];
    const more = logarithmic ? (last / first) ** room : room * (last - first);
    const lower = logarithmic ? first / more : first - more;
    const higher = logarithmic ? last * more : last + more;
    return [low < range[0] ? lower : range[0], high > range[1] ? higher : range[1]];
  };
  const x = wider(view.x, kind.x, 0);
  const y = wider(view.y, kind.y, 1);
  return x === view.x && y === view.y ? view : { x, y };
}

export const kindNamed = (library: Library, name: string): DiagramKind =>
  library.diagramKinds.find((kind) => kind.name === name) ?? library.diagramKinds[0]!;

/** The letters of the axes as a pair of inputs, and whether the horizontal axis comes first in it. */
export function pairOf(library: Library, kind: DiagramKind): { inputs: string; xFirst: boolean } {
  const xFirst = library.list("inputs").some((row) => row.name === kind.x + kind.y);
  return { inputs: xFirst ? kind.x + kind.y : kind.y + kind.x, xFirst };
}
