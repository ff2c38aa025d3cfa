// SPDX-License-Identifier: MIT
// All properties of one state in a narrow column, or a few of them in words.
import { library } from "../../library";
import { numberText, shownUnit, unitText } from "../../numbers";
import { outputRow, shortMeaning } from "../../outputs";
import { grouped } from "../../views/state/groups";
import type { Solution } from "../../views/state/solution";
import { sentence } from "../message";
import { Named, QuantityCells } from "../table";

/** "vapor", or "two-phase, q = 0.352" */
export function phaseText(state: Solution): string {
  const q = state.of("q");
  return q > 0 && q < 1 ? `${state.phase}, q = ${numberText(q, 4)}` : state.phase;
}

export function StatePanel({ state, hint }: { state: Solution | undefined; hint: string }) {
  if (!state?.phase) return <p class="note">{state ? sentence(state.problem) : hint}</p>;
  return (
    <>
      <p class="phase-name">{phaseText(state)}</p>
      <table class="state-values">
        <tbody>
          {grouped(state.rows).flatMap(({ rows }) =>
            rows.map((row) => (
              <tr key={row.name} title={row.description} data-output={row.name}>
                <th scope="row">
                  <Named name={row.name} words={shortMeaning(row)} />
                </th>
                <QuantityCells value={state.of(row.name)} si={row.unit} />
              </tr>
            )),
          )}
        </tbody>
      </table>
      {state.remarks.map((remark) => (
        <p class="note" key={remark.text}>
          {sentence(remark.text)}
        </p>
      ))}
    </>
  );
}

/** The phase and some properties as a sentence. */
export function stateInWords(state: Solution, names: readonly string[]): string {
  if (!state.phase) return sentence(state.problem);
  const texts = names.map((name) => {
    const row = outputRow(name);
    if (!row) return name;
    const unit = shownUnit(row.unit);
    return `${shortMeaning(row)} ${numberText(library.units.to(state.of(name), unit), 5)} ${unitText(unit.name)}`;
  });
  return `${[phaseText(state), ...texts].join(", ")}.`;
}
