// SPDX-License-Identifier: MIT
// States that somebody has put down, and their differences from the first one.
import type { Row } from "../../../core/library";
import { columnName, csvText, type Cell } from "../../csv";
import { numberText, placesOf, useUnits } from "../../numbers";
import { openFluid } from "../../opening";
import { outputRow } from "../../outputs";
import { CsvPanel } from "../../parts/csv_panel";
import { fluidName } from "../../parts/fluid_chooser";
import { readOutputs } from "../../parts/outputs_field";
import { ColumnHead, ScrolledTable, StateCells } from "../../parts/table";
import { useSlice, useStore } from "../../store";
import { stateSlice, type KeptState } from "./slice";
import { solve } from "./solution";

/** "propane, pr, volume translated" */
export function titleOf(kept: Pick<KeptState, "fluid" | "options">): string {
  const given = Object.values(kept.options).filter(Boolean);
  return [fluidName(kept.fluid), ...given].join(", ");
}

export function Kept() {
  const [slice, set] = useSlice(stateSlice);
  const { unit, shown } = useUnits();
  useStore((state) => state.own);
  if (slice.kept.length === 0) return null;
  const { rows: compared } = readOutputs(slice.compared);
  const outputs: readonly Row[] = [
    ...["t", "p"].flatMap((name) => outputRow(name) ?? []),
    ...compared.filter((row) => row.name !== "t" && row.name !== "p"),
  ];
  const derivatives = outputs.map((row) => row.name).filter((name) => name.includes("|"));
  const states = slice.kept.map((kept) => {
    const opened = openFluid(kept.fluid, kept.options);
    const solution = opened.fluid && solve(opened.fluid, kept.pair, kept.first, kept.second, derivatives);
    return { kept, solution, problem: opened.problem?.message ?? solution?.problem ?? "" };
  });
  const base = states[0]?.solution;
  const difference = (value: number, row: Row) => {
    const unitOf = unit(row.unit, true);
    const text = numberText(value / unitOf.factor, 4);
    return `${value >= 0 ? "+" : ""}${text}`;
  };
  const columns = outputs.map((row) => ({
    row,
    places: placesOf(states.map(({ solution }) => shown(solution?.of(row.name) ?? NaN, row.unit))),
  }));
  const csv = () =>
    csvText([
      ["fluid", "options", "phase", ...outputs.map((row) => columnName(row.name, unit(row.unit).name))],
      ...states.map(({ kept, solution }): Cell[] => [
        fluidName(kept.fluid),
        Object.entries(kept.options)
          .map(([key, value]) => `${key}=${value}`)
          .join("; "),
        solution?.phase ?? "",
        ...outputs.map((row) => (solution?.phase ? shown(solution.of(row.name), row.unit) : "")),
      ]),
    ]);
  return (
    <CsvPanel
      name="kept"
      title="Kept states"
      saves={{ what: "the kept states", file: () => "states.csv", text: csv }}
      actions={
        <button type="button" class="quiet" onClick={() => set({ kept: [] })}>
          Remove all
        </button>
      }
    >
      <ScrolledTable label="Kept states">
        <thead>
          <tr>
            <th scope="col">Fluid</th>
            <th scope="col">Phase</th>
            {outputs.map((row) => (
              <ColumnHead row={row} />
            ))}
            <th scope="col">
              <span class="unseen">Remove</span>
            </th>
          </tr>
        </thead>
        <tbody>
          {states.map(({ kept, solution, problem }, place) => (
            <tr>
              <th scope="row">{titleOf(kept)}</th>
              <StateCells
                solution={solution}
                problem={problem}
                columns={columns}
                below={(own, row) =>
                  place > 0 && base?.phase ? difference(own.of(row.name) - base.of(row.name), row) : ""
                }
              />
              <td>
                <button
                  type="button"
                  class="quiet"
                  aria-label={`Remove state ${place + 1}`}
                  onClick={() => set({ kept: slice.kept.filter((_, i) => i !== place) })}
                >
                  ×
                </button>
              </td>
            </tr>
          ))}
        </tbody>
      </ScrolledTable>
      {states.length > 1 && <p class="note">The small numbers are differences from the first state.</p>}
    </CsvPanel>
  );
}
