// SPDX-License-Identifier: MIT
// Numbers and units as people read them.
import { library } from "./library";
import { getState, useStore } from "./store";
import type { Unit } from "../core/library";

/** A number in pieces. */
export interface Digits {
  /** With the sign. */
  readonly whole: string;
  /** With the point. */
  readonly fraction: string;
  /** The power of ten; empty for none. */
  readonly exponent: string;
}

export const significantDigits = 6;
export const noValue = "–";
const minus = "\u2212";

/** Rounds to some significant digits. Numbers from 0.0001 to 10 million are written out. */
export function digits(value: number, significant = significantDigits): Digits {
  if (!Number.isFinite(value)) {
    const text = Number.isNaN(value) ? noValue : value > 0 ? "∞" : `${minus}∞`;
    return { whole: text, fraction: "", exponent: "" };
  }
  const [mantissa = "0", power = "0"] = value.toExponential(significant - 1).split("e");
  const exponent = Number(power);
  const plain = value === 0 || (exponent >= -4 && exponent < 7);
  const decimals = Math.max(0, significant - 1 - exponent);
  const text = value === 0 ? "0" : plain ? Number(value.toPrecision(significant)).toFixed(decimals) : mantissa;
  const [whole = "", fraction] = text.replace("-", minus).split(".");
  return { whole, fraction: fraction ? `.${fraction}` : "", exponent: plain ? "" : String(exponent) };
}

/** The places that a column needs before its points, in widths of a digit. */
export interface Places {
  readonly whole: number;
}

const widthOfMinus = 1.32;

export function placesOf(values: readonly number[]): Places {
  const wholes = values.map((value) => {
    const { whole } = digits(value);
    return whole.length + (whole.startsWith(minus) ? widthOfMinus - 1 : 0);
  });
  return { whole: Math.max(1, ...wholes) };
}

const raised: Record<string, string> = Object.fromEntries(
  [..."0123456789-"].map((sign, i) => [sign, "⁰¹²³⁴⁵⁶⁷⁸⁹⁻"[i] ?? ""]),
);
const raise = (text: string) => [...text].map((sign) => raised[sign] ?? sign).join("");

/** "1234.56" or "1.23456×10¹²" */
export function numberText(value: number, significant = significantDigits): string {
  const { whole, fraction, exponent } = digits(value, significant);
  return whole + fraction + (exponent && `×10${raise(exponent)}`);
}

/** A number with all digits that make it, as other programs read it. */
export const exactText = (value: number) => (Number.isFinite(value) ? String(value) : "");

/** A number for a field: without zeros at its end. */
export const fieldText = (value: number) => (Number.isFinite(value) ? String(Number(value.toPrecision(10))) : "");

/** "m³/kg", "°C", "µPa s"; nothing for the unit 1. */
export function unitText(name: string): string {
  if (name === "1") return "";
  return name
    .replace(/\bdeg(?=[CF])/, "°")
    .replace(/\bu(?=[A-Z])/, "µ")
    .replace(/(?<=[A-Za-z])\d+/g, raise)
    .replaceAll(" ", "\u202f");
}

/** The unit in which the page shows values of an SI unit. */
export const shownUnit = (si: string, difference = false): Unit =>
  library.units.shown(si, getState().units, difference);

/** The page's units; the component is drawn again when they change. */
export function useUnits(): { unit: typeof shownUnit; shown: (value: number, si: string) => number } {
  useStore((state) => state.units);
  return { unit: shownUnit, shown: (value, si) => library.units.to(value, shownUnit(si)) };
}
