// SPDX-License-Identifier: MIT
import type { Options } from "../../../core/library";
import { defineSlice, type Value } from "../../store";

/** A state that somebody has put down, with SI values. */
export type KeptState = {
  readonly fluid: string;
  readonly options: Options;
  readonly pair: string;
  readonly first: number;
  readonly second: number;
};

const isKept = (value: Value): boolean => {
  const one = value as unknown as Partial<KeptState> | null;
  return (
    typeof one === "object" &&
    one !== null &&
    typeof one.fluid === "string" &&
    typeof one.pair === "string" &&
    typeof one.first === "number" &&
    typeof one.second === "number" &&
    typeof one.options === "object" &&
    one.options !== null &&
    Object.values(one.options).every((option) => typeof option === "string")
  );
};

export interface StateSlice {
  readonly pair: string;
  /** As typed, with units. */
  readonly first: string;
  readonly second: string;
  /** The output that "the same number elsewhere" is about. */
  readonly output: string;
  /** The derivatives in the table of properties. */
  readonly derivatives: readonly string[];
  /** The columns of the table of models, and of the kept states. */
  readonly compared: string;
  readonly by: string;
  /** The saturation table's ends and number of rows, as typed; empty for what suits the fluid. */
  readonly from: string;
  readonly to: string;
  readonly rows: string;
  readonly saturated: string;
  readonly kept: readonly KeptState[];
}

export const stateSlice = defineSlice<StateSlice>(
  "state",
  {
    pair: "pt",
    first: "1 bar",
    second: "25 degC",
    output: "d",
    derivatives: [],
    compared: "d, h, s, cp, c, psat",
    by: "t",
    from: "",
    to: "",
    rows: "",
    saturated: "d, h, s",
    kept: [],
  },
  (key, value) => {
    if (key === "kept") return (value as readonly Value[]).every(isKept);
    if (key === "derivatives") return (value as readonly Value[]).every((name) => typeof name === "string");
    return true;
  },
);
