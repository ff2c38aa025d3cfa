// SPDX-License-Identifier: MIT
// The isolines of a diagram: which ones are drawn, and what their colors mean.
import type { DiagramKind, Letter } from "../../../core/library";
import { library } from "../../library";
import { unitText, useUnits } from "../../numbers";
import { dark, light } from "./palette";

export function Families(props: { kind: DiagramKind; chosen: string; choose: (families: string) => void }) {
  const { kind, chosen, choose } = props;
  const { unit } = useUnits();
  const toggle = (letter: string) =>
    choose([...kind.possible].filter((one) => chosen.includes(one) !== (one === letter)).join(""));
  return (
    <fieldset class="families">
      <legend>Lines</legend>
      <div class="choices">
        {([...kind.possible] as Letter[]).map((letter) => {
          const property = library.properties[letter];
          const shown = unitText(unit(property.si).name);
          return (
            <label key={letter} title={property.lines}>
              <input type="checkbox" checked={chosen.includes(letter)} onChange={() => toggle(letter)} />
              <span
                class={letter === "q" ? "swatch dashed" : "swatch"}
                style={{ "--light": light.lines[letter], "--dark": dark.lines[letter] }}
              />
              <span>
                {property.lines}
                {shown && <span class="unit"> {shown}</span>}
              </span>
            </label>
          );
        })}
      </div>
    </fieldset>
  );
}
