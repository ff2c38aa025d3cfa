// SPDX-License-Identifier: MIT
// The numbers of the page against those of the native command: 300 states, and the saturation table.
import assert from "node:assert/strict";
import type { Page } from "playwright-core";
import { follow, saved, test } from "./harness";
import { csvRows, native, prop, type Asked } from "./in_node";

const fluids = ["water", "propane", "toluene", "r134a", "co2", "nitrogen", "mdm", "ammonia", "benzene", "helium"];
const models = ["pr", "srk", "rk", "vdw", "cii", "mh", "ig", "izg"];
const pairs = [
  "pt",
  "tv",
  "td",
  "pv",
  "pd",
  "ph",
  "ps",
  "ts",
  "vh",
  "vs",
  "vu",
  "dh",
  "ds",
  "du",
  "hs",
  "pu",
  "su",
  "tq",
  "pq",
];
const variants: readonly Record<string, string>[] = [
  {},
  { reference: "nbp" },
  { volume: "translated" },
  { states: "metastable", phase: "vapor" },
];
const translatable = new Set(["pr", "srk", "rk"]);
const count = 300;

/** Numbers between 0 and 1 that are the same at each run. */
function randomNumbers(seed: number): () => number {
  let last = seed;
  return () => (last = (last * 48271) % 2147483647) / 2147483647;
}

/** States all over the plane, asked by all pairs: vapors, liquids, mixtures, and some that do not exist. */
function* states(): Generator<Asked> {
  const random = randomNumbers(20);
  const critical = new Map(
    fluids.map((name) => {
      const constants = JSON.parse(native(["info", "--json", name]).out) as unknown;
      return [name, criticalPoint(constants)] as const;
    }),
  );
  for (let i = 0; i < count; ++i) {
    const fluid = fluids[i % fluids.length] ?? "";
    const model = models[Math.floor(i / fluids.length) % models.length] ?? "";
    const variant = variants[i % 7] ?? {};
    const pair = pairs[i % pairs.length] ?? "";
    const options = { model, ...(variant.volume && !translatable.has(model) ? {} : variant) };
    const [tCrit, pCrit] = critical.get(fluid) ?? [NaN, NaN];
    const t = String(tCrit * (0.6 + 0.9 * random()));
    const p = String(pCrit * 10 ** (0.3 - 3 * random()));
    const q = String(Math.round(100 * random()) / 100);
    const base = prop({ fluid, options, pair: "pt", first: p, second: t });
    const value = (letter: string) => (letter === "q" ? q : (base.values.get(letter) ?? (letter === "t" ? t : p)));
    yield { fluid, options, pair, first: value(pair.charAt(0)), second: value(pair.charAt(1)) };
  }
}

/** Temperature and pressure of the critical point in what "ostrel info --json" prints. */
function criticalPoint(info: unknown): readonly [number, number] {
  const text = JSON.stringify(info);
  const number = (name: string) => Number(new RegExp(`"${name}"[^-0-9]*([-+.0-9e]+)`).exec(text)?.[1]);
  return [number("t_crit"), number("p_crit")];
}

interface Shown {
  readonly values: readonly (readonly [string, string])[];
  readonly phase: string;
  readonly refusal: string;
}

/** What the page shows, with all digits. */
const shown = (page: Page): Promise<Shown> =>
  page.evaluate(() => ({
    values: [...document.querySelectorAll<HTMLElement>("tr[data-output]")].map(
      (row) => [row.dataset.output ?? "", row.querySelector<HTMLElement>(".number")?.title ?? ""] as const,
    ),
    phase: document.querySelector(".phase strong")?.textContent ?? "",
    refusal: document.querySelector("#view :is(p.problem, .problem > p)")?.textContent ?? "",
  }));

/** A sentence without its full stop and without the folder of the catalogue. */
const withoutPlace = (sentence: string) => sentence.replace(/\.$/, "").replace(/[^ ]*\/(?=\w+\.osd)/g, "");

/** The temperature at which a relative difference of energies and entropies makes sense, since their zeros are free. */
const scaleOf = (name: string, values: ReadonlyMap<string, string>): number => {
  const size = (key: string) => Math.abs(Number(values.get(key)));
  const thermal = (size("p") * size("v")) / (size("z") || 1); // R t
  if ("hsuga".includes(name)) return name === "s" ? thermal / size("t") : thermal;
  return 0;
};

const worst = { difference: 0, where: "" };

test(
  `${count} states have the numbers of the command`,
  async (page) => {
    let compared = 0;
    let refused = 0;
    let place = 0;
    for (const asked of states()) {
      const expected = prop(asked);
      const link = new URLSearchParams({
        fluid: asked.fluid,
        units: "si",
        ...Object.fromEntries(Object.entries(asked.options).map(([key, value]) => [`options.${key}`, value])),
        "state.pair": asked.pair,
        "state.first": asked.first,
        "state.second": asked.second,
        "state.rows": String(2 + (place++ % 2)),
      });
      await follow(page, String(link));
      const here = await shown(page);
      const what = `${JSON.stringify(asked)}`;
      if (expected.refusal) {
        ++refused;
        assert.equal(withoutPlace(here.refusal), withoutPlace(expected.refusal), what);
        continue;
      }
      assert.equal(here.phase, expected.values.get("phase"), what);
      const names = here.values.map(([name]) => name);
      for (const name of expected.values.keys()) {
        if (name !== "phase" && name !== "q") assert.ok(names.includes(name), `${name} is not shown`);
      }
      for (const [name, text] of here.values) {
        const [value, other] = [Number(text || NaN), Number(expected.values.get(name) || NaN)];
        assert.equal(Number.isNaN(value), Number.isNaN(other), `${name} at ${what}: ${text}`);
        if (Number.isNaN(value) || value === other) continue;
        const size = Math.max(Math.abs(other), scaleOf(name, expected.values));
        const difference = Math.abs(value - other) / size;
        if (difference > worst.difference)
          Object.assign(worst, { difference, where: `${name} at ${what}: ${value}, ${other}` });
        ++compared;
      }
    }
    console.log(`${count} states, ${refused} of them refused by both; ${compared} numbers differ in some digit;`);
    console.log(`the largest relative difference is ${worst.difference.toExponential(1)}, ${worst.where}`);
    assert.ok(refused < count / 3, `${refused} states of ${count} do not exist`);
    assert.ok(worst.difference < 1e-9, worst.where);
  },
  { link: "units=si" },
);

test(
  "the saturation table has the numbers of the command, as CSV",
  async (page) => {
    const { name, text } = await saved(page, "Save the saturation table as CSV");
    assert.equal(name, "toluene-saturation.csv");
    const words = ["sat", "--csv", "--model", "pr", "--outputs", "d,h,s", "--", "toluene", "400:550:16"];
    const table = csvRows(native(words).out);
    const here = csvRows(text);
    assert.equal(here.length, table.length);
    for (const [i, row] of here.slice(1).entries()) {
      const expected = table[i + 1] ?? [];
      for (const [column, cell] of row.entries()) {
        const [value, other] = [Number(cell), Number(expected[column])];
        assert.ok(Math.abs(value - other) <= 1e-11 * Math.abs(other), `row ${i}: ${row.join()} and ${expected.join()}`);
      }
    }
  },
  { link: "fluid=toluene&units=si&options.model=pr&state.from=400+K&state.to=550+K&state.rows=16" },
);
