// SPDX-License-Identifier: MIT
// The same state by every equation of state, with the differences from the chosen one.
import type { Row } from "../../../core/library";
import { columnName, csvText, type Cell } from "../../csv";
import { fileName } from "../../files";
import { library } from "../../library";
import { placesOf, useUnits } from "../../numbers";
import { openFluid, useFluid } from "../../opening";
import { CsvPanel } from "../../parts/csv_panel";
import { fluidName } from "../../parts/fluid_chooser";
import { OutputsField, readOutputs } from "../../parts/outputs_field";
import { ColumnHead, ScrolledTable, StateCells } from "../../parts/table";
import { getState, useSlice, useStore } from "../../store";
import { stateSlice } from "./slice";
import { solve, type Solution } from "./solution";

const ofZero = new Set(["h", "s", "u", "g", "a"]);

/** "+1.23 %" */
export function percent(value: number, base: number): string {
  const part = (100 * (value - base)) / Math.abs(base);
  if (!Number.isFinite(part)) return "";
  const text = part.toFixed(Math.abs(part) < 100 ? 2 : 0);
  return `${part >= 0 ? "+" : ""}${text} %`.replace("-", "\u2212");
}

export function Models({ first, second }: { first: number; second: number }) {
  const [slice, set] = useSlice(stateSlice);
  const fluid = useStore((state) => state.fluid);
  const options = useStore((state) => state.options);
  const units = useUnits();
  const chosen = useFluid().fluid?.text("model") ?? "";
  const { rows: outputs } = readOutputs(slice.compared);
  const asked = outputs.map((row) => row.name).filter((name) => name.includes("|"));
  const models = library.list("models").map((model) => {
    const opened = openFluid(fluid, { ...options, model: model.name });
    const solution = opened.fluid && solve(opened.fluid, slice.pair, first, second, asked);
    return { model, solution, problem: opened.problem?.message ?? solution?.problem ?? "" };
  });
  const base = models.find(({ model }) => model.name === chosen)?.solution;
  const given = [...slice.pair];
  const shownOutputs = outputs.filter((row) => !given.includes(row.name));
  const difference = (solution: Solution, row: Row) =>
    base && solution !== base ? percent(solution.of(row.name), base.of(row.name)) : "";
  const value = (solution: Solution | undefined, row: Row) => units.shown(solution?.of(row.name) ?? NaN, row.unit);
  const columns = shownOutputs.map((row) => ({ row, places: placesOf(models.map((one) => value(one.solution, row))) }));
  const csv = () =>
    csvText([
      [
        "model",
        "equation of state",
        "phase",
        ...shownOutputs.map((row) => columnName(row.name, units.unit(row.unit).name)),
        "note",
      ],
      ...models.map(({ model, solution, problem }): Cell[] => [
        model.name,
        model.description,
        solution?.phase ?? "",
        ...shownOutputs.map((row) => (solution?.phase ? value(solution, row) : "")),
        problem,
      ]),
    ]);
  const zeros = shownOutputs.filter((row) => ofZero.has(row.name)).map((row) => row.name);
  return (
    <CsvPanel
      name="models"
      title="The state by every equation of state"
      saves={{
        what: "the comparison of equations",
        file: () => fileName(fluidName(getState().fluid), "models", "csv"),
        text: csv,
      }}
    >
      <OutputsField text={slice.compared} write={(compared) => set({ compared })} />
      <ScrolledTable label="The state by every equation of state">
        <thead>
          <tr>
            <th scope="col">Equation</th>
            <th scope="col">Phase</th>
            {shownOutputs.map((row) => (
              <ColumnHead row={row} />
            ))}
          </tr>
        </thead>
        <tbody>
          {models.map(({ model, solution, problem }) => (
            <tr class={model.name === chosen ? "chosen" : undefined} title={library.adviceOnModel(model.name)}>
              <th scope="row">
                {model.description}
                {model.name === chosen && <span class="unseen"> (chosen)</span>}
              </th>
              <StateCells solution={solution} problem={problem} columns={columns} below={difference} />
            </tr>
          ))}
        </tbody>
      </ScrolledTable>
      <p class="note">
        Per cent are differences from the chosen equation.
        {zeros.length > 0 && !options.reference && (
          <>
            {" "}
            The zeros of {zeros.join(", ")} are at the critical point of each equation; with another zero, under
            Options, they compare better.
          </>
        )}
      </p>
    </CsvPanel>
  );
}
