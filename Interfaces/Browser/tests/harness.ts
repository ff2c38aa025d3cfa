// SPDX-License-Identifier: MIT
// Opens the built page in Chromium. Every test fails on a request that leaves the page and on a message in the console.
import { mkdtempSync, readFileSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, before, test as nodeTest } from "node:test";
import { pathToFileURL } from "node:url";
import { chromium, type BrowserContext, type Page } from "playwright-core";
import { page as pageFolder } from "./in_node";

export const pageAddress = pathToFileURL(join(pageFolder, "index.html")).href;

export interface Setting {
  readonly width?: number;
  readonly height?: number;
  readonly dark?: boolean;
  readonly reducedMotion?: boolean;
  /** Why a test cannot be tried here. */
  readonly skip?: string;
  /** 2 for a page at 200 %. */
  readonly zoom?: number;
}

let browser: { context: BrowserContext; profile: string } | undefined;

async function start(): Promise<BrowserContext> {
  const profile = mkdtempSync(join(tmpdir(), "ostrel-page-"));
  const context = await chromium.launchPersistentContext(profile, {
    executablePath: process.env.OSTREL_CHROMIUM ?? "/usr/bin/chromium",
    headless: true,
    args: [
      "--no-sandbox",
      "--disable-gpu",
      "--disable-quic",
      "--no-first-run",
      "--disable-background-networking",
      "--disable-component-update",
      "--disable-sync",
    ],
    viewport: null,
    acceptDownloads: true,
  });
  browser = { context, profile };
  return context;
}

async function end(): Promise<void> {
  await browser?.context.close();
  if (browser) rmSync(browser.profile, { recursive: true, force: true });
  browser = undefined;
}

before(async () => void (await start()));
after(end);

/** A tab, and what it has done that no page may do. */
export interface Opened {
  readonly page: Page;
  readonly complaints: string[];
}

/** Opens the page with a link ("view=fluids&fluid=water") in a tab of its own. */
export async function open(link = "", setting: Setting = {}): Promise<Opened> {
  const context = browser?.context ?? (await start());
  const page = await context.newPage();
  const complaints: string[] = [];
  page.on("request", (request) => {
    const address = request.url();
    const own = address.startsWith(pageAddress.slice(0, pageAddress.lastIndexOf("/") + 1));
    if (!own && !/^(data|blob):/.test(address)) complaints.push(`request: ${address}`);
  });
  page.on("websocket", (socket) => complaints.push(`socket: ${socket.url()}`));
  page.on("console", (message) => complaints.push(`console: ${message.text()}`));
  page.on("pageerror", (error) => complaints.push(`error: ${error.stack ?? error.message}`));
  page.on("dialog", (dialog) => {
    complaints.push(`dialog: ${dialog.message()}`);
    void dialog.dismiss();
  });
  const { width = 1280, height = 900, zoom = 1 } = setting;
  // A browser at 200 % gives the page half as many pixels, each of them twice as large.
  await page.setViewportSize({ width: Math.round(width / zoom), height: Math.round(height / zoom) });
  await page.emulateMedia({
    colorScheme: setting.dark ? "dark" : "light",
    reducedMotion: setting.reducedMotion ? "reduce" : "no-preference",
  });
  await page.goto(link ? `${pageAddress}#${link}` : pageAddress);
  await page.locator("#view").waitFor();
  return { page, complaints };
}

/** A test with a tab of its own. */
export function test(
  name: string,
  body: (page: Page) => Promise<void>,
  { link = "", ...setting }: Setting & { link?: string } = {},
): void {
  nodeTest(name, { timeout: 600_000, skip: setting.skip ?? false }, async () => {
    const { page, complaints } = await open(link, setting);
    try {
      await body(page);
      if (complaints.length > 0) throw new Error(complaints.join("\n"));
    } finally {
      await page.close();
    }
  });
}

/** Fails if the page is wider than its window. */
export async function expectNoSidewaysScroll(page: Page): Promise<void> {
  const [wide, room] = await page.evaluate(() => [
    document.documentElement.scrollWidth,
    document.documentElement.clientWidth,
  ]);
  if (Number(wide) > Number(room)) throw new Error(`The page is ${wide} pixels wide in a window of ${room}.`);
}

/** Gives an open page another link, and waits until it shows what the link says. */
export async function follow(page: Page, link: string): Promise<void> {
  await page.evaluate(
    (hash) =>
      new Promise<void>((resolve) => {
        addEventListener("hashchange", () => setTimeout(resolve), { once: true });
        location.hash = hash;
      }),
    link,
  );
}

/** Presses Tab until an element with this accessible name has the focus. */
export async function tabTo(page: Page, name: string | RegExp, most = 80): Promise<void> {
  const passed: string[] = [];
  for (let i = 0; i < most; ++i) {
    await page.keyboard.press("Tab");
    const found = await page.evaluate(() => {
      const element = document.activeElement;
      if (!(element instanceof HTMLElement)) return "";
      const labels = (element as HTMLInputElement).labels;
      return element.ariaLabel ?? labels?.[0]?.textContent ?? element.textContent ?? "";
    });
    passed.push(found.slice(0, 30));
    if (typeof name === "string" ? found.trim() === name : name.test(found)) return;
  }
  throw new Error(`The focus does not reach ${name}; it passed ${passed.join(" | ")}`);
}

/** The text that a button saves. */
export async function saved(page: Page, button: string): Promise<{ name: string; text: string }> {
  const [download] = await Promise.all([
    page.waitForEvent("download"),
    page.getByRole("button", { name: button }).click(),
  ]);
  return { name: download.suggestedFilename(), text: readFileSync(await download.path(), "utf8") };
}
