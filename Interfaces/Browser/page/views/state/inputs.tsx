// SPDX-License-Identifier: MIT
// The pair of inputs and its two values.
import { library } from "../../library";
import { shownUnit } from "../../numbers";
import { inputsOf, outputTitle } from "../../outputs";
import { Select } from "../../parts/choice";
import { QuantityField, quantityText } from "../../parts/quantity_field";
import { useSlice } from "../../store";
import { stateSlice } from "./slice";
import type { Solution } from "./solution";

const capital = (text: string) => text.charAt(0).toUpperCase() + text.slice(1);

export function Inputs({ solution }: { solution: Solution }) {
  const [slice, set] = useSlice(stateSlice);
  const texts = { first: slice.first, second: slice.second };
  // Another pair describes the same state, as far as the state has these properties.
  const choosePair = (pair: string) => {
    const before: Record<string, string> = {
      [slice.pair.charAt(0)]: texts.first,
      [slice.pair.charAt(1)]: texts.second,
    };
    const [first = "", second = ""] = inputsOf(pair).map((row) => {
      const value = solution.of(row.name);
      if (before[row.name] !== undefined) return before[row.name];
      if (Number.isFinite(value)) return quantityText(value, shownUnit(row.unit));
      return row.name === "q" ? "1" : "";
    });
    set({ pair, first, second });
  };
  const rows = inputsOf(slice.pair);
  return (
    <div class="fields inputs">
      <Select
        label="Given are"
        value={slice.pair}
        choose={choosePair}
        choices={library.list("inputs").map((row) => ({ value: row.name, text: row.description }))}
      />
      {rows.map((row, i) => {
        const key = i === 0 ? "first" : "second";
        return (
          <QuantityField
            key={`${key}-${row.name}`}
            label={capital(outputTitle(row.name))}
            si={row.unit}
            text={texts[key]}
            write={(text) => set({ [key]: text })}
          />
        );
      })}
    </div>
  );
}
