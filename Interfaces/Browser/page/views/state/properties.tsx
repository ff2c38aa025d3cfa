// SPDX-License-Identifier: MIT
// All properties of a state. A click on a row chooses the number that "the same number elsewhere" is about.
import type { Row } from "../../../core/library";
import { csvText } from "../../csv";
import { fileName } from "../../files";
import { numberText, useUnits } from "../../numbers";
import { shortMeaning } from "../../outputs";
import { SaveCsv } from "../../parts/copy_button";
import { fluidName } from "../../parts/fluid_chooser";
import { sentence } from "../../parts/message";
import { Named, QuantityCells } from "../../parts/table";
import { getState, useSlice } from "../../store";
import { grouped } from "./groups";
import { stateSlice } from "./slice";
import { withoutMeaning, type Solution } from "./solution";

function PropertyRow({ row, value, note }: { row: Row; value: number; note: string }) {
  const [slice, set] = useSlice(stateSlice);
  const asked = slice.derivatives.includes(row.name);
  return (
    <tr
      title={note ? `${row.description}. ${note}` : row.description}
      data-output={row.name}
      class={row.name === slice.output ? "chosen" : undefined}
      onClick={() => set({ output: row.name })}
    >
      <th scope="row">
        <div>
          <Named name={row.name} words={shortMeaning(row)} shown />
          {asked && (
            <button
              type="button"
              class="quiet remove"
              aria-label={`Leave out ${row.description}`}
              onClick={() => set({ derivatives: slice.derivatives.filter((name) => name !== row.name) })}
            >
              ×
            </button>
          )}
        </div>
      </th>
      <QuantityCells value={value} si={row.unit} note={note} />
    </tr>
  );
}

function Remarks({ solution }: { solution: Solution }) {
  const without = withoutMeaning(solution);
  const texts = solution.remarks.map((remark) => sentence(remark.text));
  if (without.length > 0) texts.unshift(`Between the phases, ${without.join(", ")} have no meaning.`);
  if (texts.length === 0) return null;
  return (
    <ul class="remarks" aria-label="Remarks">
      {texts.map((text) => (
        <li>{text}</li>
      ))}
    </ul>
  );
}

/** The state as a table for other programs. */
function stateCsv(solution: Solution, unit: ReturnType<typeof useUnits>): string {
  return csvText([
    ["property", "value", "unit", "meaning"],
    ["phase", solution.phase, "", "phase"],
    ...solution.rows
      .map((row, i) => ({ row, value: solution.values[i] ?? NaN }))
      .filter(({ row }) => row.name !== "phase")
      .map(({ row, value }) => [row.name, unit.shown(value, row.unit), unit.unit(row.unit).name, row.description]),
  ]);
}

export function Properties({ solution }: { solution: Solution }) {
  const units = useUnits();
  const quality = solution.of("q");
  const notes = (name: string) =>
    solution.remarks
      .filter((remark) => remark.outputs.includes(name))
      .map((remark) => sentence(remark.text))
      .join(" ");
  return (
    <section class="panel properties" aria-labelledby="properties-title">
      <div class="heading">
        <h2 id="properties-title">Properties</h2>
        <p class="phase" role="status">
          {solution.problem !== "" && <span class="unseen">{sentence(solution.problem)}</span>}
          {solution.phase && (
            <>
              <strong>{solution.phase}</strong>
              {Number.isFinite(quality) && <>, vapor quality {numberText(quality)}</>}
            </>
          )}
        </p>
        <div class="actions">
          {solution.phase && (
            <SaveCsv
              what="the properties"
              file={() => fileName(fluidName(getState().fluid), "state", "csv")}
              text={() => stateCsv(solution, units)}
            />
          )}
        </div>
      </div>
      {solution.problem && <p class="problem">{sentence(solution.problem)}</p>}
      {!solution.phase && !solution.problem && <p class="note">The properties appear when both values are given.</p>}
      <Remarks solution={solution} />
      {solution.phase && (
        <div class="groups">
          {grouped(solution.rows).map((group) => (
            <table class="values">
              <caption>{group.title}</caption>
              <tbody>
                {group.rows.map((row) => (
                  <PropertyRow key={row.name} row={row} value={solution.of(row.name)} note={notes(row.name)} />
                ))}
              </tbody>
            </table>
          ))}
        </div>
      )}
    </section>
  );
}
