// SPDX-License-Identifier: MIT
// Parts of wide tables of numbers.
import type { ComponentChildren } from "preact";
import type { Row } from "../../core/library";
import { useUnits, type Places } from "../numbers";
import { shortMeaning } from "../outputs";
import { Symbol } from "../symbols";
import { Num, UnitName } from "./number";

/** A table that scrolls sideways in its own frame, also with the keys. */
export function ScrolledTable({ label, children }: { label: string; children: ComponentChildren }) {
  return (
    <div class="scrolled" role="region" aria-label={label} tabIndex={0}>
      <table class="wide">{children}</table>
    </div>
  );
}

/** Symbol and unit above a column; screen readers and titles have the meaning. */
export function ColumnHead({ row, note, difference }: { row: Row; note?: string; difference?: boolean }) {
  const { unit } = useUnits();
  return (
    <th scope="col" class="numeric" title={row.description}>
      <span aria-hidden="true">
        <Symbol name={row.name} />
      </span>
      <span class="unseen">{shortMeaning(row)}</span>
      {note && <span class="below">{note}</span>}
      <span class="below">
        <UnitName name={unit(row.unit, difference).name} />
      </span>
    </th>
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
