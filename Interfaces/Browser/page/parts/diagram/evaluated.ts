// SPDX-License-Identifier: MIT
// States with all properties that the library has.
import type { Fluid } from "../../../core/library";
import { library } from "../../library";
import { numberText } from "../../numbers";

export interface State {
  /** Values [SI] by the names of outputs; NaN where the state has none. */
  readonly values: Readonly<Record<string, number>>;
  /** Why there is no such state; empty if there is one. */
  readonly problem: string;
}

/** Names of all outputs. */
export const outputs = (): readonly string[] => library.list("outputs").map((row) => row.name);

/** The state that has two values [SI]. Between the phases it lacks some outputs. */
export function stateAt(fluid: Fluid, inputs: string, first: number, second: number): State {
  const names = outputs();
  const { values, message } = fluid.evaluate(inputs, names, Float64Array.of(first), Float64Array.of(second));
  const found = Object.fromEntries(names.map((name, i) => [name, values[i]!]));
  const exists = Number.isFinite(found.t) && Number.isFinite(found.p);
  return { values: found, problem: exists ? "" : message || "There is no such state." };
}

/** "vapor", or "two-phase, q = 0.3520" */
export function phaseText({ t, q, phase }: State["values"]): string {
  if (t === undefined || Number.isNaN(t) || phase === undefined) return "";
  const name = library.phaseName(phase);
  return q !== undefined && q > 0 && q < 1 ? `${name}, q = ${numberText(q, 4)}` : name;
}
