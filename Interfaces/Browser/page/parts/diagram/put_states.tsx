// SPDX-License-Identifier: MIT
// The states that somebody has put down: as a table, and the differences between two of them.
import { useState } from "preact/hooks";
import { LibraryError, type Fluid } from "../../../core/library";
import { columnName, csvText } from "../../csv";
import { library } from "../../library";
import { useUnits } from "../../numbers";
import { Symbol } from "../../symbols";
import { Select } from "../choice";
import { SaveButton } from "../copy_button";
import { sentence } from "../message";
import { Num, UnitName } from "../number";
import { phaseText, type State, stateAt } from "./evaluated";

/** A state as two inputs with units: ["ts", "380 K", "1200 J/(kg K)"]. */
export type PutState = readonly [inputs: string, first: string, second: string];

const row = (name: string) => library.list("outputs").find((one) => one.name === name);
const siOf = (name: string) => row(name)?.unit ?? "1";

/** The state that the texts mean. */
export function evaluatedPut(fluid: Fluid, [inputs, first, second]: PutState): State {
  try {
    const read = (text: string, i: number) => library.units.parse(text, siOf(inputs[i]!));
    return stateAt(fluid, inputs, read(first, 0), read(second, 1));
  } catch (problem) {
    if (problem instanceof LibraryError) return { values: {}, problem: problem.message };
    throw problem;
  }
}

/** All states with all properties [SI], and the inputs as they were given. */
export function statesAsCsv(puts: readonly PutState[], states: readonly State[]): string {
  const columns = library.list("outputs");
  return csvText([
    ["state", "first input", "second input", ...columns.map((one) => columnName(one.name, one.unit)), "note"],
    ...states.map((state, i) => {
      const [inputs = "", first = "", second = ""] = puts[i] ?? [];
      const values = columns.map((one) => state.values[one.name]);
      return [i + 1, `${inputs[0]} = ${first}`, `${inputs[1]} = ${second}`, ...values, state.problem];
    }),
  ]);
}

/** A field whose text holds when the focus leaves it or Enter is pressed. */
function Input({ label, text, take, wrong }: { label: string; text: string; take: (text: string) => void; wrong: boolean }) {
  const [draft, setDraft] = useState<string>();
  const finish = () => {
    if (draft !== undefined && draft !== text) take(draft);
    setDraft(undefined);
  };
  return (
    <input
      type="text"
      class="given"
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
  states: readonly State[];
  change: (puts: readonly PutState[]) => void;
  file: string;
}) {
  const { puts, states, change } = props;
  const { unit, shown } = useUnits();
  if (!puts.length) return null;
  const replace = (i: number, by: PutState) => change(puts.map((put, k) => (k === i ? by : put)));
  return (
    <section class="panel put-states" aria-label="States">
      <div class="heading">
        <h2>States</h2>
        <div class="actions">
          <SaveButton
            label="Save as CSV"
            file={() => `${props.file}-states.csv`}
            type="text/csv"
            text={() => statesAsCsv(puts, states)}
          />
          <button type="button" class="quiet" onClick={() => change([])}>
            Remove all
          </button>
        </div>
      </div>
      <div class="scrolled">
        <table>
          <thead>
            <tr>
              <th scope="col">No.</th>
              <th scope="col" colSpan={2}>
                Given
              </th>
              {columns.map((name) => (
                <th scope="col" key={name} class="quantity-name" title={row(name)?.description}>
                  <Symbol name={name} /> <UnitName name={unit(siOf(name)).name} />
                </th>
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
                <td class="given-cell">
                  <span aria-hidden="true">
                    <Symbol name={inputs[k]!} /> ={" "}
                  </span>
                  <Input
                    label={`State ${i + 1}, ${row(inputs[k]!)?.description ?? ""}`}
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
                  {state.problem ? (
                    <td colSpan={columns.length + 1} class="said">
                      {sentence(state.problem)}
                    </td>
                  ) : (
                    <>
                      {columns.map((name) => (
                        <td key={name}>
                          <Num value={shown(state.values[name]!, siOf(name))} />
                        </td>
                      ))}
                      <td class="phase-cell">{phaseText(state.values)}</td>
                    </>
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
        </table>
      </div>
    </section>
  );
}

/** What changes from one state to another. */
export function Differences(props: {
  states: readonly State[];
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
    .filter((one) => one.name !== "phase")
    .filter((one) => Number.isFinite(first.values[one.name]) && Number.isFinite(second.values[one.name]));
  return (
    <section class="panel differences" aria-label="Differences between two states">
      <div class="heading">
        <h2>Differences</h2>
        <div class="fields">
          <Select label="From state" value={String(from)} choices={choices} choose={(value) => choose(Number(value), to)} />
          <Select label="to state" value={String(to)} choices={choices} choose={(value) => choose(from, Number(value))} />
        </div>
      </div>
      {rows.length > 0 ? (
        <div class="scrolled">
          <table>
            <thead>
              <tr>
                <th scope="col">Property</th>
                <th scope="col" class="number-name">State {from + 1}</th>
                <th scope="col" class="number-name">State {to + 1}</th>
                <th scope="col" class="number-name">Difference</th>
                <th scope="col">Unit</th>
              </tr>
            </thead>
            <tbody>
              {rows.map((one) => {
                const [a, b] = [first.values[one.name]!, second.values[one.name]!];
                const ofDifference = unit(one.unit, true);
                return (
                  <tr key={one.name} title={one.description} data-output={one.name}>
                    <th scope="row">
                      <Symbol name={one.name} />
                      <span class="unseen">, {one.description}</span>
                    </th>
                    <td>
                      <Num value={shown(a, one.unit)} />
                    </td>
                    <td>
                      <Num value={shown(b, one.unit)} />
                    </td>
                    <td class="difference">
                      <Num value={library.units.to(b - a, ofDifference)} />
                    </td>
                    <td>
                      <UnitName name={unit(one.unit).name} />
                      {ofDifference.name !== unit(one.unit).name && (
                        <>
                          , <UnitName name={ofDifference.name} />
                        </>
                      )}
                    </td>
                  </tr>
                );
              })}
            </tbody>
          </table>
        </div>
      ) : (
        <p class="note">The two states have no property in common.</p>
      )}
    </section>
  );
}
