// SPDX-License-Identifier: MIT
// How long the module takes: from the script to the first number, for states against the native library, and for what a
// page does at each key or frame. The bounds are those of a page that feels immediate; the figures are printed.
import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { readFileSync } from "node:fs";
import { test } from "node:test";
import { fileURLToPath } from "node:url";
import { loadLibrary, pathOf } from "./in_node";

const begun = performance.now();
const library = await loadLibrary();
const ready = performance.now();
const density = library.open("water").value("pt", 1e5, 300, "d");
const first = performance.now();

/** What this script prints, in a process of its own, in place of the tests. */
const alone = "OSTREL_FIRST_NUMBER";
if (process.env[alone] !== undefined) {
  console.log(JSON.stringify({ ready: ready - begun, first: first - begun, density }));
  process.exit();
}

test("the first number", () => {
  const measured = Array.from({ length: 7 }, () => {
    const run = spawnSync(process.execPath, [fileURLToPath(import.meta.url)], {
      encoding: "utf8",
      env: { ...process.env, [alone]: "1" },
    });
    assert.equal(run.status, 0, run.stderr);
    return JSON.parse(run.stdout) as { ready: number; first: number; density: number };
  });
  assert.ok(measured.every((run) => run.density === density));
  const best = measured.reduce((a, b) => (a.first < b.first ? a : b));
  console.log(
    `library ready after ${best.ready.toFixed(0)} ms, first number after ${best.first.toFixed(0)} ms (the best of ${measured.length} runs)`,
  );
  assert.ok(best.first < 500);
});

/** The least time of several calls [ms]. */
function least(runs: number, call: () => unknown): number {
  let best = Infinity;
  for (let i = 0; i < runs; ++i) {
    const from = performance.now();
    call();
    best = Math.min(best, performance.now() - from);
  }
  return best;
}

const count = 4096;
const runs = 15;
const row = (fluid: string, pair: string, outputs: string, a: (x: number) => number, b: (x: number) => number) => {
  const places = Array.from({ length: count }, (_, i) => (i + 0.5) / count);
  return { fluid, pair, outputs, runs, first: places.map(a), second: places.map(b) };
};
const measured = [
  row("water", "tv", "p,h,s", (x) => 400 + 600 * x, (x) => 0.05 + 2 * x),
  row("water", "pt", "d,h,s", (x) => 1e5 + 1e6 * x, (x) => 500 + 400 * x),
  row("toluene", "ph", "t,d,s", (x) => 1e5 + 2e6 * x, (x) => -3e5 + 6e5 * x),
  row("r134a", "ps", "t,d,h", (x) => 1e5 + 2e6 * x, (x) => -1000 + 900 * x),
  row("mdm", "pt", "d,h,s,c", (x) => 1e5 + 2e6 * x, (x) => 350 + 250 * x),
  row("r134a", "tq", "p,d,h", (x) => 240 + 120 * x, (x) => x),
];

test("a state, against the native library", () => {
  const native = process.env.OSTREL_LIBRARY ?? pathOf("build/demo/libostrel.so");
  const python = spawnSync("python3", [pathOf("Interfaces/Browser/tests/native_times.py"), native], {
    input: JSON.stringify(measured),
    encoding: "utf8",
    env: { ...process.env, OSTREL_FLUIDS: pathOf("Fluids") },
    maxBuffer: 1 << 26,
  });
  assert.equal(python.status, 0, python.stderr);
  const times = JSON.parse(python.stdout) as number[];
  console.log("\nfluid     pair  outputs   WebAssembly     native   ratio");
  measured.forEach((one, i) => {
    const fluid = library.open(one.fluid);
    const a = Float64Array.from(one.first);
    const b = Float64Array.from(one.second);
    const own = (1e6 * least(runs, () => fluid.evaluate(one.pair, one.outputs, a, b))) / count;
    const other = times[i] ?? NaN;
    console.log(
      `${one.fluid.padEnd(10)}${one.pair.padEnd(6)}${one.outputs.padEnd(9)}${own.toFixed(0).padStart(9)} ns${other.toFixed(0).padStart(8)} ns${(own / other).toFixed(2).padStart(8)}`,
    );
    assert.ok(own / other < 6, `${one.fluid} ${one.pair}`);
    fluid.close();
  });
});

test("what a page does at each key or frame", () => {
  const print = (what: string, ms: number): void => console.log(`${what.padEnd(34)}${ms.toFixed(2).padStart(8)} ms`);
  console.log();
  for (const words of ["t", "tolu", "R134", "no such words"])
    print(`find "${words}"`, least(20, () => library.find(words)));
  print("open a fluid", least(20, () => library.open("toluene").close()));
  const fluid = library.open("toluene");
  for (const { name } of library.diagramKinds) print(`curves ${name}`, least(10, () => library.curves(fluid, name)));
  const outputs = library.list("outputs").map((one) => one.name);
  print("all properties of one state", least(50, () => fluid.evaluate("ph", outputs, Float64Array.of(1e5), Float64Array.of(1e4))));
  const text = readFileSync(pathOf("Examples/Cycles/toluene.toml"), "utf8");
  print("a cycle from its text", least(10, () => library.cycle(text)));
  print("a cycle, moved by a slider", least(10, () => library.cycle(text, { "evaporator.p": 1.5e6 }, fluid)));
  print("check of a parameter text", least(5, () => library.check(fluid.text("text"))));
});
