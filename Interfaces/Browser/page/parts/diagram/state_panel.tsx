// SPDX-License-Identifier: MIT
// All properties of one state.
import { library } from "../../library";
import { numberText, shownUnit, unitText, useUnits } from "../../numbers";
import { Symbol } from "../../symbols";
import { sentence } from "../message";
import { Num, UnitName } from "../number";
import { phaseText, type State } from "./evaluated";

export function StatePanel({ state, hint }: { state: State | undefined; hint: string }) {
  const { unit, shown } = useUnits();
  if (!state || state.problem) return <p class="note">{state ? sentence(state.problem) : hint}</p>;
  const rows = library.list("outputs").filter((row) => row.name !== "phase");
  return (
    <>
      <p class="phase-name">{phaseText(state.values)}</p>
      <table class="properties">
        <tbody>
          {rows.map((row) => (
            <tr key={row.name} title={row.description} data-output={row.name}>
              <th scope="row">
                <Symbol name={row.name} />
                <span class="unseen">, {row.description}</span>
              </th>
              <td>
                <Num value={shown(state.values[row.name]!, row.unit)} />
              </td>
              <td>
                <UnitName name={unit(row.unit).name} />
              </td>
            </tr>
          ))}
        </tbody>
      </table>
    </>
  );
}

/** A few properties in words, for screen readers. */
export function stateInWords(state: State, letters: readonly string[]): string {
  if (state.problem) return sentence(state.problem);
  const texts = letters.map((name) => {
    const row = library.list("outputs").find((one) => one.name === name);
    if (!row) return "";
    const shown = shownUnit(row.unit);
    return `${row.description} ${numberText(library.units.to(state.values[name]!, shown), 5)} ${unitText(shown.name)}`;
  });
  return `${[phaseText(state.values), ...texts].join(", ")}.`;
}
