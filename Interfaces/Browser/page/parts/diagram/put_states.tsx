// SPDX-License-Identifier: MIT
// The states that somebody has put down: as a table, and the differences between two of them.
import { useState } from "preact/hooks";
import { LibraryError, type Fluid } from "../../../core/library";
import { type Cell, columnName, csvText } from "../../csv";
import { fileName } from "../../files";
import { library } from "../../library";
import { placesOf, useUnits } from "../../numbers";
import { outputRow, outputTitle } from "../../outputs";
import { Symbol } from "../../symbols";
import { type Solution, solve } from "../../views/state/solution";
import { Select } from "../choice";
import { CsvPanel } from "../csv_panel";
import { sentence } from "../message";
import { Num, UnitName } from "../number";
import { ColumnHead, Named, ScrolledTable, ValueCell } from "../table";
import { phaseText } from "./state_panel";

/** A state as two inputs with units: ["ts", "380 K", "1200 J/(kg K)"]. */
export type PutState = readonly [inputs: string, first: string, second: string];

const siOf = (name: string) => outputRow(name)?.unit ?? "1";

/** The state that the texts mean. */
export function solvePut(fluid: Fluid, [inputs, first, second]: PutState): Solution {
  const none = solve(fluid, inputs, NaN, NaN);
  try {
    const read = (text: string, i: number) => library.units.parse(text, siOf(inputs[i]!));
    return solve(fluid, inputs, read(first, 0), read(second, 1));
  } catch (problem) {
    if (problem instanceof LibraryError) return { ...none, problem: problem.message };
    throw problem;
  }
}

/** All states with all properties [SI], and the inputs as they were given. */
export function statesAsCsv(puts: readonly PutState[], states: readonly Solution[]): string {
  const columns = library.list("outputs").filter((one) => one.name !== "phase");
  return csvText([
    ["state", "first input", "second input", "phase", ...columns.map((one) => columnName(one.name, one.unit)), "note"],
    ...states.map((state, i): Cell[] => {
      const [inputs = "", first = "", second = ""] = puts[i] ?? [];
      const values = columns.map((one) => state.of(one.name));
      return [i + 1, `${inputs[0]} = ${first}`, `${inputs[1]} = ${second}`, state.phase, ...values, state.problem];
    }),
  ]);
}

/** A field whose text holds when the focus leaves it or Enter is pressed. */
function Input(props: { label: string; text: string; take: (text: string) => void; wrong: boolean }) {
  const { label, text, take, wrong } = props;
  const [draft, setDraft] = useState<string>();
  const finish = () => {
    if (draft !== undefined && draft !== text) take(draft);
    setDraft(undefined);
  };
  return (
    <input
      type="text"
      class="typed"
      aria-label={label}
      aria-invalid={wrong}
      autoComplete="off"
      spellcheck={false}
      value={draft ?? text}
      onInput={(event) => setDraft(event.currentTarget.value)}
      onBlur={finish}
      onKeyDown={(event) => event.key === "Enter" && finish()}
    />
  );
}

const columns = ["t", "p", "v", "h", "s"];

export function PutStates(props: {
  puts: readonly PutState[];
  states: readonly Solution[];
  change: (puts: readonly PutState[]) => void;
  fluid: string;
}) {
  const { puts, states, change } = props;
  const { shown } = useUnits();
  if (!puts.length) return null;
  const rows = columns
    .flatMap((name) => outputRow(name) ?? [])
    .map((row) => ({ row, values: states.map((state) => shown(state.of(row.name), row.unit)) }))
    .map((column) => ({ ...column, places: placesOf(column.values) }));
  const replace = (i: number, by: PutState) => change(puts.map((put, k) => (k === i ? by : put)));
  return (
    <CsvPanel
      name="put"
      class="put-states"
      title="States"
      saves={{
        what: "the states",
        file: () => fileName(props.fluid, "states", "csv"),
        text: () => statesAsCsv(puts, states),
      }}
      actions={
        <button type="button" class="quiet" onClick={() => change([])}>
          Remove all
        </button>
      }
    >
      <ScrolledTable label="States">
        <thead>
          <tr>
            <th scope="col">No.</th>
            <th scope="col" colSpan={2}>
              Given
            </th>
            {rows.map(({ row }) => (
              <ColumnHead key={row.name} row={row} />
            ))}
            <th scope="col">Phase</th>
            <th scope="col">
              <span class="unseen">Remove</span>
            </th>
          </tr>
        </thead>
        <tbody>
          {puts.map((put, i) => {
            const state = states[i]!;
            const [inputs, ...texts] = put;
            const field = (k: 0 | 1) => (
              <td>
                <span aria-hidden="true">
                  <Symbol name={inputs[k]!} /> ={" "}
                </span>
                <Input
                  label={`State ${i + 1}, ${outputTitle(inputs[k]!)}`}
                  text={texts[k]!}
                  wrong={state.problem !== ""}
                  take={(text) => replace(i, k ? [inputs, put[1], text] : [inputs, text, put[2]])}
                />
              </td>
            );
            return (
              <tr key={i}>
                <th scope="row">{i + 1}</th>
                {field(0)}
                {field(1)}
                {state.phase ? (
                  <>
                    {rows.map(({ row, values, places }) => (
                      <ValueCell key={row.name} value={values[i]!} places={places} />
                    ))}
                    <td>{phaseText(state)}</td>
                  </>
                ) : (
                  <td colSpan={rows.length + 1} class="said">
                    {sentence(state.problem)}
                  </td>
                )}
                <td>
                  <button
                    type="button"
                    class="quiet"
                    title="Remove"
                    aria-label={`Remove state ${i + 1}`}
                    onClick={() => change(puts.filter((_, k) => k !== i))}
                  >
                    ×
                  </button>
                </td>
              </tr>
            );
          })}
        </tbody>
      </ScrolledTable>
    </CsvPanel>
  );
}

/** What changes from one state to another. */
export function Differences(props: {
  states: readonly Solution[];
  from: number;
  to: number;
  choose: (from: number, to: number) => void;
}) {
  const { states, from, to, choose } = props;
  const { unit, shown } = useUnits();
  const [first, second] = [states[from], states[to]];
  if (!first || !second) return null;
  const choices = states.map((_, i) => ({ value: String(i), text: String(i + 1) }));
  const rows = library
    .list("outputs")
    .filter((row) => row.name !== "phase")
    .filter((row) => Number.isFinite(second.of(row.name) - first.of(row.name)))
    .map((row) => {
      const [a, b] = [first.of(row.name), second.of(row.name)];
      const ofDifference = unit(row.unit, true);
      const values = [shown(a, row.unit), shown(b, row.unit), library.units.to(b - a, ofDifference)] as const;
      return { row, ofDifference, values };
    });
  const places = [0, 1, 2].map((i) => placesOf(rows.map(({ values }) => values[i]!)));
  return (
    <section class="panel differences" aria-labelledby="differences-title">
      <div class="heading">
        <h2 id="differences-title">Differences</h2>
        <div class="fields">
          <Select label="From state" value={String(from)} choices={choices} choose={(one) => choose(Number(one), to)} />
          <Select label="To state" value={String(to)} choices={choices} choose={(one) => choose(from, Number(one))} />
        </div>
      </div>
      {rows.length > 0 ? (
        <ScrolledTable label="Differences">
          <thead>
            <tr>
              <th scope="col">Property</th>
              {[`State ${from + 1}`, `State ${to + 1}`, "Difference"].map((title) => (
                <th scope="col" key={title} class="numeric">
                  {title}
                </th>
              ))}
              <th scope="col">Unit</th>
            </tr>
          </thead>
          <tbody>
            {rows.map(({ row, ofDifference, values }) => (
              <tr key={row.name} title={row.description} data-output={row.name}>
                <th scope="row">
                  <Named name={row.name} words={outputTitle(row.name)} />
                </th>
                <ValueCell value={values[0]} places={places[0]!} />
                <ValueCell value={values[1]} places={places[1]!} />
                <td class="numeric difference">
                  <Num value={values[2]} places={places[2]} />
                </td>
                <td>
                  <UnitName name={unit(row.unit).name} />
                  {ofDifference.name !== unit(row.unit).name && (
                    <>
                      , <UnitName name={ofDifference.name} />
                    </>
                  )}
                </td>
              </tr>
            ))}
          </tbody>
        </ScrolledTable>
      ) : (
        <p class="note">The two states have no property in common.</p>
      )}
    </section>
  );
}
