// SPDX-License-Identifier: MIT
// What a cycle does, and its states.
import type { CycleFigure, CycleResult } from "../../../core/library";
import { type Cell, columnName, csvText } from "../../csv";
import { library } from "../../library";
import { placesOf, useUnits } from "../../numbers";
import { outputRow } from "../../outputs";
import { Num, UnitName } from "../number";
import { ColumnHead, ScrolledTable, ValueCell } from "../table";

export function Figures({ figures, before }: { figures: readonly CycleFigure[]; before?: readonly CycleFigure[] }) {
  const { unit } = useUnits();
  const shown = (value: number, { si, difference }: CycleFigure) => library.units.to(value, unit(si, difference));
  const rows = figures
    .filter((one) => Number.isFinite(one.value))
    .map((one) => ({
      one,
      value: shown(one.value, one),
      inText: shown(before?.find(({ name }) => name === one.name)?.value ?? NaN, one),
    }));
  const places = placesOf(rows.map(({ value }) => value));
  const placesInText = placesOf(rows.map(({ inText }) => inText));
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
        {rows.map(({ one, value, inText }) => (
          <tr key={one.name} data-figure={one.name} title={one.meaning}>
            <th scope="row">{one.name.replaceAll("_", " ")}</th>
            <td class="numeric value">
              <Num value={value} places={places} />
            </td>
            {before && <ValueCell value={inText} places={placesInText} />}
            <td>
              <UnitName name={unit(one.si, one.difference).name} />
            </td>
            <td class="note figure-meaning">{one.meaning}</td>
          </tr>
        ))}
      </tbody>
    </ScrolledTable>
  );
}

const columns = ["t", "p", "h", "s", "d", "q"] as const;
const siOf = (name: string) => outputRow(name)?.unit ?? "1";

export function CycleStates({ result }: { result: CycleResult }) {
  const { shown } = useUnits();
  const rows = columns
    .flatMap((name) => outputRow(name) ?? [])
    .map((row, i) => ({ row, values: [...result.states[columns[i]!]].map((value) => shown(value, row.unit)) }))
    .map((column) => ({ ...column, places: placesOf(column.values) }));
  return (
    <ScrolledTable label="States of the cycle">
      <thead>
        <tr>
          <th scope="col">No.</th>
          <th scope="col">State</th>
          {rows.map(({ row }) => (
            <ColumnHead key={row.name} row={row} />
          ))}
        </tr>
      </thead>
      <tbody>
        {result.places.map((place, i) => (
          <tr key={i}>
            <td>{i + 1}</td>
            <th scope="row">{place}</th>
            {rows.map(({ row, values, places }) => (
              <ValueCell key={row.name} value={values[i]!} places={places} />
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
