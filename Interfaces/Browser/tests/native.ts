// SPDX-License-Identifier: MIT
// The native command, to which the page's numbers are compared.
import { spawnSync } from "node:child_process";
import { command, csvRows } from "./harness";

export interface Answer {
  /** Values by the names of outputs; the phase is a text. */
  readonly values: ReadonlyMap<string, string>;
  /** The sentence of a refusal. */
  readonly refusal: string;
}

export interface Asked {
  readonly fluid: string;
  readonly options: Readonly<Record<string, string>>;
  readonly pair: string;
  readonly first: string;
  readonly second: string;
}

export function run(...args: readonly string[]): { code: number | null; out: string; error: string } {
  if (!command) throw new Error("OSTREL_COMMAND must be the path of the native command.");
  const done = spawnSync(command, args, { encoding: "utf8" });
  return { code: done.status, out: done.stdout, error: done.stderr };
}

/** All properties of a state by the command. */
export function prop({ fluid, options, pair, first, second }: Asked): Answer {
  const given = Object.entries(options).flatMap(([key, value]) => [`--${key}`, value]);
  const { code, out, error } = run("prop", "--csv", ...given, "--", fluid, pair, first, second);
  if (code !== 0) return { values: new Map(), refusal: error.replace(/^ostrel: |\nRun with --help.*/gs, "").trim() };
  return { values: new Map(csvRows(out).slice(1).map((row) => [row[0] ?? "", row[1] ?? ""])), refusal: "" };
}
