// SPDX-License-Identifier: MIT
// What a cycle does, and its states.
import type { CycleFigure, CycleResult } from "../../../core/library";
import { type Cell, columnName, csvText } from "../../csv";
import { library } from "../../library";
import { useUnits } from "../../numbers";
import { Symbol } from "../../symbols";
import { Num, UnitName } from "../number";

export function Figures({ figures, before }: { figures: readonly CycleFigure[]; before?: readonly CycleFigure[] }) {
  const { unit } = useUnits();
  const rows = figures.filter((one) => Number.isFinite(one.value));
  const inText = (name: string) => before?.find((one) => one.name === name)?.value ?? NaN;
  return (
    <table class="figures">
      <thead>
        <tr>
          <th scope="col">Figure</th>
          <th scope="col" class="number-name">
            Value
          </th>
          {before && (
            <th scope="col" class="number-name">
              In the text
            </th>
          )}
          <th scope="col">Unit</th>
          <th scope="col" class="meaning">
            Meaning
          </th>
        </tr>
      </thead>
      <tbody>
        {rows.map((one) => {
          const shown = unit(one.si, one.difference);
          return (
            <tr key={one.name} data-figure={one.name} title={one.meaning}>
              <th scope="row">{one.name.replaceAll("_", " ")}</th>
              <td class="value">
                <Num value={library.units.to(one.value, shown)} />
              </td>
              {before && (
                <td>
                  <Num value={library.units.to(inText(one.name), shown)} />
                </td>
              )}
              <td>
                <UnitName name={shown.name} />
              </td>
              <td class="note meaning">{one.meaning}</td>
            </tr>
          );
        })}
      </tbody>
    </table>
  );
}

const columns = ["t", "p", "h", "s", "d", "q"] as const;
const row = (name: string) => library.list("outputs").find((one) => one.name === name);
const siOf = (name: string) => row(name)?.unit ?? "1";

export function CycleStates({ result }: { result: CycleResult }) {
  const { unit, shown } = useUnits();
  return (
    <table class="cycle-states">
      <thead>
        <tr>
          <th scope="col">No.</th>
          <th scope="col">State</th>
          {columns.map((name) => (
            <th scope="col" key={name} class="number-name" title={row(name)?.description}>
              <Symbol name={name} /> <UnitName name={unit(siOf(name)).name} />
            </th>
          ))}
        </tr>
      </thead>
      <tbody>
        {result.places.map((place, i) => (
          <tr key={i}>
            <td>{i + 1}</td>
            <th scope="row">{place}</th>
            {columns.map((name) => (
              <td key={name}>
                <Num value={shown(result.states[name][i]!, siOf(name))} />
              </td>
            ))}
          </tr>
        ))}
      </tbody>
    </table>
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
