// SPDX-License-Identifier: MIT
// What a cycle does, and its states.
import type { CycleFigure, CycleResult } from "../../../core/library";
import { type Cell, columnName, csvText } from "../../csv";
import { library } from "../../library";
import { useUnits } from "../../numbers";
import { outputRow } from "../../outputs";
import { Num, UnitName } from "../number";
import { ColumnHead, ScrolledTable, ValueCell } from "../table";

export function Figures({ figures, before }: { figures: readonly CycleFigure[]; before?: readonly CycleFigure[] }) {
  const { unit } = useUnits();
  const rows = figures.filter((one) => Number.isFinite(one.value));
  const inText = (name: string) => before?.find((one) => one.name === name)?.value ?? NaN;
  return (
    <ScrolledTable label="Figures">
      <thead>
        <tr>
          <th scope="col">Figure</th>
          <th scope="col" class="numeric">
            Value
          </th>
          {before && (
            <th scope="col" class="numeric">
              In the text
            </th>
          )}
          <th scope="col">Unit</th>
          <th scope="col" class="figure-meaning">
            Meaning
          </th>
        </tr>
      </thead>
      <tbody class="figures">
        {rows.map((one) => {
          const shown = unit(one.si, one.difference);
          return (
            <tr key={one.name} data-figure={one.name} title={one.meaning}>
              <th scope="row">{one.name.replaceAll("_", " ")}</th>
              <td class="numeric value">
                <Num value={library.units.to(one.value, shown)} />
              </td>
              {before && <ValueCell value={library.units.to(inText(one.name), shown)} />}
              <td>
                <UnitName name={shown.name} />
              </td>
              <td class="note figure-meaning">{one.meaning}</td>
            </tr>
          );
        })}
      </tbody>
    </ScrolledTable>
  );
}

const columns = ["t", "p", "h", "s", "d", "q"] as const;
const siOf = (name: string) => outputRow(name)?.unit ?? "1";

export function CycleStates({ result }: { result: CycleResult }) {
  const { shown } = useUnits();
  return (
    <ScrolledTable label="States of the cycle">
      <thead>
        <tr>
          <th scope="col">No.</th>
          <th scope="col">State</th>
          {columns.flatMap((name) => outputRow(name) ?? []).map((row) => (
            <ColumnHead key={row.name} row={row} />
          ))}
        </tr>
      </thead>
      <tbody>
        {result.places.map((place, i) => (
          <tr key={i}>
            <td>{i + 1}</td>
            <th scope="row">{place}</th>
            {columns.map((name) => (
              <ValueCell key={name} value={shown(result.states[name][i]!, siOf(name))} />
            ))}
          </tr>
        ))}
      </tbody>
    </ScrolledTable>
  );
}

/** The states, and behind an empty line the figures; all in SI units. */
export function cycleAsCsv(result: CycleResult): string {
  const letters = ["t", "p", "v", "h", "s", "d", "q"] as const;
  const states = result.places.map((place, i): Cell[] => [
    i + 1,
    place,
    ...letters.map((letter) => result.states[letter][i]),
  ]);
  const figures = result.figures
    .filter((one) => Number.isFinite(one.value))
    .map((one): Cell[] => [one.name, one.value, one.si === "1" ? "" : one.si, one.meaning]);
  return [
    csvText([["no", "state", ...letters.map((letter) => columnName(letter, siOf(letter)))], ...states]),
    csvText([["figure", "value", "unit", "meaning"], ...figures]),
  ].join("\n");
}
