// SPDX-License-Identifier: MIT
// Names of outputs, with their units and meanings.
import { LibraryError, type Row } from "../core/library";
import { library } from "./library";

/** The row of an output or of a derivative. */
export function outputRow(name: string): Row | undefined {
  return [...library.list("outputs"), ...library.list("derivatives")].find((row) => row.name === name);
}

/** "vapor quality" of "vapor quality, 0 for the saturated liquid, 1 for the saturated vapor" */
export const shortMeaning = (row: Row) => row.description.split(/[,:] /)[0] ?? row.description;

/** What an output is called where space is short. */
export function outputTitle(name: string): string {
  const row = outputRow(name);
  return row ? shortMeaning(row) : name;
}

/** The rows of "d, h, s". Throws LibraryError about a name that is none. */
export function outputRows(names: string): readonly Row[] {
  return names
    .split(",")
    .map((name) => name.trim())
    .filter((name) => name !== "")
    .map((name) => {
      const row = outputRow(name);
      if (!row)
        throw new LibraryError(
          `"${name}" is no output; outputs are ${library
            .list("outputs")
            .map((one) => one.name)
            .join(", ")}, and derivatives as dp/dd|u`,
        );
      return row;
    });
}

/** The two inputs of a pair. */
export function inputsOf(pair: string): readonly Row[] {
  return [...pair].map((letter) => outputRow(letter)).filter((row) => row !== undefined);
}
