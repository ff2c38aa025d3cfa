// SPDX-License-Identifier: MIT
// Definitions of cycles as texts: the examples, and changes of the numbers and of the fluid in a text.
import co2 from "../../../../../Examples/Cycles/co2.toml";
import r134a from "../../../../../Examples/Cycles/r134a.toml";
import steam from "../../../../../Examples/Cycles/steam.toml";
import toluene from "../../../../../Examples/Cycles/toluene.toml";
import type { CycleKey, GivenValue, Options, Unit } from "../../../core/library";
import { library } from "../../library";
import { unitText } from "../../numbers";

export interface Example {
  readonly name: string;
  readonly title: string;
  readonly text: string;
}

export const examples: readonly Example[] = [
  { name: "toluene", title: "Organic Rankine cycle, toluene", text: toluene },
  { name: "steam", title: "Steam cycle", text: steam },
  { name: "r134a", title: "Refrigerator, R134a", text: r134a },
  { name: "co2", title: "Transcritical heat pump, CO₂", text: co2 },
];

/** Values [SI] by the names of keys that replace those of a text. */
export type Changes = Readonly<Record<string, number>>;

const quoted = /^["']\s*[-+\d.eE_]+\s*(.*?)\s*["']$/;

/** The unit in which a text gives a value. Differences of temperature have no offset. */
export function unitInText(text: string, given: GivenValue): Unit {
  const { si, difference } = given.key;
  const name = quoted.exec(text.slice(given.begin, given.end))?.[1];
  const units = library.units.of(si);
  const unit = units.find((one) => one.name === name) ?? units[0] ?? { name: si, si, factor: 1, offset: 0 };
  return difference ? { ...unit, offset: 0 } : unit;
}

/** The shortest number that means a value [SI] in a unit. */
export function shortestNumber(value: number, unit: Unit): string {
  const shown = library.units.to(value, unit);
  for (let digits = 1; digits < 17; ++digits) {
    const number = Number(shown.toPrecision(digits));
    if (library.units.from(number, unit) === value) return String(number);
  }
  return String(shown);
}

/** "15 bar" */
export const valueText = (value: number, unit: Unit): string =>
  `${shortestNumber(value, unit)}${unit.name === "1" ? "" : ` ${unit.name}`}`;

/** "15 bar" as people read it. */
export const readableValue = (value: number, unit: Unit): string =>
  `${shortestNumber(value, unit).replace("-", "−")} ${unitText(unit.name)}`.trim();

/** The text with the changed numbers in the place of its own, in the same units. */
export function withChanges(text: string, given: readonly GivenValue[], changes: Changes): string {
  const backwards = [...given].sort((a, b) => b.begin - a.begin);
  return backwards.reduce((changed, one) => {
    const value = changes[one.key.name];
    if (value === undefined) return changed;
    const isQuoted = /^["']/.test(text.slice(one.begin, one.end));
    const unit = isQuoted ? unitInText(text, one) : library.units.of(one.key.si)[0];
    const number = unit ? valueText(value, one.key.difference ? { ...unit, offset: 0 } : unit) : String(value);
    return changed.slice(0, one.begin) + (isQuoted ? `"${number}"` : number.split(" ")[0]) + changed.slice(one.end);
  }, text);
}

/** A text of TOML: quotation marks and what is not to be seen are escaped, as in JSON. */
const tomlText = (text: string) => JSON.stringify(text).replaceAll("\u007f", "\\u007f");

/** The text with another fluid and other options of its opening. They stand before the first section. */
export function withFluid(text: string, fluid: string, options: Options): string {
  const section = /^[ \t]*\[/m.exec(text)?.index ?? text.length;
  const names = ["fluid", "database", ...library.list("options").map((row) => row.name)];
  const line = new RegExp(String.raw`^[ \t]*(?:${names.join("|")})[ \t]*=.*(?:\r?\n|$)`, "gm");
  const given = Object.entries({ fluid, ...options }).filter(([, value]) => value);
  const lines = given.map(([name, value]) => `${name} = ${tomlText(value ?? "")}\n`).join("");
  const head = text.slice(0, section);
  const comments = /^(?:[ \t]*#.*\r?\n)*/.exec(head)?.[0] ?? "";
  return comments + lines + head.slice(comments.length).replace(line, "") + text.slice(section);
}

/** The ends of a slider, and the values between them. */
export interface SliderScale {
  readonly logarithmic: boolean;
  /** In the unit of the text. */
  readonly low: number;
  readonly high: number;
}

/** Positions of sliders go from 0 to this. */
export const positions = 400;

/** A range around a value [SI] that makes sense for its key. */
export function scaleAround(value: number, key: CycleKey, unit: Unit): SliderScale {
  const shown = library.units.to(value, unit);
  if (key.range === "part") return { logarithmic: false, low: 0, high: 1 };
  if (key.range === "not negative") {
    const least = { K: 20, Pa: library.units.to(1e5, unit) }[key.si] ?? 1;
    return { logarithmic: false, low: 0, high: 3 * shown || least };
  }
  if (key.si === "K" && !key.difference) {
    const width = library.units.to(library.units.from(shown, unit) + 60, unit) - shown;
    return { logarithmic: false, low: shown - width, high: shown + width };
  }
  return { logarithmic: true, low: shown / 4, high: 4 * shown };
}

/** The place of a value [unit of the scale]. */
export function positionOf(value: number, { logarithmic, low, high }: SliderScale): number {
  const share = logarithmic ? Math.log(value / low) / Math.log(high / low) : (value - low) / (high - low);
  return Math.round(positions * Math.min(Math.max(share, 0), 1));
}

/** A value with as few digits as tell neighboring places apart. */
export function valueAt(position: number, { logarithmic, low, high }: SliderScale): number {
  const at = (place: number) =>
    logarithmic ? low * (high / low) ** (place / positions) : low + ((high - low) * place) / positions;
  const value = at(position);
  const step = Math.abs(at(position + 1) - value);
  const decimals = Math.max(0, Math.ceil(-Math.log10(step) - 1e-9));
  return Number(value.toFixed(Math.min(decimals, 20)));
}
