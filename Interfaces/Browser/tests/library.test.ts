// SPDX-License-Identifier: MIT
// The typed interface of the library: the same answers and sentences as the native command, and refusals that are errors
// and nothing worse.
import assert from "node:assert/strict";
import { mkdtempSync, readdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { test } from "node:test";
import { format } from "node:util";
import { LibraryError } from "../core/library";
import { loadLibrary, native, pathOf } from "./in_node";

const library = await loadLibrary();

function refusal(call: () => unknown): LibraryError {
  try {
    call();
  } catch (reason) {
    assert.ok(reason instanceof LibraryError, String(reason));
    return reason;
  }
  return assert.fail("nothing was refused");
}

test("lists are those of the documentation", () => {
  const page = readFileSync(pathOf("Documentation/Handles.md"), "utf8");
  for (const kind of ["inputs", "outputs", "constants", "texts", "models", "options", "statuses"] as const) {
    assert.ok(library.list(kind).length > 3, kind);
    for (const row of library.list(kind)) assert.ok(page.includes(`\`${row.name}\``), `${kind} ${row.name}`);
  }
  assert.equal(library.list("derivatives").length, 280);
  assert.equal(library.version, readFileSync(pathOf("VERSION"), "utf8").split("\n")[0]);
});

test("the lines of the documentation print what stands there", async () => {
  const page = readFileSync(pathOf("Documentation/Browser.md"), "utf8");
  const [, lines = "", printed] = /^```ts\n(.*?)^```\n```text\n(.*?)^```$/ms.exec(page) ?? [];
  const said: string[] = [];
  const console = { log: (...values: unknown[]) => said.push(`${format(...values)}\n`) };
  await new Function("load", "console", `return (async () => {${lines}})();`)(loadLibrary, console);
  assert.equal(said.join(""), printed);
});

test("fluids are found as by the command", () => {
  for (const words of ["R134", "tolu", "alcohols", "C2H6O", "67-64-1", "waterr", "no such fluid", "ä", ""]) {
    const said = native(words === "" ? ["fluids", "--json"] : ["fluids", words, "--json"]).out;
    const files = said === "" ? [] : (JSON.parse(said) as { fluids: { name: string }[] }).fluids.map((row) => row.name);
    assert.deepEqual(library.find(words).map((match) => match.file), files, words);
  }
  assert.equal(library.find("").length, readdirSync(pathOf("Fluids")).filter((name) => name.endsWith(".osd")).length);
});

test("every fluid of the catalogue opens, with its texts", () => {
  for (const { file } of library.find("")) {
    const fluid = library.open(file);
    assert.equal(fluid.text("text"), readFileSync(pathOf(`Fluids/${file}.osd`), "utf8"));
    assert.equal(fluid.text("source"), `/Fluids/${file}.osd`);
    fluid.close();
  }
  const water = library.open("7732-18-5");
  assert.equal(water.text("formula"), "H2O");
  assert.equal(water.text("cas"), "7732-18-5");
  assert.equal(water.constant("t_triple"), 273.16);
  assert.ok(Number.isNaN(library.openText(water.text("text")).constant("t_triple")));
});

test("calls that cannot be understood are refused", () => {
  const water = library.open("water");
  const one = Float64Array.of(1);
  assert.equal(refusal(() => water.evaluate("zz", "d", one, one)).status, 10);
  assert.equal(refusal(() => water.evaluate("pt", "dd", one, one)).status, 10);
  assert.equal(refusal(() => water.evaluate("pt", "d", one, Float64Array.of(1, 2))).status, 10);
  assert.equal(refusal(() => library.open("nosuchfluid")).status, 11);
  assert.match(refusal(() => library.open("nosuchfluid")).message, /did you mean/);
  assert.equal(refusal(() => library.open("water", { model: "xyz" })).status, 10);
  assert.equal(refusal(() => library.open("water", { "a=b; model": "pr" })).status, 10);
  assert.ok(Number.isNaN(water.value("pt", -1, 300, "d")));
  const failed = water.evaluate("pt", ["d"], Float64Array.of(1e5, -1), Float64Array.of(300, 300));
  assert.deepEqual([...failed.status], [0, 2]);
  assert.match(failed.message ?? "", /state 1/);
  assert.equal(water.evaluate("pt", ["d"], Float64Array.of(1e5), Float64Array.of(300)).message, undefined);
  assert.equal(water.evaluate("pt", ["d"], new Float64Array(0), new Float64Array(0)).values.length, 0);
  water.close();
  water.close();
  refusal(() => water.value("pt", 1e5, 300, "d"));
  refusal(() => library.curves(water, "ts"));
});

test("hostile texts are refused", () => {
  const garbage = Array.from({ length: 1 << 18 }, (_, i) => String.fromCharCode((i * 7919) % 65536)).join("");
  for (const text of ["", "\n", "a\0b", "\ud800", "x".repeat(1 << 20), garbage.replaceAll("\0", ""), garbage, "1\n".repeat(1e5)]) {
    refusal(() => library.openText(text));
    refusal(() => library.cycle(text));
    assert.notEqual(library.check(text).error, "");
  }
  assert.equal(library.open("water").constant("t_crit"), 647.096);
});

test("definitions that are nested deeply are refused, as by the command", () => {
  const folder = mkdtempSync(join(tmpdir(), "ostrel-cycle-"));
  try {
    const key = (count: number): string => Array(count).fill("a").join(".");
    const texts = [
      ...[50, 101, 102, 49_000, 400_000].flatMap((count) => [`fluid = "water"\n[${key(count)}]\nx = 1\n`, `fluid = "water"\n${key(count)} = 1\n`]),
      `x = ${"[".repeat(9e5)}\n`,
      `x = ${`[{${key(90)} =\n`.repeat(4000)}`,
      `x = ${`[{${key(90)} = `.repeat(15)}1${"}]".repeat(15)}\n`,
      `x = ${`[\n{${key(90)} = `.repeat(10)}1${"}]".repeat(10)}\n`,
      "[a]\n".repeat(2e5),
    ];
    for (const text of texts) {
      const path = join(folder, "deep.toml");
      writeFileSync(path, text);
      const said = native(["cycle", path]);
      assert.equal(said.code, 1);
      const own = refusal(() => library.cycle(text));
      assert.ok(said.error.includes(own.message.replace(/^line (\d+): /, "$1: ")), `${said.error} ${own.message}`);
    }
  } finally {
    rmSync(folder, { recursive: true });
  }
});

test("saturation", () => {
  const fluid = library.open("r134a");
  const both = fluid.saturation("t", ["p", "d"], Float64Array.of(300, 500));
  assert.deepEqual([...both.status], [0, 5]);
  assert.equal(both.liquid[0], both.vapor[0]);
  assert.equal(both.liquid[1], fluid.value("tq", 300, 0, "d"));
  assert.equal(both.vapor[1], fluid.value("tq", 300, 1, "d"));
});

test("remarks are those of the command", () => {
  const fluid = library.open("water");
  const said = JSON.parse(native(["prop", "water", "pt", "1e5", "250", "d", "eta", "--json"]).out) as unknown;
  const remarks = fluid.remarks(["d", "eta"], "pt", 250, 1e5, 0);
  assert.ok(remarks.length >= 3);
  for (const remark of remarks) assert.ok(JSON.stringify(said).includes(JSON.stringify(remark.text).slice(1, -1)), remark.text);
  fluid.close();
});

/** What `ostrel check` prints about the same text. */
function checked(folder: string, name: string, text: string): { out: string; error: string } {
  writeFileSync(join(folder, name), text);
  const said = native(["check", join(folder, name)]);
  const without = (words: string): string => words.replaceAll(`${folder}/`, "");
  return { out: without(said.out), error: without(said.error) };
}

test("check says what the command says", () => {
  const folder = mkdtempSync(join(tmpdir(), "ostrel-check-"));
  try {
    const water = readFileSync(pathOf("Fluids/water.osd"), "utf8");
    const lines = water.split("\n");
    const texts = [
      water,
      lines.slice(0, 9).join("\n"),
      [...lines.slice(0, 5), ...lines.slice(6)].join("\n"),
      water.replace("647.096 ", "647,096 "),
      water.replace("217.7547496", "22064000"),
      water.replace("18.01527", "-1"),
      water.replace("4                        gas_type", "9                        gas_type"),
      water.replace("217.7547496", "217.75474961234"),
      "",
    ];
    for (const { file } of library.find("").filter((_, i) => i % 12 === 0)) texts.push(library.open(file).text("text"));
    for (const text of texts) {
      const said = checked(folder, "some.osd", text);
      const own = library.check(text, "some.osd");
      const printed = [
        ...own.lines,
        ...(own.lines.length > 0 && (own.warnings.length > 0 || own.error === "") ? [""] : []),
        ...own.warnings.map((warning) => `warning: ${warning}`),
        ...(own.error !== "" ? [] : own.warnings.length > 0 ? ["This file can be loaded; see the warnings above."] : ["This file can be used."]),
      ];
      assert.deepEqual(printed, said.out.split("\n").slice(0, -1));
      const told = own.error === "" ? [] : [own.error, ...own.advice];
      for (const sentence of told) assert.ok(said.error.includes(sentence), `${sentence}\nis not in\n${said.error}`);
      assert.equal(own.error === "", said.error === "");
    }
  } finally {
    rmSync(folder, { recursive: true });
  }
});

test("cycles are those of the command", () => {
  for (const name of readdirSync(pathOf("Examples/Cycles"))) {
    const text = readFileSync(pathOf(`Examples/Cycles/${name}`), "utf8");
    const said = JSON.parse(native(["cycle", `Examples/Cycles/${name}`, "--units", "si", "--json"]).out) as {
      states: { state: string; t: number; p: number; h: number }[];
      figures: Record<string, { value: number }>;
    };
    const own = library.cycle(text);
    assert.deepEqual(own.places, said.states.map((state) => state.state));
    const near = (a: number | undefined, b: number, what: string): void =>
      assert.ok(Math.abs((a ?? NaN) - b) <= 1e-9 * Math.max(Math.abs(b), 1e-3), `${name} ${what}: ${a}, not ${b}`);
    said.states.forEach((state, i) => {
      near(own.states.t[i], state.t, state.state);
      near(own.states.p[i], state.p, state.state);
      near(own.states.h[i], state.h, state.state);
    });
    for (const figure of own.figures)
      if (Number.isNaN(figure.value)) assert.equal(said.figures[figure.name], undefined, figure.name);
      else near(figure.value, said.figures[figure.name]?.value ?? NaN, figure.name);
    assert.ok(own.given.length > 4);
    for (const { key, value, begin, end } of own.given) {
      const written = text.slice(begin, end);
      const read = written.startsWith('"') ? library.units.parse(written.slice(1, -1), key.si, key.difference) : Number(written);
      assert.equal(read, value, `${key.name} = ${written}`);
    }
    const [first] = own.processes;
    assert.ok(first && first.points.t.length > 2 && first.points.t.length === first.points.v.length);
    assert.equal(first.points.h[0], own.states.h[first.from]);
  }
});

test("a slider moves a cycle, and its text is read without a solution", () => {
  const text = '# ä𝄞 in front\nfluid = "toluene"\n[evaporator]\np = "15 bar" # 𝄞\nsuperheat = "5 K"\n[condenser]\nt="45 degC"\n[turbine]\nefficiency = 0.85\n';
  const moved = library.cycle(text, { "evaporator.p": 2e6 });
  assert.equal(moved.given.find((one) => one.key.name === "evaporator.p")?.value, 2e6);
  const written = library.cycle(text.replace("15 bar", "20 bar"));
  assert.deepEqual(moved.figures, written.figures);
  for (const { begin, end } of moved.given) assert.match(text.slice(begin, end), /^("[^"]*"|0\.85)$/);
  const own = library.openText(library.open("toluene").text("text"));
  assert.deepEqual(library.cycle(text, {}, own).states.t, library.cycle(text).states.t);
  assert.equal(library.readCycle('fluid = "nosuch"\n[condenser]\nt = 300').given[0]?.value, 300);
  const wrong = refusal(() => library.cycle('fluid = "toluene"\n[evaporator]\npp = 4'));
  assert.equal(wrong.line, 3);
  assert.deepEqual(wrong.advice[0], "Did you mean p?");
  assert.match(refusal(() => library.cycle('fluid = "nosuch"')).message, /^fluid "nosuch"/);
  refusal(() => library.cycle(text, { "no.key": 1 }));
});

test("diagrams", () => {
  const fluid = library.open("water");
  for (const kind of library.diagramKinds) {
    const drawn = library.curves(fluid, kind.name);
    assert.ok(drawn.dome.length > 100 && drawn.lines.length > 5, kind.name);
    assert.equal(drawn.dome[2 * drawn.domePeak], drawn.critical?.[0]);
    for (const line of drawn.lines) {
      assert.ok(kind.possible.includes(line.what) && line.label !== "");
      for (const piece of line.pieces) assert.ok(piece.length >= 4 && piece.every((x) => !Number.isNaN(x)));
    }
    const zoomed = library.curves(fluid, kind.name, { x: drawn.x, y: drawn.y, families: "", units: "si" });
    assert.deepEqual([zoomed.x, zoomed.y, zoomed.lines.length], [drawn.x, drawn.y, 0]);
  }
  const chosen = library.curves(fluid, "ts", { families: "p", values: { p: [123456] } });
  assert.deepEqual(chosen.lines.map((line) => [line.value, line.label]), [[123456, "1.23456 bar"]]);
  assert.match(refusal(() => library.curves(fluid, "xy")).message, /no diagram/);
  refusal(() => library.curves(fluid, "ts", { x: [1e9, 2e9], y: [1, 2] }));
  assert.ok(library.curves(library.open("water", { model: "ig" }), "ts").remarks.some((text) => /no saturation line/i.test(text)));
});

test("nozzles", () => {
  const flow = library.nozzle(library.open("water"), "pt", 1e6, 600, 1e5, 10);
  assert.equal(flow.places[0], "total state");
  assert.ok(flow.places.includes("throat") && flow.choking !== "none");
  assert.equal(flow.flow.velocity.length, flow.places.length);
  refusal(() => library.nozzle(library.open("water"), "pt", 1e5, 600, 1e6));
});

test("units", () => {
  const { units } = library;
  assert.equal(units.parse("10 bar", "Pa"), 1e6);
  assert.equal(units.parse(" 20degC ", "K"), 293.15);
  assert.equal(units.parse("10 degC", "K", true), 10);
  assert.equal(units.parse("7.5", "Pa"), 7.5);
  assert.match(refusal(() => units.parse("10 apples", "Pa")).message, /no unit/);
  refusal(() => units.parse("1\0", "Pa"));
  assert.deepEqual([...units.parseRange("1bar:3bar:3", "Pa")], [1e5, 2e5, 3e5]);
  refusal(() => units.parseRange("1:2:999999999999", "Pa"));
  assert.equal(units.shown("K", "engineering").name, "degC");
  assert.equal(units.shown("K", "engineering", true).name, "K");
  assert.equal(units.shown("Pa/K", "engineering").name, "Pa/K");
  assert.equal(units.quantity("K"), "temperature");
  for (const unit of units.all) assert.ok(Math.abs(units.to(units.from(12.5, unit), unit) - 12.5) < 1e-9);
  // The longest decimals are read exactly, as natively.
  for (const text of ["9007199254740993", "2.2250738585072011e-308", "1e23", `0.${"1".repeat(900)}`])
    assert.equal(units.parse(text, "Pa"), Number(text));
});

test("memory does not grow", () => {
  const work = (): void => {
    for (let i = 0; i < 40; ++i) {
      const fluid = library.open("toluene");
      fluid.evaluate("pt", "d,h", new Float64Array(1000).fill(1e5), new Float64Array(1000).fill(400));
      if (i % 20 === 0) library.curves(fluid, "ts");
      fluid.close();
      refusal(() => library.open("nosuch"));
    }
  };
  work();
  const before = library.memory;
  for (let i = 0; i < 3; ++i) work();
  assert.equal(library.memory, before);
});
