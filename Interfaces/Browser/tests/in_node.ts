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
