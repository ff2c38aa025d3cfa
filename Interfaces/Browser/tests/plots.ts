// SPDX-License-Identifier: MIT
// What tests of diagrams share.
import assert from "node:assert/strict";
import type { Locator, Page } from "playwright-core";

export const layerOf = (page: Page): Locator => page.locator(".plot > .layer");

/** Waits until the diagram has been drawn and the page has answered. */
export async function drawn(page: Page): Promise<void> {
  await page.evaluate(
    () =>
      new Promise((resolve) =>
        requestAnimationFrame(() => requestAnimationFrame(() => requestAnimationFrame(() => setTimeout(resolve, 20)))),
      ),
  );
}

/** The place of a share of the diagram, from its left upper corner. */
export async function placeIn(page: Page, x: number, y: number): Promise<{ x: number; y: number }> {
  const box = await layerOf(page).boundingBox();
  assert.ok(box);
  // Wheels tell whole pixels only.
  return { x: Math.round(box.x + x * box.width), y: Math.round(box.y + y * box.height) };
}

export async function pointAt(page: Page, x: number, y: number): Promise<void> {
  const place = await placeIn(page, x, y);
  await page.mouse.move(place.x, place.y);
  await drawn(page);
}

export async function clickAt(page: Page, x: number, y: number): Promise<void> {
  const place = await placeIn(page, x, y);
  await page.mouse.click(place.x, place.y);
  // A second click within this time would be a double click.
  await page.waitForTimeout(550);
}

/** The numbers on an axis. */
export const ticks = (page: Page, axis: "x" | "y"): Promise<string[]> =>
  page
    .locator(`.plot > svg .${axis} .tick text`)
    .allTextContents()
    .then((all) => all.filter((text) => text !== ""));

/** Numbers of a table with a row for each name, with all digits. */
export const exactNumbers = (page: Page, rows: string, attribute: string): Promise<Record<string, number>> =>
  page.locator(rows).evaluateAll(
    (found, name) =>
      Object.fromEntries(
        found.map((row) => {
          const title = row.querySelector(".number")?.getAttribute("title");
          return [row.getAttribute(name) ?? "", title ? Number(title) : NaN];
        }),
      ),
    attribute,
  );

/** Compares numbers that differ by the rounding of mathematical functions. */
export function assertNear(found: number, wanted: number, what: string, tolerance = 1e-9): void {
  if (Number.isNaN(found) && Number.isNaN(wanted)) return;
  const scale = Math.max(Math.abs(wanted), 1e-300);
  assert.ok(Math.abs(found - wanted) <= tolerance * scale, `${what}: ${found} is not ${wanted}`);
}

/** Fails unless a text is an SVG document that shows something and runs nothing. */
export async function expectDrawing(page: Page, svg: string): Promise<void> {
  const found = await page.evaluate((text) => {
    const document = new DOMParser().parseFromString(text, "image/svg+xml");
    const all = [...document.querySelectorAll("*")];
    const outside = (value: string) => /https?:|javascript:|url\((?!#)/i.test(value);
    return {
      error: document.querySelector("parsererror")?.textContent ?? "",
      root: document.documentElement.localName,
      paths: document.querySelectorAll("path").length,
      active: all
        .filter(
          (one) =>
            ["script", "foreignObject", "iframe", "image", "use"].includes(one.localName) ||
            [...one.attributes].some(
              ({ name, value }) => name.startsWith("on") || (!name.startsWith("xmlns") && outside(value)),
            ),
        )
        .map((one) => one.outerHTML.slice(0, 100)),
      broken: all
        .flatMap((one) => [...one.attributes].map(({ value }) => value))
        .filter((value) => /NaN|undefined|Infinity/.test(value)),
    };
  }, svg);
  assert.equal(found.error, "");
  assert.equal(found.root, "svg");
  assert.ok(found.paths > 5, `${found.paths} paths`);
  assert.deepEqual(found.active, []);
  assert.deepEqual(found.broken, []);
}
