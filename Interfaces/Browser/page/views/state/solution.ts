// SPDX-License-Identifier: MIT
// One state with all its properties.
import { LibraryError, type Fluid, type Remark, type Row } from "../../../core/library";
import { library } from "../../library";
import { outputRow } from "../../outputs";

export interface Solution {
  readonly rows: readonly Row[];
  readonly values: readonly number[];
  readonly status: number;
  /** Why there is no state; empty if there is one. */
  readonly problem: string;
  readonly phase: string;
  readonly remarks: readonly Remark[];
  /** The value of an output that has been asked. */
  of(name: string): number;
}

const twoPhase = 4;
const nothing: Solution = {
  rows: [],
  values: [],
  status: -1,
  problem: "",
  phase: "",
  remarks: [],
  of: () => NaN,
};

/** The state of two SI values, with all outputs and some derivatives; nothing but a problem if there is none. */
export function solve(
  fluid: Fluid,
  pair: string,
  first: number,
  second: number,
  derivatives: readonly string[] = [],
): Solution {
  if (!Number.isFinite(first) || !Number.isFinite(second)) return nothing;
  const rows = [...library.list("outputs"), ...derivatives.flatMap((name) => outputRow(name) ?? [])];
  const names = rows.map((row) => row.name);
  try {
    const found = fluid.evaluate(pair, names, Float64Array.of(first), Float64Array.of(second));
    const status = found.status[0] ?? -1;
    const values = [...found.values];
    const of = (name: string) => values[names.indexOf(name)] ?? NaN;
    if (status !== 0 && status !== twoPhase) {
      // The message numbers the state, of which there is only one.
      return { ...nothing, status, problem: (found.message ?? "").replace(": state 0 (", " (") };
    }
    const remarks = fluid.remarks(names, pair, of("t"), of("p"), of("phase"));
    return { rows, values, status, problem: "", phase: library.phaseName(of("phase")), remarks, of };
  } catch (problem) {
    if (problem instanceof LibraryError) return { ...nothing, problem: problem.message };
    throw problem;
  }
}

/** Outputs that a state between the phases does not have, if it is one. */
export const withoutMeaning = (solution: Solution) =>
  solution.status === twoPhase
    ? solution.rows.filter((_, i) => Number.isNaN(solution.values[i])).map((row) => row.name)
    : [];
