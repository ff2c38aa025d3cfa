// SPDX-License-Identifier: MIT
// Tables as comma-separated values, with all digits of each number.
import { exactText } from "./numbers";

export type Cell = string | number | undefined;

/** A text without separators and line ends stands as it is; a number without a value is empty. */
function cellText(cell: Cell): string {
  const text = typeof cell === "number" ? exactText(cell) : (cell ?? "");
  return /[",\r\n]/.test(text) ? `"${text.replaceAll('"', '""')}"` : text;
}

export const csvText = (rows: readonly (readonly Cell[])[]): string =>
  rows.map((row) => `${row.map(cellText).join(",")}\n`).join("");

/** The heading of a column of SI values: "h [J/kg]", or "q". */
export const columnName = (name: string, si: string): string => (si === "1" ? name : `${name} [${si}]`);
