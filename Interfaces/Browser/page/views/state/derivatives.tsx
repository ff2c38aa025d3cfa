// SPDX-License-Identifier: MIT
// Any first derivative dX/dY|Z on demand.
import { useState } from "preact/hooks";
import { library } from "../../library";
import { Select } from "../../parts/choice";
import { useSlice } from "../../store";
import { stateSlice } from "./slice";

export function Derivatives() {
  const [slice, set] = useSlice(stateSlice);
  const [chosen, choose] = useState({ x: "h", y: "p", z: "t" });
  const names = library.list("derivatives").map((row) => row.name);
  const letters = [...new Set(names.map((name) => name.charAt(1)))];
  const choices = letters.map((value) => ({ value, text: value }));
  const name = `d${chosen.x}/d${chosen.y}|${chosen.z}`;
  const row = library.list("derivatives").find((one) => one.name === name);
  return (
    <fieldset class="derivative">
      <legend>Another derivative</legend>
      <div class="fields">
        {(["x", "y", "z"] as const).map((place, i) => (
          <Select
            label={["of", "by", "at constant"][i] ?? ""}
            value={chosen[place]}
            choices={choices}
            choose={(letter) => choose({ ...chosen, [place]: letter })}
          />
        ))}
        <button
          type="button"
          disabled={!row || slice.derivatives.includes(name)}
          onClick={() => set({ derivatives: [...slice.derivatives, name], output: name })}
        >
          Add
        </button>
      </div>
      <p class="note">
        {row ? row.description : "There is no such derivative: what it is by and what is constant must differ."}
      </p>
    </fieldset>
  );
}
