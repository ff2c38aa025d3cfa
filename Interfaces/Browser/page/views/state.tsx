// SPDX-License-Identifier: MIT
// One state: what is given, all its properties, and what goes with it.
import { useEffect, useState } from "preact/hooks";
import { useFluid } from "../opening";
import { inputsOf } from "../outputs";
import { Problem } from "../parts/message";
import { readQuantity } from "../parts/quantity_field";
import { getState, useSlice } from "../store";
import { Derivatives } from "./state/derivatives";
import { Elsewhere } from "./state/elsewhere";
import { Inputs } from "./state/inputs";
import { Kept } from "./state/kept";
import { Models } from "./state/models";
import { Properties } from "./state/properties";
import { Saturation } from "./state/saturation";
import { stateSlice } from "./state/slice";
import { solve } from "./state/solution";

export function StateView() {
  const { fluid, problem } = useFluid();
  const [slice, set] = useSlice(stateSlice);
  // The first numbers do not wait for the tables below them.
  const [tables, showTables] = useState(false);
  useEffect(() => showTables(true), []);
  if (!fluid) return problem ? <Problem problem={problem} /> : null;
  const [one, other] = inputsOf(slice.pair);
  const first = readQuantity(slice.first, one?.unit ?? "1").value;
  const second = readQuantity(slice.second, other?.unit ?? "1").value;
  const solution = solve(fluid, slice.pair, first, second, slice.derivatives);
  const keep = () => {
    const { fluid: name, options } = getState();
    set({ kept: [...slice.kept, { fluid: name, options, pair: slice.pair, first, second }] });
  };
  return (
    <div class="state-view">
      <section class="panel given" aria-labelledby="inputs-title">
        <h2 id="inputs-title">State</h2>
        <Inputs solution={solution} />
        <button type="button" class="keep" disabled={!solution.phase} onClick={keep}>
          Keep this state
        </button>
        <Derivatives />
      </section>
      <Properties solution={solution} />
      <Elsewhere solution={solution} first={first} second={second} />
      {tables && (
        <>
          <Kept />
          {Number.isFinite(first) && Number.isFinite(second) && <Models first={first} second={second} />}
          <Saturation />
        </>
      )}
    </div>
  );
}
