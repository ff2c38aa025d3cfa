// SPDX-License-Identifier: MIT
// Cycles: the command's numbers, sliders, texts with mistakes, own fluids, exports, keys and small windows.
import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync, symlinkSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { delimiter, join, resolve } from "node:path";
import type { Page } from "playwright-core";
import { expectNoSidewaysScroll, open, saved, tabTo, test } from "./harness";
import { command, csvRows, native, pathOf } from "./in_node";
import { assertNear, drawn, exactNumbers, expectDrawing, pointAt } from "./plots";

async function figures(page: Page): Promise<Record<string, number>> {
  await drawn(page);
  return exactNumbers(page, ".figures tr", "data-figure");
}

/** Does something in a folder of its own. */
function inFolder<T>(act: (folder: string) => T): T {
  const folder = mkdtempSync(join(tmpdir(), "ostrel-cycle-"));
  try {
    return act(folder);
  } finally {
    rmSync(folder, { recursive: true, force: true });
  }
}

/** The environment in which the command finds the catalogue. */
const environment = (folder = "") => ({
  ...process.env,
  OSTREL_FLUIDS: pathOf("Fluids"),
  PATH: `${folder}${delimiter}${process.env.PATH}`,
});

/** The rows of states and of figures that the command prints for a definition [SI]. */
function byCommand(definition: string, files: Readonly<Record<string, string>> = {}): string[][] {
  return inFolder((folder) => {
    for (const [name, text] of Object.entries({ "cycle.toml": definition, ...files }))
      writeFileSync(join(folder, name), text);
    const words = ["cycle", "--csv", "--units", "si", "cycle.toml"];
    const done = spawnSync(command, words, { cwd: folder, encoding: "utf8", env: environment() });
    assert.equal(done.status, 0, done.stderr);
    return csvRows(done.stdout);
  });
}

/** The value of a figure in such rows. */
const figureIn = (rows: readonly string[][], name: string) => Number(rows.find((row) => row[0] === name)?.[1]);

/** Compares what the page saves with what the command prints for the definition that the page saves. */
async function compareWithCommand(page: Page, files: Readonly<Record<string, string>> = {}): Promise<number> {
  const { text: definition } = await saved(page, "Save TOML");
  const { text } = await saved(page, "Save the figures and states as CSV");
  const wanted = byCommand(definition, files);
  const found = csvRows(text);
  let compared = 0;
  const [head = []] = found;
  const [wantedHead = []] = wanted;
  for (const row of wanted) {
    const other = found.find((one) => one[0] === row[0] && one[1] !== "state");
    if (row === wantedHead || row[0] === "figure") continue;
    assert.ok(other, row.join(","));
    if (/^\d+$/.test(row[0] ?? "")) {
      assert.equal(other[1], row[1]);
      for (const letter of ["t", "p", "h", "s", "d"]) {
        const place = (columns: readonly string[]) => columns.findIndex((one) => one.split(" ")[0] === letter);
        assertNear(Number(other[place(head)]), Number(row[place(wantedHead)]), `${row[1]} ${letter}`, 1e-8);
        ++compared;
      }
    } else {
      const text = other[1] ?? "";
      assert.equal(String(Number(text)), text, "the text has all digits");
      assertNear(Number(text), Number(row[1]), row[0] ?? "", 1e-6);
      ++compared;
    }
  }
  return compared;
}

for (const example of ["toluene", "steam", "r134a", "co2"])
  test(
    `the example has the command's states and figures: ${example}`,
    async (page) => assert.ok((await compareWithCommand(page)) > 45),
    { link: `view=cycles&cycles.example=${example}` },
  );

const slider = (page: Page, key: string) => page.locator(`input[type="range"][name="${key}"]`);
const pathIn = async (page: Page) => {
  const { text } = await saved(page, "Save SVG");
  await expectDrawing(page, text);
  return [...text.matchAll(/<path d="([^"]*)"[^>]*stroke="#d84a05"/g)].map((one) => one[1]).join("");
};

test(
  "sliders change the figures and the path, and write their values into the text",
  async (page) => {
    const before = await figures(page);
    const path = await pathIn(page);
    assert.ok(path.length > 500);
    await slider(page, "turbine.efficiency").focus();
    for (let i = 0; i < 20; ++i) await page.keyboard.press("ArrowLeft");
    await slider(page, "evaporator.p").focus();
    for (let i = 0; i < 30; ++i) await page.keyboard.press("ArrowRight");
    await drawn(page);
    const after = await figures(page);
    assert.notEqual(after.efficiency, before.efficiency);
    assert.ok(after.pressure_ratio! > before.pressure_ratio!);
    assert.notEqual(await pathIn(page), path);
    assert.equal(await page.getByLabel("Value of turbine, efficiency").inputValue(), "0.8");
    assert.match((await slider(page, "evaporator.p").getAttribute("aria-valuetext")) ?? "", /^[\d.]+ bar$/);
    await compareWithCommand(page);

    // The numbers go into the text, in its units, and mean the same there.
    await page.getByRole("button", { name: "Write into the text" }).click();
    const text = await page.locator("#cycle-text").inputValue();
    assert.match(text, /^efficiency = 0\.8$/m);
    assert.match(text, /^p = "[\d.]+ bar"$/m);
    assert.deepEqual(await figures(page), after);

    await page.getByLabel("Value of condenser, t").fill("315 K");
    await page.getByLabel("Value of condenser, t").press("Enter");
    assert.ok((await figures(page)).efficiency! > after.efficiency!);
    await page.getByLabel("Value of condenser, t").fill("cold");
    await page.getByLabel("Value of condenser, t").press("Enter");
    assert.match((await page.locator(".sliders .said").textContent()) ?? "", /cold/);
    await page.getByRole("button", { name: "condenser, t as in the text" }).click();
    assert.deepEqual(await figures(page), after);
  },
  { link: "view=cycles&cycles.example=toluene&units=si" },
);

test(
  "the link keeps the sliders",
  async (page) => {
    await slider(page, "compressor.efficiency").focus();
    for (let i = 0; i < 10; ++i) await page.keyboard.press("ArrowLeft");
    await page.waitForTimeout(400);
    const found = await figures(page);
    const { page: second, complaints } = await open(page.url().split("#")[1]);
    await drawn(second);
    assert.deepEqual(await figures(second), found);
    assert.deepEqual(complaints, []);
    await second.close();
  },
  { link: "view=cycles&cycles.example=r134a" },
);

test(
  "mistakes in the text and cycles without a solution say what is wrong",
  async (page) => {
    const area = page.locator("#cycle-text");
    const text = await area.inputValue();
    const before = await figures(page);
    const lines = text.split("\n");
    const line = lines.findIndex((one) => one.startsWith("efficiency"));
    lines[line] = "efficency = 0.7";
    await area.fill(lines.join("\n"));
    assert.match((await page.locator(".problem").textContent()) ?? "", /efficency/);
    await page.getByRole("button", { name: `Go to line ${line + 1}` }).click();
    const selected = await area.evaluate((one: HTMLTextAreaElement) =>
      one.value.slice(one.selectionStart, one.selectionEnd),
    );
    assert.equal(selected, "efficency = 0.7");
    // The last cycle stays, and says that it is the last one.
    assert.deepEqual(await figures(page), before);
    assert.equal(await page.locator(".faded").count(), 2);

    await area.fill(text.replace('p = "20 bar"', 'p = "60 bar"'));
    assert.match((await page.locator(".over .problem").textContent()) ?? "", /critical/);
    await area.fill("\u0000 = <b>[[[");
    assert.ok(((await page.locator(".problem").textContent()) ?? "").length > 10);
    assert.equal(await page.locator(".problem b").count(), 0);
    await area.fill(text);
    assert.equal(await page.locator(".problem").count(), 0);
    assert.deepEqual(await figures(page), before);
  },
  { link: "view=cycles&cycles.example=toluene" },
);

test(
  "the page's fluid, with its model, can take the place of the one in the text",
  async (page) => {
    await page.getByRole("radio", { name: "of the page" }).check();
    await drawn(page);
    const { text } = await saved(page, "Save TOML");
    assert.match(text, /^fluid = "cyclopentane|^fluid = "cC5/m);
    assert.match(text, /^model = "srk"$/m);
    assert.doesNotMatch(text, /toluene/);
    await compareWithCommand(page);
    // The same fluid with another equation of state is another fluid.
    const before = await figures(page);
    await page.getByLabel("Equation of state").selectOption("pr");
    assert.notEqual((await figures(page)).efficiency, before.efficiency);
    assert.match((await saved(page, "Save TOML")).text, /^model = "pr"$/m);
    await compareWithCommand(page);
  },
  { link: "view=cycles&cycles.example=toluene&fluid=cyclopentane&options.model=srk" },
);

test(
  "the page's options hold for a fluid that the text names, too",
  async (page) => {
    assert.match((await saved(page, "Save TOML")).text, /^model = "srk"$/m);
    await compareWithCommand(page);
  },
  { link: "view=cycles&cycles.example=toluene&cycles.pageFluid=true&fluid=toluene&options.model=srk" },
);

/** A parameter file of the catalogue, for another name. */
const ownText = () => readFileSync(pathOf("Fluids/toluene.osd"), "utf8");

test(
  "own fluids can be used",
  async (page) => {
    await page.getByRole("tab", { name: "Fluids" }).click();
    await page.getByLabel("Parameters", { exact: true }).fill(ownText());
    await page.getByLabel("Name", { exact: true }).fill("mine");
    await page.getByRole("button", { name: /^Use/ }).click();
    await page.getByRole("tab", { name: "Cycles" }).click();
    await page.getByRole("radio", { name: "of the page: mine" }).check();
    await drawn(page);
    const { text } = await saved(page, "Save TOML");
    assert.match(text, /^fluid = "\.\/mine\.osd"$/m);
    assert.ok((await compareWithCommand(page, { "mine.osd": ownText() })) > 45);
    // A text may name it, too.
    await page.getByRole("radio", { name: "of the text" }).check();
    await page
      .locator("#cycle-text")
      .fill((await page.locator("#cycle-text").inputValue()).replace('"toluene"', '"mine"'));
    await drawn(page);
    assert.equal(await page.locator(".problem").count(), 0);
    assert.match((await saved(page, "Save TOML")).text, /^fluid = "\.\/mine\.osd"$/m);
    await page.getByRole("tab", { name: "Diagrams" }).click();
    await pointAt(page, 0.8, 0.4);
    assert.ok((await page.locator(".state-values tr").count()) > 20);
  },
  { link: "view=cycles&cycles.example=toluene&units=si" },
);

test(
  "the lines for the shell and for Python solve the same cycle",
  async (page) => {
    await slider(page, "evaporator.p").focus();
    for (let i = 0; i < 10; ++i) await page.keyboard.press("ArrowRight");
    await page.getByText("The same cycle elsewhere").click();
    const { text: definition } = await saved(page, "Save TOML");
    const wanted = figureIn(byCommand(definition), "efficiency");
    const shell = (await page.getByLabel("Shell", { exact: true }).textContent()) ?? "";
    inFolder((folder) => {
      symlinkSync(resolve(command), join(folder, "ostrel"));
      const setting = { cwd: folder, encoding: "utf8", env: environment(folder) } as const;
      const done = spawnSync("sh", ["-c", `${shell.trimEnd()} --csv`], setting);
      assert.equal(done.status, 0, done.stderr);
      assertNear(figureIn(csvRows(done.stdout), "efficiency"), wanted, "efficiency by the shell");
      assert.equal(readFileSync(join(folder, "cycle.toml"), "utf8"), definition);
    });
    // What Python writes is the same definition; the package itself has its own tests.
    const python = (await page.getByLabel("Python", { exact: true }).textContent()) ?? "";
    assert.match(python, /\ncycle = ostrel\.cycle\("cycle\.toml"\)\nprint\(cycle\.efficiency\)\n$/);
    inFolder((folder) => {
      writeFileSync(
        join(folder, "lines.py"),
        python.replace(/\nimport ostrel\n/, "\n").replace(/\ncycle = [^]*$/, "\n"),
      );
      const done = spawnSync("/usr/bin/python3", ["lines.py"], { cwd: folder, encoding: "utf8" });
      assert.equal(done.status, 0, done.stderr);
      assert.equal(readFileSync(join(folder, "cycle.toml"), "utf8"), definition);
    });
  },
  { link: "view=cycles&cycles.example=toluene" },
);

test(
  "a cycle can be changed with the keys alone",
  async (page) => {
    await tabTo(page, /^Example/);
    await page.keyboard.press("ArrowDown");
    assert.match(await page.locator("#cycle-text").inputValue(), /water/);
    const before = await figures(page);
    await tabTo(page, /^turbine, efficiency/);
    await page.keyboard.press("Home");
    assert.match((await page.locator(".over .problem").textContent()) ?? "", /efficiency/);
    await page.keyboard.press("End");
    assert.ok((await figures(page)).efficiency! > before.efficiency!);
    await tabTo(page, "turbine, efficiency as in the text");
    await page.keyboard.press("Enter");
    assert.deepEqual(await figures(page), before);
    await tabTo(page, "Definition (TOML)");
    await page.keyboard.press("Control+End");
    await page.keyboard.type("\n[regenerator]\neffectiveness = 0\n");
    assert.equal(await slider(page, "regenerator.effectiveness").count(), 1);
  },
  { link: "view=cycles&cycles.example=toluene" },
);

for (const setting of [{ width: 360, height: 700 }, { zoom: 2 }, { dark: true }])
  test(
    `cycles fit into the window: ${JSON.stringify(setting)}`,
    async (page) => {
      await drawn(page);
      await expectNoSidewaysScroll(page);
      await slider(page, "turbine.efficiency").focus();
      for (let i = 0; i < 20; ++i) await page.keyboard.press("ArrowLeft");
      await drawn(page);
      await expectNoSidewaysScroll(page);
    },
    { link: "view=cycles&cycles.example=toluene", ...setting },
  );

test(
  "the diagram follows a slider at once",
  async (page) => {
    await drawn(page);
    const times = await page.evaluate(async () => {
      const input = document.querySelector<HTMLInputElement>('input[name="evaporator.p"]')!;
      const plot = document.querySelector(".plot")!;
      const found: number[] = [];
      for (let i = 0; i < 60; ++i) {
        const next = new Promise((resolve) => plot.addEventListener("frame", resolve, { once: true }));
        const began = performance.now();
        input.value = String(100 + 2 * i);
        input.dispatchEvent(new Event("input", { bubbles: true }));
        await next;
        found.push(performance.now() - began);
      }
      return found.sort((a, b) => a - b);
    });
    const [median = NaN, most = NaN] = [times[30], times[57]];
    console.log(`from a slider to the drawn cycle: ${median.toFixed(1)} ms (95 %: ${most.toFixed(1)} ms)`);
    assert.ok(median < 500, `${median} ms`);
  },
  { link: "view=cycles&cycles.example=toluene" },
);

test(
  "the nozzle is the command's",
  async (page) => {
    await page.getByText("Nozzle with this fluid").click();
    await page.getByLabel("Total temperature", { exact: true }).fill("285");
    await page.getByLabel("Outlet pressure", { exact: true }).fill("1.5");
    await drawn(page);
    const { name, text } = await saved(page, "Save the nozzle as CSV");
    assert.equal(name, "toluene-nozzle.csv");
    const [head = [], ...rows] = csvRows(text);
    const outlet = await page.getByLabel("Unit of Outlet pressure").inputValue();
    assert.equal(outlet, "bar");
    const state = ["--to", "1.5 bar", "toluene", "pt", "20 bar", "285 degC"];
    const { code, out, error } = native(["nozzle", "--csv", "--units", "si", "--model", "pr", ...state]);
    assert.equal(code, 0, error);
    const [wantedHead = [], ...wanted] = csvRows(out);
    assert.equal(rows.length, wanted.length);
    const column = (titles: readonly string[], title: string) => titles.findIndex((one) => one.split(" ")[0] === title);
    for (const [i, row] of rows.entries())
      for (const title of ["p", "t", "d", "velocity", "c", "mach", "mass_flux", "area_ratio"]) {
        assert.ok(column(wantedHead, title) >= 0, title);
        const cell = wanted[i]?.[column(wantedHead, title)] ?? "";
        if (!/^-?[\d.]+(e[-+]?\d+)?$/.test(cell)) continue;
        assertNear(Number(row[column(head, title)]), Number(cell), `${title} in row ${i}`, 1e-6);
      }
    assert.equal(rows.filter((row) => row[0] === "throat").length, 1);
    await page.getByRole("button", { name: "As in the cycle" }).click();
    await page.getByLabel("Outlet pressure", { exact: true }).fill("30");
    await drawn(page);
    assert.ok(((await page.locator(".nozzle .problem").textContent()) ?? "").length > 10);
  },
  { link: "view=cycles&cycles.example=toluene" },
);
