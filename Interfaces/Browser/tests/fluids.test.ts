// SPDX-License-Identifier: MIT
// The catalogue and own fluids.
import assert from "node:assert/strict";
import { readdirSync, readFileSync } from "node:fs";
import type { Page } from "playwright-core";
import { open, test } from "./harness";
import { native, pathOf } from "./in_node";

const link = "view=fluids";
const propane = readFileSync(pathOf("Fluids/propane.osd"), "utf8");
const files = readdirSync(pathOf("Fluids")).filter((name) => name.endsWith(".osd"));
const editor = (page: Page) => page.getByLabel("Parameters", { exact: true });
const useButton = (page: Page) => page.getByRole("button", { name: "Use this fluid" });
const good = (page: Page) => page.getByText("This text can be used.");
const error = (page: Page) => page.locator(".report .problem p").first();
const criticalTemperature = (page: Page) =>
  page.locator(".constants tr[title=t_crit] .number").getAttribute("title").then(Number);

test(
  "the catalogue is found by any words, and its facts are those of the command",
  async (page) => {
    const list = page.getByLabel("Fluids found");
    assert.equal(await list.locator("option").count(), files.length);
    await page.getByLabel("Name, formula, number or family").fill("R718");
    assert.equal(await list.locator("option").first().innerText(), "water");
    await list.selectOption("water");
    await page.getByRole("heading", { name: "water" }).waitFor();
    await page.getByText("7732-18-5", { exact: true }).waitFor();
    const facts = native(["info", "water"]).out;
    assert.equal(await criticalTemperature(page), Number(/t_crit +(\S+)/.exec(facts)?.[1]));
    for (const row of await page.locator(".facts tr td.advice").allInnerTexts()) assert.ok(facts.includes(row), row);
  },
  { link: `${link}&units=si` },
);

test(
  "an own fluid is checked with the messages of the command, and used in all views",
  async (page) => {
    const text = propane.replace("369.89", "400.5");
    await editor(page).fill(text);
    await good(page).waitFor();
    await page.getByText("Equation of state: 4, Soave-Redlich-Kwong").waitFor();
    await page.getByLabel("Name", { exact: true }).fill("warm propane");
    await useButton(page).click();
    await page.getByRole("heading", { name: "warm propane" }).waitFor();
    assert.equal(await criticalTemperature(page), 400.5);
    assert.equal(await page.getByRole("combobox", { name: "Fluid" }).inputValue(), "warm propane");
    for (const view of ["Diagrams", "Cycles", "State"]) {
      await page.getByRole("tab", { name: view }).click();
      assert.equal(await page.getByText("has a defect").count(), 0);
    }
    await page.getByLabel("Given are").selectOption("tq");
    await page.getByLabel("Temperature", { exact: true }).fill("400 K");
    assert.equal(await page.locator(".phase strong").innerText(), "vapor");
  },
  { link: `${link}&units=si` },
);

test(
  "a wrong text is refused with the sentence of the command",
  async (page) => {
    const text = propane.replace("369.89", "three hundred");
    await editor(page).fill(text);
    await error(page).waitFor();
    assert.ok(await useButton(page).isDisabled());
    const sentence = await error(page).innerText();
    assert.match(sentence, /Tc/);
    await editor(page).fill(propane);
    await good(page).waitFor();
    await editor(page).fill("");
    await page.getByText("What the text means is shown here.").waitFor();
  },
  { link },
);

test(
  "a fluid of the catalogue is a starting point",
  async (page) => {
    await page.getByText("Parameters of the fluid", { exact: true }).first().click();
    await page.getByRole("button", { name: "Start an own fluid with these" }).click();
    assert.equal(await editor(page).inputValue(), propane);
    await good(page).waitFor();
    await useButton(page).click();
    await page.getByRole("button", { name: "Edit my propane" }).waitFor();
    await page.getByRole("button", { name: "Remove my propane" }).click();
    assert.equal(await page.getByRole("combobox", { name: "Fluid" }).inputValue(), "propane");
  },
  { link },
);

test(
  "files are opened, and dropped anywhere on the page",
  async (page) => {
    await page.locator("input[type=file]").setInputFiles(pathOf("Fluids/toluene.osd"));
    await good(page).waitFor();
    assert.equal(await page.getByLabel("Name", { exact: true }).inputValue(), "toluene");
    await page.getByRole("tab", { name: "State" }).click();
    await page.evaluate((text) => {
      const dataTransfer = new DataTransfer();
      dataTransfer.items.add(new File([text], "dropped.osd"));
      document.body.dispatchEvent(new DragEvent("drop", { bubbles: true, cancelable: true, dataTransfer }));
    }, propane);
    await good(page).waitFor();
    assert.equal(await page.getByLabel("Name", { exact: true }).inputValue(), "dropped");
    assert.equal(await editor(page).inputValue(), propane);
  },
  { link },
);

test(
  "a link keeps an own fluid if asked, and says what is missing if not",
  async (page) => {
    await page.evaluate(() => {
      const copied: string[] = [];
      Object.assign(globalThis, { copied });
      Object.defineProperty(navigator, "clipboard", {
        value: { writeText: (text: string) => Promise.resolve(void copied.push(text)) },
      });
    });
    await editor(page).fill(propane.replace("369.89", "400.5"));
    await page.getByLabel("Name", { exact: true }).fill("Stoff Ω");
    await useButton(page).click();
    await page.getByRole("button", { name: "Copy link", exact: true }).click();
    await page.getByRole("button", { name: "Copy link with own fluids" }).click();
    await page.waitForFunction(() => (globalThis as unknown as { copied: string[] }).copied.length === 2);
    const links = await page.evaluate(() => (globalThis as unknown as { copied: string[] }).copied);
    const [without = "", withText = ""] = links.map((one) => one.split("#")[1] ?? "");
    const lost = await open(without);
    await lost.page.getByText('The text of the own fluid "Stoff Ω" is not in this page').first().waitFor();
    assert.deepEqual(lost.complaints, []);
    await lost.page.close();
    const found = await open(withText);
    await found.page.getByRole("heading", { name: "Stoff Ω" }).waitFor();
    assert.equal(await criticalTemperature(found.page), 400.5);
    assert.deepEqual(found.complaints, []);
    await found.page.close();
  },
  { link: `${link}&units=si` },
);

const garbage = Array.from({ length: 90_000 }, (_, i) => String.fromCharCode(33 + ((i * 7919) % 90))).join("");
const hostile: Readonly<Record<string, string>> = {
  "garbage without an end": garbage,
  "thousands of lines": "9e999\n".repeat(2_000),
  "NUL characters": propane.replace("propane", "pro\0pane").replace("369.89", "369\0.89"),
  "huge numbers": propane.replace(/^[0-9.]+/gm, "9e99999"),
  "tiny and negative numbers": propane.replace(/^[0-9.]+/gm, "-1e-320"),
  "a huge repeat count": propane.replace("4*572.2", "999999999999*572.2").replace(/^26/m, "2147483647"),
  HTML: propane.replace("propane", "<img src=x onerror=alert(1)><script>alert(2)</script>"),
  "HTML in place of a number": propane.replace("369.89", "<svg onload=alert(1)>"),
  "lone surrogates": propane.replace("propane", "pro\ud800pane\udfff"),
  "only blanks and quotes": `' " \t\u2028 '`.repeat(500),
};
for (const [what, text] of Object.entries(hostile)) {
  test(
    `a hostile text does no harm: ${what}`,
    async (page) => {
      await page
        .locator("input[type=file]")
        .setInputFiles({ name: "hostile.osd", mimeType: "text/plain", buffer: Buffer.from(text) });
      await page.locator(".report").waitFor();
      if (!(await useButton(page).isDisabled())) {
        await useButton(page).click();
        for (const view of ["State", "Diagrams", "Cycles", "Fluids"]) {
          await page.getByRole("tab", { name: view }).click();
          assert.equal(await page.getByText("has a defect").count(), 0);
        }
      }
      assert.equal(await page.locator("#page img, #page script, #page svg[onload]").count(), 0);
      await page.getByRole("tab", { name: "Fluids" }).click();
      await editor(page).fill(propane);
      await good(page).waitFor();
    },
    { link },
  );
}

const megabyte = "1 ".repeat(500_000);

test(
  "a megabyte is refused, as a file and from the clipboard",
  async (page) => {
    await page
      .locator("input[type=file]")
      .setInputFiles({ name: "large.osd", mimeType: "text/plain", buffer: Buffer.from(megabyte) });
    await page.getByText("The file large.osd is larger than any parameter file.").waitFor();
    await editor(page).fill(propane);
    await good(page).waitFor();
    await editor(page).evaluate((field, text) => {
      const clipboardData = new DataTransfer();
      clipboardData.setData("text/plain", text);
      field.dispatchEvent(new ClipboardEvent("paste", { bubbles: true, cancelable: true, clipboardData }));
    }, megabyte);
    await page.getByText("The text is larger than any parameter file.").waitFor();
    assert.equal(await editor(page).inputValue(), propane);
  },
  { link },
);
