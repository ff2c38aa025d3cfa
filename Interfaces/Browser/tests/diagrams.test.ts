// SPDX-License-Identifier: MIT
// Diagrams: states under the pointer, states that are put down, gestures, keys, exports, and frames.
import assert from "node:assert/strict";
import type { Page } from "playwright-core";
import { expectNoSidewaysScroll, open, saved, tabTo, test } from "./harness";
import { csvRows, prop } from "./in_node";
import { assertNear, clickAt, drawn, exactNumbers, expectDrawing, layerOf, pointAt, ticks } from "./plots";

const underPointer = (page: Page) => exactNumbers(page, ".state-values tr", "data-output");
const putRows = (page: Page) => page.locator(".put-states tbody tr");

const kinds = ["ts", "ph", "hs", "pv", "pt"];
const places = [
  [0.3, 0.7],
  [0.55, 0.5],
  [0.8, 0.25],
  [0.9, 0.8],
] as const;

for (const [fluid, model] of [
  ["toluene", "pr"],
  ["water", "srk"],
  ["r134a", "cii"],
] as const)
  test(
    `the state under the pointer is the command's: ${fluid}, ${model}`,
    async (page) => {
      let compared = 0;
      for (const kind of kinds) {
        await page.locator(`.switch input[value="${kind}"]`).check({ force: true });
        await drawn(page);
        for (const [x, y] of places) {
          await pointAt(page, x, y);
          const shown = await underPointer(page);
          const [vertical = "", horizontal = ""] = kind;
          if (!Number.isFinite(shown.t)) continue;
          const { values } = prop({
            fluid,
            options: { model },
            pair: kind,
            first: String(shown[vertical]),
            second: String(shown[horizontal]),
          });
          const phase = await page.locator(".phase-name").textContent();
          assert.equal(phase?.split(",")[0], values.get("phase"));
          for (const name of ["t", "p", "v", "d", "h", "s", "u"])
            assertNear(shown[name] ?? NaN, Number(values.get(name)), `${kind} ${name}`, 1e-7);
          ++compared;
        }
      }
      assert.ok(compared >= 15, `${compared} states`);
    },
    { link: `view=diagrams&fluid=${fluid}&options.model=${model}&units=si` },
  );

test(
  "clicks put states down, which show their differences, and the link keeps them",
  async (page) => {
    await clickAt(page, 0.35, 0.75);
    await clickAt(page, 0.8, 0.4);
    assert.equal(await putRows(page).count(), 2);
    const row = page.locator('.differences tr[data-output="h"] .number');
    const [from = NaN, to = NaN, difference = NaN] = await row.evaluateAll((found) =>
      found.map((one) => Number(one.getAttribute("title"))),
    );
    assert.notEqual(difference, 0);
    assertNear(difference, to - from, "difference of h");
    // The table and the differences have the same state.
    const inTable = await putRows(page).nth(1).locator(".number").nth(3).getAttribute("title");
    assert.equal(Number(inTable), to);

    await page.waitForTimeout(300);
    const { page: second, complaints } = await open(page.url().split("#")[1]);
    await drawn(second);
    assert.equal(await putRows(second).count(), 2);
    assert.equal(await putRows(second).nth(1).locator(".number").nth(3).getAttribute("title"), inTable);
    assert.deepEqual(complaints, []);
    await second.close();

    await page.getByLabel("State 2, temperature").fill("500 K");
    await page.getByLabel("State 2, temperature").press("Enter");
    await drawn(page);
    assert.equal(Number(await putRows(page).nth(1).locator(".number").first().getAttribute("title")), 500);
    await page.getByLabel("State 2, temperature").fill("warm");
    await page.getByLabel("State 2, temperature").press("Enter");
    assert.match((await page.locator(".put-states .said").textContent()) ?? "", /warm/);

    await page.getByRole("button", { name: "Remove state 1" }).click();
    assert.equal(await putRows(page).count(), 1);
    await page.getByRole("button", { name: "Remove all" }).click();
    assert.equal(await putRows(page).count(), 0);
  },
  { link: "view=diagrams&fluid=toluene&diagrams.kind=ts&units=si" },
);

/** The texts on the lines of the saved drawing. */
const texts = (svg: string): string[] =>
  [...svg.matchAll(/<text[^>]*font-size="11"[^>]*>([^<]*)</g)].map((one) => one[1] ?? "");

test(
  "wheel, drag, double click and buttons move the view, and the curves follow",
  async (page) => {
    const wide = await ticks(page, "x");
    const before = texts((await saved(page, "Save SVG")).text);
    await pointAt(page, 0.5, 0.5);
    const pointed = await underPointer(page);
    for (let i = 0; i < 5; ++i) await page.mouse.wheel(0, -400);
    await drawn(page);
    // The state under the pointer stays where it is.
    const after = await underPointer(page);
    assertNear(after.s!, pointed.s!, "s under the pointer", 1e-6);
    assertNear(after.t!, pointed.t!, "t under the pointer", 1e-6);
    const narrow = await ticks(page, "x");
    assert.notDeepEqual(narrow, wide);
    const { text } = await saved(page, "Save SVG");
    assert.notDeepEqual(texts(text), before, "the isolines are others");
    await expectDrawing(page, text);
    await page.waitForTimeout(300);
    const { page: second } = await open(page.url().split("#")[1]);
    await drawn(second);
    assert.deepEqual(await ticks(second, "x"), narrow, "the link keeps the view");
    await second.close();

    await pointAt(page, 0.5, 0.5);
    await page.mouse.down();
    await pointAt(page, 0.3, 0.4);
    await page.mouse.up();
    await drawn(page);
    assert.notDeepEqual(await ticks(page, "x"), narrow);
    assert.equal(await putRows(page).count(), 0, "a drag is no click");

    await page.getByRole("button", { name: "Reset" }).click();
    await drawn(page);
    assert.deepEqual(await ticks(page, "x"), wide);
    await page.getByRole("button", { name: "Zoom in" }).click();
    await drawn(page);
    assert.notDeepEqual(await ticks(page, "x"), wide);
    await page.getByRole("button", { name: "Reset" }).click();
    await drawn(page);

    const box = await layerOf(page).boundingBox();
    await page.mouse.dblclick(box!.x + 300, box!.y + 200);
    await page.waitForTimeout(400);
    assert.notDeepEqual(await ticks(page, "x"), wide);
    assert.equal(await putRows(page).count(), 0, "a double click puts nothing down");
  },
  { link: "view=diagrams&fluid=toluene&diagrams.kind=ts&units=si" },
);

test(
  "a diagram can be read and used with the keys alone",
  async (page) => {
    await tabTo(page, /diagram of toluene/);
    await page.keyboard.press("ArrowRight");
    await drawn(page);
    const first = await underPointer(page);
    assert.ok(Number.isFinite(first.t));
    await page.keyboard.press("ArrowUp");
    await drawn(page);
    const higher = await underPointer(page);
    assert.ok(higher.t! > first.t!);
    assert.equal(higher.s, first.s);
    await page.waitForTimeout(350);
    const said = await page.locator('.under-pointer [role="status"]').textContent();
    assert.match(said ?? "", /temperature [\d.]+ K/);
    await page.keyboard.press("Enter");
    await page.keyboard.press("ArrowLeft");
    await page.keyboard.press("ArrowLeft");
    await page.keyboard.press("Enter");
    assert.equal(await putRows(page).count(), 2);
    assert.equal((await page.locator(".differences tbody tr").count()) > 5, true);
    await page.keyboard.press("Delete");
    assert.equal(await putRows(page).count(), 1);
    const wide = await ticks(page, "x");
    await page.keyboard.press("+");
    await drawn(page);
    const narrow = await ticks(page, "x");
    assert.notDeepEqual(narrow, wide);
    await page.keyboard.press("Shift+ArrowRight");
    await drawn(page);
    assert.notDeepEqual(await ticks(page, "x"), narrow);
    await page.keyboard.press("0");
    await drawn(page);
    assert.deepEqual(await ticks(page, "x"), wide);
    await page.keyboard.press("Escape");
    await drawn(page);
    assert.equal(await page.locator(".state-values").count(), 0);
    // The focus leaves the diagram as it leaves everything else.
    await tabTo(page, "Zoom in", 1);
    await page.keyboard.press("Enter");
    await drawn(page);
    assert.notDeepEqual(await ticks(page, "x"), wide);
  },
  { link: "view=diagrams&fluid=toluene&diagrams.kind=ts&units=si" },
);

test(
  "families of lines can be chosen",
  async (page) => {
    const keys = async () =>
      [...(await saved(page, "Save SVG")).text.matchAll(/>(T|v|s|q)(?: in [^<]*)?</g)].map((one) => one[1]);
    assert.deepEqual((await keys()).sort(), ["T", "q", "s"]);
    await page.getByLabel("isochores").check();
    await page.getByLabel("isotherms").uncheck();
    await drawn(page);
    assert.deepEqual((await keys()).sort(), ["q", "s", "v"]);
    for (const name of ["isochores", "isentropes", "lines of constant quality"]) await page.getByLabel(name).uncheck();
    await drawn(page);
    assert.deepEqual(await keys(), []);
  },
  { link: "view=diagrams&fluid=toluene&diagrams.kind=ph&units=si" },
);

test(
  "states are saved with all digits",
  async (page) => {
    await clickAt(page, 0.4, 0.6);
    await clickAt(page, 0.85, 0.3);
    const { name, text } = await saved(page, "Save the states as CSV");
    assert.equal(name, "toluene-states.csv");
    const [head = [], ...rows] = csvRows(text);
    assert.equal(rows.length, 2);
    let numbers = 0;
    for (const row of rows) {
      assert.equal(row.length, head.length);
      const cell = (column: string) => row[head.indexOf(column)] ?? "";
      const { values } = prop({
        fluid: "toluene",
        options: {},
        pair: "pt",
        first: cell("p [Pa]"),
        second: cell("t [K]"),
      });
      const isMixture = cell("phase") === "two-phase";
      for (const [i, column] of head.entries()) {
        const text = row[i] ?? "";
        if (!/^-?\d/.test(text) || column === "state") continue;
        // The number and its text mean the same bits.
        assert.equal(String(Number(text)), text);
        const output = column.split(" ")[0] ?? "";
        if (!isMixture && values.has(output)) assertNear(Number(text), Number(values.get(output)), column, 1e-6);
        ++numbers;
      }
    }
    assert.ok(numbers > 30, `${numbers} numbers`);
  },
  { link: "view=diagrams&fluid=toluene&diagrams.kind=ph" },
);

test(
  "drawings are saved as SVG and as PNG",
  async (page) => {
    await clickAt(page, 0.6, 0.5);
    const { name, text } = await saved(page, "Save SVG");
    assert.equal(name, "water-hs.svg");
    await expectDrawing(page, text);
    const [download] = await Promise.all([
      page.waitForEvent("download"),
      page.getByRole("button", { name: "Save PNG" }).click(),
    ]);
    assert.equal(download.suggestedFilename(), "water-hs.png");
    const bytes: Buffer[] = [];
    for await (const part of await download.createReadStream()) bytes.push(part as Buffer);
    const png = Buffer.concat(bytes);
    assert.equal(png.subarray(1, 4).toString(), "PNG");
    assert.deepEqual([png.readUInt32BE(16), png.readUInt32BE(20)], [2000, 1400]);
  },
  { link: "view=diagrams&fluid=water&diagrams.kind=hs" },
);

/** Turned texts of a drawing whose boxes lie on each other. */
const overlaps = (page: Page, svg: string): Promise<string[]> =>
  page.evaluate((text) => {
    const place = document.createElement("div");
    place.style.cssText = "position:absolute;left:0;top:0;visibility:hidden";
    place.append(document.importNode(new DOMParser().parseFromString(text, "image/svg+xml").documentElement, true));
    document.body.append(place);
    const labels = [...place.querySelectorAll("text")].filter((one) => one.getAttribute("font-size") === "11");
    const boxes = labels.map((label) => {
      const { x, y, width, height } = label.getBBox();
      const matrix = label.getCTM()!;
      // Letters are lower than the box of their line.
      const cut = 0.2 * height;
      return [
        [x, y + cut],
        [x + width, y + cut],
        [x + width, y + height - cut],
        [x, y + height - cut],
      ].map(([px, py]) => new DOMPoint(px, py).matrixTransform(matrix));
    });
    const apart = (a: DOMPoint[], b: DOMPoint[]) =>
      [a, b].some((box) =>
        [0, 1].some((i) => {
          const [from, to] = [box[i]!, box[i + 1]!];
          const along = (point: DOMPoint) => (to.x - from.x) * point.x + (to.y - from.y) * point.y;
          const [first, second] = [a.map(along), b.map(along)];
          return Math.max(...first) < Math.min(...second) || Math.max(...second) < Math.min(...first);
        }),
      );
    const found: string[] = [];
    boxes.forEach((box, i) =>
      boxes.slice(0, i).forEach((other, k) => {
        if (!apart(box, other)) found.push(`${labels[i]!.textContent} and ${labels[k]!.textContent}`);
      }),
    );
    if (labels.length < 5) found.push(`only ${labels.length} texts`);
    place.remove();
    return found;
  }, svg);

for (const fluid of ["toluene", "water", "r134a", "helium"])
  test(
    `texts on lines do not lie on each other: ${fluid}`,
    async (page) => {
      for (const kind of kinds) {
        await page.locator(`.switch input[value="${kind}"]`).check({ force: true });
        for (const family of await page.locator(".families input").all()) await family.check();
        await drawn(page);
        const { text } = await saved(page, "Save SVG");
        await expectDrawing(page, text);
        assert.deepEqual(await overlaps(page, text), [], kind);
      }
    },
    { link: `view=diagrams&fluid=${fluid}` },
  );

test(
  "a view without states says so",
  async (page) => {
    await drawn(page);
    assert.match((await page.locator(".no-curves").textContent()) ?? "", /no states/);
    await page.getByRole("button", { name: "Reset" }).click();
    await drawn(page);
    assert.equal(await page.locator(".no-curves").count(), 0);
    assert.ok((await ticks(page, "x")).length > 2);
  },
  {
    link: `view=diagrams&fluid=toluene&diagrams.kind=ts&diagrams.view=${encodeURIComponent(
      JSON.stringify([JSON.stringify(["toluene", {}, "ts"]), -2400, -2300, 700, 750]),
    )}`,
  },
);

const frameTimes = (page: Page, seconds: number) =>
  page.evaluate(async (milliseconds) => {
    const plot = document.querySelector(".plot")!;
    const layer = plot.querySelector(".layer")!;
    const box = layer.getBoundingClientRect();
    const curves: number[] = [];
    const drawing: number[] = [];
    plot.addEventListener("frame", (event) => {
      const { detail } = event as CustomEvent<{ curves: number; drawing: number }>;
      curves.push(detail.curves);
      drawing.push(detail.drawing);
    });
    const stamps: number[] = [];
    await new Promise<void>((resolve) => {
      const step = (now: number) => {
        const count = stamps.push(now);
        const place = { clientX: box.left + 0.5 * box.width, clientY: box.top + 0.4 * box.height };
        const wheel = { deltaY: count % 60 < 30 ? -12 : 12, bubbles: true, cancelable: true, view: window, ...place };
        layer.dispatchEvent(new WheelEvent("wheel", wheel));
        if (now - stamps[0]! < milliseconds) requestAnimationFrame(step);
        else resolve();
      };
      requestAnimationFrame(step);
    });
    const gaps = stamps.slice(1).map((stamp, i) => stamp - stamps[i]!);
    return { gaps, curves, drawing };
  }, 1000 * seconds);

const quantile = (values: readonly number[], share: number): number =>
  [...values].sort((a, b) => a - b)[Math.min(values.length - 1, Math.floor(share * values.length))] ?? NaN;

/** Far below what an idle machine does: machines of continuous integration do other things besides. */
const fewestFrames = 4;

for (const [fluid, kind] of [
  ["toluene", "ts"],
  ["water", "ph"],
  ["r134a", "hs"],
  ["co2", "pv"],
] as const)
  test(
    `frames while zooming: ${fluid}, ${kind}`,
    async (page) => {
      await drawn(page);
      const { gaps, curves, drawing } = await frameTimes(page, 3);
      const frames = (1000 * gaps.length) / gaps.reduce((sum, gap) => sum + gap, 0);
      const anew = curves.filter((time) => time > 0.3).length;
      const times = (name: string, values: readonly number[]) =>
        `${name} ${quantile(values, 0.5).toFixed(1)} ms (95 %: ${quantile(values, 0.95).toFixed(1)} ms)`;
      console.log(
        `${fluid} ${kind}: ${frames.toFixed(1)} frames a second, curves anew in ${anew} of ${curves.length}; ` +
          [times("curves", curves), times("drawing", drawing), times("between frames", gaps)].join(", "),
      );
      assert.ok(frames > fewestFrames, `${frames} frames a second`);
      assert.ok(curves.length > 0.8 * gaps.length, "each frame is drawn");
      assert.ok(anew > 0.2 * curves.length, "the curves follow the gesture");
    },
    { link: `view=diagrams&fluid=${fluid}&diagrams.kind=${kind}` },
  );

test(
  "without motion a double click shows its end immediately",
  async (page) => {
    const wide = await ticks(page, "x");
    const box = await layerOf(page).boundingBox();
    await page.mouse.dblclick(box!.x + 300, box!.y + 200);
    await drawn(page);
    const first = await ticks(page, "x");
    assert.notDeepEqual(first, wide);
    await page.waitForTimeout(400);
    assert.deepEqual(await ticks(page, "x"), first);
  },
  { link: "view=diagrams&fluid=toluene", reducedMotion: true },
);

/** How bright the canvas is in its corner, of 255. */
const cornerOf = (page: Page) =>
  page.locator(".plot > canvas").evaluate((canvas: HTMLCanvasElement) => {
    const copy = document.createElement("canvas").getContext("2d", { willReadFrequently: true })!;
    copy.drawImage(canvas, 0, 0);
    return copy.getImageData(1, 1, 1, 1).data[0] ?? NaN;
  });

test(
  "dark pages have dark diagrams, and change with the system",
  async (page) => {
    await drawn(page);
    assert.ok((await cornerOf(page)) < 60);
    await page.emulateMedia({ colorScheme: "light" });
    await drawn(page);
    assert.ok((await cornerOf(page)) > 240);
  },
  { link: "view=diagrams&fluid=toluene", dark: true },
);

for (const setting of [{ width: 360, height: 700 }, { zoom: 2 }])
  test(
    `diagrams fit into the window: ${JSON.stringify(setting)}`,
    async (page) => {
      await drawn(page);
      await layerOf(page).scrollIntoViewIfNeeded();
      await clickAt(page, 0.5, 0.5);
      await clickAt(page, 0.8, 0.3);
      assert.equal(await putRows(page).count(), 2);
      await expectNoSidewaysScroll(page);
    },
    { link: "view=diagrams&fluid=toluene&diagrams.kind=ph", ...setting },
  );
