// SPDX-License-Identifier: MIT
// The view of a state: fields, properties, tables, and the lines of other languages.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { existsSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { dirname, join, resolve } from "node:path";
import type { Page } from "playwright-core";
import { follow, saved, test } from "./harness";
import { command, csvRows, pathOf } from "./in_node";

const number = (page: Page, output: string) => page.locator(`tr[data-output="${output}"] .number`);

test("the number follows each key, and a unit can be typed or chosen", async (page) => {
  const field = page.getByLabel("Pressure", { exact: true });
  await field.fill("");
  assert.equal(await page.locator("tr[data-output]").count(), 0);
  await field.pressSequentially("2");
  assert.match(await number(page, "p").innerText(), /^2\.00000$/m);
  await field.pressSequentially("5");
  assert.match(await number(page, "p").innerText(), /25\.0000/);
  await field.fill("3 at");
  assert.equal(await field.inputValue(), "3 at");
  await field.fill("3 atm");
  await field.blur();
  assert.equal(await field.inputValue(), "3");
  assert.equal(await page.getByLabel("Unit of Pressure").inputValue(), "atm");
  assert.equal(await number(page, "p").getAttribute("title"), String(3.03975));
  await page.getByLabel("Unit of Pressure").selectOption("kPa");
  assert.equal(await field.inputValue(), "303.975");
});

test("a text that is no number is refused with the library's sentence", async (page) => {
  const field = page.getByLabel("Temperature", { exact: true });
  await field.fill("20 bar");
  await page.getByText(/degF/).last().waitFor();
  assert.equal(await field.getAttribute("aria-invalid"), "true");
  await field.fill("-5 K");
  await page.locator(".properties p.problem", { hasText: "outside what the model can represent" }).waitFor();
});

test("another pair describes the same state", async (page) => {
  const before = Number(await number(page, "c").getAttribute("title"));
  for (const pair of ["hs", "dh", "tv", "pu", "pt"]) {
    await page.getByLabel("Given are").selectOption(pair);
    const now = Number(await number(page, "c").getAttribute("title"));
    assert.ok(Math.abs(now / before - 1) < 1e-6, `${pair}: ${now}, ${before}`);
  }
});

test("a derivative on demand", async (page) => {
  const choose = (label: string, letter: string) => page.getByLabel(label, { exact: true }).selectOption(letter);
  await choose("of", "p");
  await choose("by", "d");
  await choose("at constant", "s");
  await page.getByRole("button", { name: "Add" }).click();
  const [speed, derivative] = [number(page, "c"), number(page, "dp/dd|s")];
  await page.getByLabel("SI", { exact: true }).check();
  const c = Number(await speed.getAttribute("title"));
  const square = Number(await derivative.getAttribute("title"));
  assert.ok(Math.abs(square / c ** 2 - 1) < 1e-12);
  await page.getByRole("button", { name: /^Leave out/ }).click();
  assert.equal(await derivative.count(), 0);
  await choose("at constant", "d");
  assert.ok(await page.getByRole("button", { name: "Add" }).isDisabled());
});

test(
  "outputs without a meaning between the phases are named",
  async (page) => {
    await page.getByText(/Between the phases, .*cp.* have no meaning/).waitFor();
    assert.match(await page.locator(".phase").innerText(), /two-phase, vapor quality 0\.5/);
  },
  { link: "fluid=water&state.pair=pq&state.second=0.5" },
);

test("the state as CSV", async (page) => {
  const { name, text } = await saved(page, "Save the properties as CSV");
  assert.equal(name, "propane-state.csv");
  const rows = new Map(csvRows(text).map((row) => [row[0], row]));
  assert.equal(rows.get("phase")?.[1], "vapor");
  assert.equal(rows.get("d")?.[1], await number(page, "d").getAttribute("title"));
  assert.equal(rows.get("cp")?.[2], "kJ/(kg K)");
});

test("the equations side by side, as CSV", async (page) => {
  const rows = csvRows((await saved(page, "Save the comparison of equations as CSV")).text);
  const [head = [], ...models] = rows;
  assert.deepEqual(head.slice(0, 4), ["model", "equation of state", "phase", "d [kg/m3]"]);
  assert.equal(models.length, 8);
  const gas = models.find((row) => row[0] === "ig") ?? [];
  const density = (1e5 * 0.04409562) / (8.314 * 298.15);
  assert.ok(Math.abs(Number(gas[3]) / density - 1) < 1e-6, `${gas[3]} ${density}`);
  await page
    .getByRole("row", { name: /Peng-Robinson/ })
    .getByText(/[+−]0\.11 %/)
    .first()
    .waitFor();
});

test("kept states, their differences, and CSV", async (page) => {
  await page.getByRole("button", { name: "Keep this state" }).click();
  await page.getByLabel("Temperature", { exact: true }).fill("60");
  await page.getByRole("button", { name: "Keep this state" }).click();
  const table = page.getByRole("region", { name: "Kept states" });
  await table.getByText("+35.00", { exact: true }).waitFor();
  const rows = csvRows((await saved(page, "Save the kept states as CSV")).text);
  assert.deepEqual(
    rows.map((row) => row[3]),
    ["t [degC]", "25", "60"],
  );
  await page.getByRole("button", { name: "Remove state 1" }).click();
  assert.equal(await table.getByRole("row").count(), 2);
});

test("the saturation table by pressure", async (page) => {
  await page.getByLabel("pressure", { exact: true }).check();
  await page.getByLabel("From", { exact: true }).fill("1 bar");
  await page.getByLabel("To", { exact: true }).fill("16 bar");
  await page.getByLabel("Rows").fill("5");
  const rows = csvRows((await saved(page, "Save the saturation table as CSV")).text);
  assert.deepEqual(
    rows.slice(1).map((row) => Number(Number(row[0]).toFixed(9))),
    [1, 2, 4, 8, 16],
  );
  await page.getByLabel("Rows").fill("0");
  await page.getByText("A table has 2 to 500 rows.").waitFor();
});

const build = dirname(dirname(resolve(command)));
const runs: Record<string, (folder: string, file: string) => string> = {
  Shell: (folder, file) =>
    csvRows(execFileSync("sh", [file], { cwd: folder, encoding: "utf8", env: withCommand() })).at(-1)?.[1] ?? "",
  C: (folder, file) => compiled(folder, ["cc", file]),
  "C++": (folder, file) => compiled(folder, ["c++", "-std=c++20", file]),
  Fortran: (folder, file) => compiled(folder, ["gfortran", pathOf("Interfaces/Fortran/ostrel_handles.f90"), file]),
  Python: (folder, file) =>
    execFileSync("/usr/bin/python3", [file], {
      cwd: folder,
      encoding: "utf8",
      env: { ...withCommand(), PYTHONPATH: join(build, "Interfaces/Python") },
    }),
};
const extensions: Record<string, string> = { Shell: "sh", C: "c", "C++": "cpp", Fortran: "f90", Python: "py" };

/** What this machine does not have cannot be tried on it. */
function isThere(language: string): boolean {
  if (language === "Python") return existsSync(join(build, "Interfaces/Python/ostrel"));
  if (language === "Shell") return existsSync(command);
  if (!existsSync(join(build, "libostrel.so"))) return false;
  const compiler = { C: "cc", "C++": "c++", Fortran: "gfortran" }[language] ?? "";
  return (process.env.PATH ?? "").split(":").some((folder) => existsSync(join(folder, compiler)));
}

const withCommand = () => ({
  ...process.env,
  PATH: `${dirname(resolve(command))}:${process.env.PATH}`,
  OSTREL_FLUIDS: pathOf("Fluids"),
});

function compiled(folder: string, [compiler = "", ...args]: string[]): string {
  const options = [`-I${pathOf("Include")}`, `-L${build}`, "-lostrel", `-Wl,-rpath,${build}`, "-o", "state"];
  execFileSync(compiler, [...args, ...options], { cwd: folder, encoding: "utf8" });
  return execFileSync(join(folder, "state"), { cwd: folder, encoding: "utf8", env: withCommand() });
}

const links = [
  "fluid=propane&state.output=c",
  "fluid=water&options.model=pr&options.volume=translated&options.reference=iir&state.pair=hs&state.first=500+kJ/kg&state.second=1.2+kJ/(kg+K)&state.output=d",
  "fluid=toluene&options.states=metastable&options.phase=liquid&state.pair=td&state.second=700+kg/m3&state.first=400.7+K&state.output=dp/dd%7Cs&state.derivatives=[%22dp/dd%7Cs%22]",
];

for (const [language, runLines] of Object.entries(runs)) {
  test(
    `the same number in ${language}`,
    async (page) => {
      const folder = mkdtempSync(join(tmpdir(), "ostrel-lines-"));
      try {
        for (const link of links) {
          await follow(page, link);
          await page.getByLabel("Language").selectOption(language);
          const file = join(folder, `state.${extensions[language]}`);
          writeFileSync(file, await page.locator(".lines pre").innerText());
          const here = Number(await page.locator("#exact-value").innerText());
          const there = Number(runLines(folder, file));
          assert.ok(Math.abs(here - there) <= 1e-12 * Math.abs(there), `${link}: ${here}, ${there}`);
        }
      } finally {
        rmSync(folder, { recursive: true });
      }
    },
    { skip: isThere(language) ? undefined : `this machine cannot run lines in ${language}` },
  );
}

test("the lines and the exact value can be copied", async (page) => {
  await page.evaluate(() => {
    const copied: string[] = [];
    Object.assign(globalThis, { copied });
    Object.defineProperty(navigator, "clipboard", {
      value: { writeText: (text: string) => Promise.resolve(void copied.push(text)) },
    });
  });
  await page.getByRole("button", { name: "Copy the value with all digits" }).click();
  await page.getByRole("button", { name: "Copy the lines in Shell" }).click();
  const copied = await page.evaluate(() => (globalThis as unknown as { copied: string[] }).copied);
  assert.equal(copied[0], await page.locator("#exact-value").innerText());
  assert.match(copied[1] ?? "", /^ostrel prop --csv -- propane pt 100000 298\.15 d$/m);
});

test("own fluids have lines that read a file, which can be saved", async (page) => {
  const text = readFileSync(pathOf("Fluids/propane.osd"), "utf8");
  await page.getByRole("tab", { name: "Fluids" }).click();
  await page.getByLabel("Parameters", { exact: true }).fill(text);
  await page.getByLabel("Name", { exact: true }).fill("My propane");
  await page.getByRole("button", { name: "Use this fluid" }).click();
  await page.getByRole("tab", { name: "State" }).click();
  assert.match(await page.locator(".lines pre").innerText(), /\.\/My_propane\.osd/);
  const file = await saved(page, "Save the file");
  assert.equal(file.name, "My_propane.osd");
  assert.equal(file.text, text);
});
