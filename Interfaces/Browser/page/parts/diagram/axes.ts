// SPDX-License-Identifier: MIT
// Axes with ticks in shown units, by d3.
import { axisBottom, axisLeft, type Axis } from "d3-axis";
import { scaleLinear, scaleLog, type ScaleContinuousNumeric } from "d3-scale";
import { select } from "d3-selection";
import type { Letter, Library, UnitSystem } from "../../../core/library";
import { unitText } from "../../numbers";
import type { Palette } from "./palette";
import { fontFamily, svgElement } from "./surface";
import { heightOf, type Plane, widthOf } from "./view";

const raisedDigits = "⁰¹²³⁴⁵⁶⁷⁸⁹";
const powerOfTen = (exponent: number) =>
  `10${exponent < 0 ? "⁻" : ""}${[...String(Math.abs(exponent))].map((digit) => raisedDigits[Number(digit)]).join("")}`;

/** A round number: 0.05, −200, 2·10⁻⁵ */
export function roundText(value: number, significant = 6): string {
  const [mantissa = "0", power = "0"] = Number(value.toPrecision(significant)).toExponential().split("e");
  const exponent = Number(power);
  const plain = value === 0 || (exponent >= -4 && exponent < 6);
  const raised = `${mantissa === "1" ? "" : `${mantissa}·`}${powerOfTen(exponent)}`;
  return (plain ? String(Number(value.toPrecision(significant))) : raised).replace(/^-/, "−");
}

/** A logarithmic axis has more marks than numbers. */
const isNumbered = (value: number, all: readonly number[]): boolean => {
  if (all.length < 8) return true;
  const first = Number(value.toExponential()[0]);
  const decades = Math.log10(all[all.length - 1]! / all[0]!);
  return first === 1 || (decades < 3.5 && (first === 2 || first === 5));
};

export class ShownAxis {
  readonly scale: ScaleContinuousNumeric<number, number>;
  readonly ticks: readonly number[];
  readonly title: string;
  private readonly logarithmic: boolean;
  /** Large numbers of linear axes are written as multiples of this. */
  private readonly multiple: number;

  constructor(library: Library, plane: Plane, letter: Letter, units: UnitSystem) {
    const property = library.properties[letter];
    const unit = library.units.shown(property.si, units);
    const horizontal = plane.kind.x === letter;
    const range = horizontal ? plane.view.x : plane.view.y;
    const { left, right, top, bottom } = plane.frame;
    const room = horizontal ? widthOf(plane.frame) / 90 : heightOf(plane.frame) / 52;
    const count = Math.max(3, Math.round(room));
    this.logarithmic = property.logarithmic;
    this.scale = (property.logarithmic ? scaleLog() : scaleLinear())
      .domain(range.map((value) => library.units.to(value, unit)))
      .range(horizontal ? [left, right] : [bottom, top]);
    this.ticks = this.scale.ticks(count);
    const largest = Math.max(...this.ticks.map(Math.abs));
    const power = this.logarithmic || largest < 1e5 ? 0 : 3 * Math.floor(Math.log10(largest) / 3);
    this.multiple = 10 ** power;
    const name = [power ? powerOfTen(power) : "", unitText(unit.name)].filter(Boolean).join(" ");
    this.title = `${property.name} ${property.symbol}${name ? ` in ${name}` : ""}`;
  }

  /** Ticks with numbers, which have grid lines. */
  get numbered(): readonly number[] {
    return this.logarithmic ? this.ticks.filter((tick) => isNumbered(tick, this.ticks)) : this.ticks;
  }

  draw(into: SVGGElement, axis: (scale: ScaleContinuousNumeric<number, number>) => Axis<number>): void {
    const numbers = this.numbers();
    const made = axis(this.scale)
      .tickValues([...this.ticks])
      .tickFormat((tick) => numbers.get(tick) ?? "")
      .tickSizeOuter(0);
    select(into).call(made);
  }

  /** What is written at the ticks. */
  numbers(): ReadonlyMap<number, string> {
    const significant = this.significant();
    return new Map(this.numbered.map((tick) => [tick, roundText(tick / this.multiple, significant)]));
  }

  /** Digits that neighboring ticks need to differ. */
  private significant(): number {
    const [first = 0, second = first] = this.numbered;
    const largest = Math.max(...this.numbered.map(Math.abs));
    const step = Math.abs(second - first);
    return step > 0 && largest > 0 ? Math.min(15, Math.max(6, 2 + Math.ceil(Math.log10(largest / step)))) : 6;
  }
}

/** Both axes of a plane, with their titles. */
export function drawAxes(
  root: SVGGElement,
  plane: Plane,
  axes: { readonly x: ShownAxis; readonly y: ShownAxis },
  palette: Palette,
  size: number,
): void {
  const { frame } = plane;
  const group = (name: string, transform: string): SVGGElement => {
    const found = root.querySelector<SVGGElement>(`:scope > .${name}`);
    const made = found ?? root.appendChild(svgElement("g", { class: name }));
    made.setAttribute("transform", transform);
    return made;
  };
  const x = group("x", `translate(0 ${frame.bottom})`);
  const y = group("y", `translate(${frame.left} 0)`);
  axes.x.draw(x, axisBottom as (scale: ScaleContinuousNumeric<number, number>) => Axis<number>);
  axes.y.draw(y, axisLeft as (scale: ScaleContinuousNumeric<number, number>) => Axis<number>);
  for (const drawn of [x, y]) {
    drawn.setAttribute("font-family", fontFamily);
    drawn.setAttribute("font-size", String(size));
    drawn.setAttribute("color", palette.faint);
  }
  const title = (name: string, text: string, transform: string): void => {
    const made = group(name, transform);
    if (!made.firstChild) made.append(svgElement("text", { "text-anchor": "middle" }));
    const element = made.firstElementChild!;
    element.setAttribute("fill", palette.ink);
    element.setAttribute("font-family", fontFamily);
    element.setAttribute("font-size", String(size));
    element.textContent = text;
  };
  title("x-title", axes.x.title, `translate(${(frame.left + frame.right) / 2} ${frame.bottom + 2.9 * size})`);
  title("y-title", axes.y.title, `translate(${1.05 * size} ${(frame.top + frame.bottom) / 2}) rotate(-90)`);
}
