// SPDX-License-Identifier: MIT
// What the tests without a browser share: the library of the built page, and the native command.
import { spawnSync } from "node:child_process";
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { runInThisContext } from "node:vm";
import { load } from "../core/library";
import type { Library } from "../core/library";

const root = process.env.OSTREL_ROOT ?? process.cwd();
/** The folder of the built page. */
export const page = process.env.OSTREL_PAGE ?? join(root, "build/browser/page");
export const command = process.env.OSTREL_COMMAND ?? join(root, "build/demo/CommandLine/ostrel");

export const pathOf = (name: string): string => join(root, name);

/** The library of the page, as the page loads it. */
export function loadLibrary(): Promise<Library> {
  if (!("ostrel_parts" in globalThis)) runInThisContext(readFileSync(join(page, "library.js"), "utf8"));
  return load();
}

export interface Said {
  readonly out: string;
  readonly error: string;
  readonly code: number;
}

/** What the native command says. */
export function native(words: readonly string[], input = ""): Said {
  const done = spawnSync(command, words, {
    input,
    encoding: "utf8",
    maxBuffer: 1 << 28,
    cwd: root,
    env: { ...process.env, OSTREL_FLUIDS: pathOf("Fluids") },
  });
  if (done.error) throw done.error;
  return { out: done.stdout, error: done.stderr, code: done.status ?? -1 };
}

/** The arguments of the command for options of an opening. */
export function optionWords(options: Readonly<Record<string, string>>): string[] {
  return Object.entries(options).flatMap(([key, value]) => [`--${key}`, value]);
}

/** The rows of a file of comma-separated values. */
export function csvRows(text: string): string[][] {
  const rows: string[][] = [[]];
  for (const [, cell = "", end = ""] of text.matchAll(/("(?:[^"]|"")*"|[^,\r\n]*)(,|\r?\n|$)/g)) {
    rows.at(-1)?.push(cell.startsWith('"') ? cell.slice(1, -1).replaceAll('""', '"') : cell);
    if (end.endsWith("\n")) rows.push([]);
  }
  return rows.filter((row) => row.length > 1);
}

/** A state that is asked. */
export interface Asked {
  readonly fluid: string;
  readonly options: Readonly<Record<string, string>>;
  readonly pair: string;
  readonly first: string;
  readonly second: string;
}

export interface Answer {
  /** Values by the names of outputs; the phase is a text. */
  readonly values: ReadonlyMap<string, string>;
  /** The sentence of a refusal. */
  readonly refusal: string;
}

/** All properties of a state by the command. */
export function prop({ fluid, options, pair, first, second }: Asked): Answer {
  const { code, out, error } = native(["prop", "--csv", ...optionWords(options), "--", fluid, pair, first, second]);
  if (code !== 0) return { values: new Map(), refusal: error.replace(/^ostrel: |\nRun with --help.*/gs, "").trim() };
  return {
    values: new Map(
      csvRows(out)
        .slice(1)
        .map((row) => [row[0] ?? "", row[1] ?? ""]),
    ),
    refusal: "",
  };
}
