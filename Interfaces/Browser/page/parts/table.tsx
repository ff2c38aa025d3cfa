// SPDX-License-Identifier: MIT
// Parts of wide tables of numbers.
import type { ComponentChildren } from "preact";
import type { Row } from "../../core/library";
import { useUnits, type Places } from "../numbers";
import { shortMeaning } from "../outputs";
import { Symbol } from "../symbols";
import type { Solution } from "../views/state/solution";
import { sentence } from "./message";
import { Num, UnitName } from "./number";

/** A table that scrolls sideways in its own frame, also with the keys. */
export function ScrolledTable({ label, children }: { label: string; children: ComponentChildren }) {
  return (
    <div class="scrolled" role="region" aria-label={label} tabIndex={0}>
      <table class="wide">{children}</table>
    </div>
  );
}

/** The symbol for the eyes, and words beside it for screen readers, or for everyone as "meaning". */
export function Named({ name, words, shown = false }: { name: string; words: string; shown?: boolean }) {
  return (
    <>
      <span aria-hidden="true">
        <Symbol name={name} />
      </span>
      <span class={shown ? "meaning" : "unseen"}>{words}</span>
    </>
  );
}

/** Symbol and unit above a column; screen readers and titles have the meaning. */
export function ColumnHead({ row, note, difference }: { row: Row; note?: string; difference?: boolean }) {
  const { unit } = useUnits();
  return (
    <th scope="col" class="numeric" title={row.description}>
      <Named name={row.name} words={shortMeaning(row)} />
      {note && <span class="below">{note}</span>}
      <span class="below">
        <UnitName name={unit(row.unit, difference).name} />
      </span>
    </th>
  );
}

/** A value [SI] in shown units, and its unit: two cells. */
export function QuantityCells({ value, si, note }: { value: number; si: string; note?: string }) {
  const { unit, shown } = useUnits();
  return (
    <>
      <td>
        <Num value={shown(value, si)} />
        {note && <span class="unseen">{note}</span>}
      </td>
      <td>
        <UnitName name={unit(si).name} />
      </td>
    </>
  );
}

/** `places` are those of all values of the column. */
export function ValueCell({ value, places, below }: { value: number; places: Places; below?: string }) {
  return (
    <td class="numeric">
      <Num value={value} places={places} />
      {below !== undefined && <span class="below note">{below || "\u00a0"}</span>}
    </td>
  );
}

/** The phase of a state and its values in columns, or why there is none. `below` is a small text under a value. */
export function StateCells(props: {
  solution: Solution | undefined;
  problem: string;
  columns: readonly { row: Row; places: Places }[];
  below: (solution: Solution, row: Row) => string;
}) {
  const { solution, columns } = props;
  const { shown } = useUnits();
  if (!solution?.phase)
    return (
      <td colSpan={columns.length + 1} class="note refusal">
        {sentence(props.problem)}
      </td>
    );
  return (
    <>
      <td>{solution.phase}</td>
      {columns.map(({ row, places }) => (
        <ValueCell value={shown(solution.of(row.name), row.unit)} places={places} below={props.below(solution, row)} />
      ))}
    </>
  );
}
