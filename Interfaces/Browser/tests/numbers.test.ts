// SPDX-License-Identifier: MIT
// Numbers of the WebAssembly module against those of the native library, in units in the last place.
//
// Both are the same sources, compiled without fused operations and without reordering. Only the mathematical functions
// differ: the C library's exp, log, pow, cbrt, sin and cos, which need not be rounded correctly. A state by t and v is a
// formula, so that a difference of one unit in a function grows as the formula's condition lets it grow. Other pairs are
// solved, and a solution moves by what its equation moves, divided by a slope.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { test } from "node:test";
import type { Fluid, Library } from "../core/library";
import { loadLibrary, native, optionWords, pathOf } from "./in_node";

interface Reference {
  readonly name: string;
  readonly options: Record<string, string>;
  readonly t: number[];
  readonly v: number[];
}

/** The fluids and the states of the reference vectors of handles. */
function references(): Reference[] {
  const found: Reference[] = [];
  for (const line of readFileSync(pathOf("Tests/Reference/handles.txt"), "utf8").split("\n")) {
    const words = line.split(" ");
    if (words[0] === "fluid") {
      const [model, ...others] = words.slice(2).join(" ").split("; ");
      const options: Record<string, string> = { model: model ?? "" };
      for (const other of others) {
        const [key, value] = other.split("=");
        options[key ?? ""] = value ?? "";
      }
      found.push({ name: words[1] ?? "", options, t: [], v: [] });
    } else if (words[0] === "state") {
      found.at(-1)?.t.push(Number(words[1]));
      found.at(-1)?.v.push(Number(words[2]));
    }
  }
  return found;
}

const view = new DataView(new ArrayBuffer(8));
/** The place of a double among all doubles. */
function rank(value: number): bigint {
  view.setFloat64(0, value);
  const bits = view.getBigInt64(0);
  return bits < 0n ? -0x8000_0000_0000_0000n - bits : bits;
}
/** The number of doubles between two, 0 for the same. */
function units(a: number, b: number): number {
  if (Number.isNaN(a) || Number.isNaN(b)) return Number.isNaN(a) === Number.isNaN(b) ? 0 : Infinity;
  const difference = rank(a) - rank(b);
  return Number(difference < 0n ? -difference : difference);
}

/** The native values of states, in the order of the module's. */
function nativeValues(
  library: Library,
  of: Reference,
  pair: string,
  outputs: readonly string[],
  first: Float64Array,
  second: Float64Array,
): { values: Float64Array; status: Int32Array } {
  const lines = Array.from(first, (one, i) => `${one},${second[i]}\n`).join("");
  const said = native(["eval", of.name, pair, outputs.join(","), ...optionWords(of.options)], lines);
  const rows = said.out.trimEnd().split("\n");
  assert.equal(rows.length, first.length, said.error);
  const phases = [0, 1, 2, 3, 4].map((phase) => library.phaseName(phase));
  const values = new Float64Array(first.length * outputs.length);
  const status = new Int32Array(first.length);
  rows.forEach((row, i) => {
    const cells = row.split(",");
    outputs.forEach((output, k) => {
      const cell = cells[k] ?? "";
      const known = { "": NaN, inf: Infinity, "-inf": -Infinity, nan: NaN }[cell];
      values[i * outputs.length + k] = known ?? (output === "phase" ? phases.indexOf(cell) : Number(cell));
    });
    status[i] = Number(cells[outputs.length]);
  });
  return { values, status };
}

const bounds = [0, 1, 2, 4, 8, 16, 64, 1024];
const bucketNames = ["0", "1", "2", "3-4", "5-8", "9-16", "17-64", "65-1024", "more"];

/** How many differences there are of which size, for each output. */
class Histogram {
  private readonly rows = new Map<string, { counts: number[]; largest: number; at: string }>();

  add(output: string, difference: number, at: string): void {
    let row = this.rows.get(output);
    if (row === undefined) this.rows.set(output, (row = { counts: bucketNames.map(() => 0), largest: 0, at: "" }));
    const bucket = bounds.findIndex((bound) => difference <= bound);
    const place = bucket < 0 ? bounds.length : bucket;
    row.counts[place] = (row.counts[place] ?? 0) + 1;
    if (difference > row.largest) Object.assign(row, { largest: difference, at });
  }
  get total(): number[] {
    return bucketNames.map((_, i) => [...this.rows.values()].reduce((sum, row) => sum + (row.counts[i] ?? 0), 0));
  }
  get share(): number {
    const total = this.total;
    return (total[0] ?? 0) / total.reduce((a, b) => a + b);
  }
  largest(output: string): number {
    return this.rows.get(output)?.largest ?? 0;
  }
  print(title: string): void {
    const line = (name: string, cells: readonly (string | number)[], behind: string): void =>
      console.log(`${name.padEnd(20)}${cells.map((cell) => String(cell).padStart(8)).join("")}  ${behind}`);
    console.log(`\n${title}`);
    line("units in last place", bucketNames, "largest");
    for (const [output, row] of this.rows) if (row.largest > 0) line(output, row.counts, `${row.largest} (${row.at})`);
    const same = [...this.rows].filter(([, row]) => row.largest === 0).map(([output]) => output);
    line("all outputs", this.total, `${(100 * this.share).toFixed(2)} % are the same`);
    if (same.length > 0) console.log(`the same everywhere: ${same.join(", ")}`);
  }
}

const library = await loadLibrary();
const outputs = library.list("outputs").map((row) => row.name);
const derivatives = library.list("derivatives").map((row) => row.name);
const all = references();

/** The smallest size at which a unit in the last place of an output counts: h, s, u, g and a pass through 0 by
 * convention, where cancellation leaves few digits. */
function scaleOf(fluid: Fluid, output: string): number {
  const r = fluid.constant("r_gas");
  if (["h", "u", "g", "a"].includes(output)) return r * fluid.constant("t_crit");
  return output === "s" ? r : 0;
}

function compare(
  histogram: Histogram,
  of: Reference,
  fluid: Fluid,
  pair: string,
  names: readonly string[],
  first: Float64Array,
  second: Float64Array,
): void {
  const own = fluid.evaluate(pair, names, first, second);
  const others = nativeValues(library, of, pair, names, first, second);
  assert.deepEqual([...own.status], [...others.status], `${of.name} ${pair}: the statuses`);
  const scales = names.map((name) => scaleOf(fluid, name));
  own.values.forEach((value, i) => {
    const other = others.values[i] ?? NaN;
    const state = Math.floor(i / names.length);
    const scale = scales[i % names.length] ?? 0;
    const difference =
      Math.abs(value) < scale && Math.abs(other) < scale
        ? units(scale + Math.abs(value - other), scale)
        : units(value, other);
    const at = `${of.name} ${of.options["model"] ?? ""} ${pair} ${first[state]} ${second[state]}`;
    histogram.add(names[i % names.length] ?? "", difference, at);
  });
}

/** The fluids of the catalogue with their own equations, at states around their critical points and below. */
function catalogue(): Reference[] {
  const grid = [0.55, 0.75, 0.95, 1.05, 1.4].flatMap((t) => [0.38, 0.9, 3, 40, 1000].map((v) => [t, v] as const));
  return library.find("").map(({ file }) => {
    const fluid = library.open(file);
    const t = fluid.constant("t_crit") || 300;
    const v = fluid.constant("v_crit") || 1e-3;
    fluid.close();
    return { name: file, options: {}, t: grid.map((one) => one[0] * (t > 0 ? t : 300)), v: grid.map((one) => one[1] * (v > 0 ? v : 1e-3)) };
  });
}

const open = (of: Reference): Fluid => library.open(of.name, of.options);

test("units in the last place are counted", () => {
  assert.equal(units(1, 1), 0);
  assert.equal(units(1, 1 + Number.EPSILON), 1);
  assert.equal(units(-1, -1 - 4 * Number.EPSILON), 4);
  assert.equal(units(-Number.MIN_VALUE, Number.MIN_VALUE), 2);
  assert.equal(units(NaN, NaN), 0);
  assert.equal(units(NaN, 1), Infinity);
});

test("states by t and v, all outputs and derivatives", () => {
  const histogram = new Histogram();
  for (const of of all) {
    const fluid = open(of);
    compare(histogram, of, fluid, "tv", [...outputs, ...derivatives], Float64Array.from(of.t), Float64Array.from(of.v));
    fluid.close();
  }
  histogram.print("States by t and v of Tests/Reference/handles.txt");
  // A function that is off by one unit is multiplied by its condition, mostly below 10, and by those of sums that cancel.
  // The native C library chooses its functions by the processor, so that the share is not the same everywhere.
  assert.ok(histogram.share >= 0.95);
  for (const output of [...outputs, ...derivatives]) assert.ok(histogram.largest(output) <= 64, output);
});

test("every fluid of the catalogue", () => {
  const histogram = new Histogram();
  const every = catalogue();
  assert.ok(every.length > 300);
  for (const of of every) {
    const fluid = open(of);
    compare(histogram, of, fluid, "tv", outputs, Float64Array.from(of.t), Float64Array.from(of.v));
    fluid.close();
  }
  histogram.print(`${every.length} fluids with their own equations, 25 states each by t and v`);
  assert.ok(histogram.share >= 0.95);
  for (const output of outputs) assert.ok(histogram.largest(output) <= 1024, output);
});

test("solved states, every pair", () => {
  const histogram = new Histogram();
  const wanted = ["t", "p", "v", "h", "s", "q"];
  for (const of of all) {
    const fluid = open(of);
    const letters = ["t", "p", "v", "d", "h", "s", "u", "q"];
    const values = fluid.evaluate("tv", letters, Float64Array.from(of.t), Float64Array.from(of.v)).values;
    for (const { name: pair } of library.list("inputs")) {
      const [first, second] = [...pair].map((letter) =>
        Float64Array.from(of.t, (_, i) => values[i * letters.length + letters.indexOf(letter)] ?? NaN),
      );
      compare(histogram, of, fluid, pair, wanted, first!, second!);
    }
    fluid.close();
  }
  histogram.print("The same states by all pairs of inputs");
  // Near the critical point a solution moves by the root of what its equation moves.
  assert.ok(histogram.share >= 0.95);
  for (const output of wanted) assert.ok(histogram.largest(output) <= 1024, output);
});
