// SPDX-License-Identifier: MIT
// Puts the page together: library.js with the WebAssembly module and the catalogue, app.js and style.css with the views.
//
//     node build.mjs FOLDER-OF-THE-MODULE FOLDER-OF-THE-FLUIDS FOLDER-OF-THE-PAGE
//     node build.mjs --tests FOLDER       the tests as scripts for node --test
//
// The scripts of the page are classic ones and need nothing else, so that index.html works when it is opened from a
// folder.
import { build, transform } from "esbuild";
import fs from "node:fs";
import path from "node:path";
import { fileURLToPath } from "node:url";
import zlib from "node:zlib";

const here = path.dirname(fileURLToPath(import.meta.url));
const packed = (bytes) => zlib.deflateSync(bytes, { level: 9 }).toString("base64");
const common = {
  absWorkingDir: here,
  bundle: true,
  target: "es2022",
  jsx: "automatic",
  jsxImportSource: "preact",
  loader: { ".toml": "text" },
  logLevel: "warning",
};

/** All files of the catalogue behind a line with their names and sizes. */
function catalogue(folder) {
  const files = fs
    .readdirSync(folder)
    .filter((name) => name.endsWith(".osd") || name === "index.csv")
    .sort()
    .map((name) => [name, fs.readFileSync(path.join(folder, name))]);
  const sizes = files.map(([name, bytes]) => [name, bytes.length]);
  return Buffer.concat([Buffer.from(JSON.stringify(sizes) + "\n"), ...files.map(([, bytes]) => bytes)]);
}

async function library(moduleFolder, fluids, page) {
  const script = fs.readFileSync(path.join(moduleFolder, "ostrel_core.js"), "utf8");
  const { code } = await transform(script, { minify: true, target: "es2022" });
  const parts = {
    wasm: packed(fs.readFileSync(path.join(moduleFolder, "ostrel_core.wasm"))),
    catalogue: packed(catalogue(fluids)),
  };
  const globals = `globalThis.ostrel_core=ostrel_core;globalThis.ostrel_parts=${JSON.stringify(parts)};`;
  fs.writeFileSync(path.join(page, "library.js"), `${code}${globals}\n`);
}

/** The licences of the packages that are in app.js: whoever passes the page on passes them on, too. */
function licences(inputs, page) {
  const names = inputs.map((file) => /node_modules\/((?:@[^/]+\/)?[^/]+)/.exec(file)?.[1]).filter((name) => name !== undefined);
  const texts = [...new Set(names)].sort().map((name) => {
    const folder = path.join(here, "node_modules", name);
    const file = fs.readdirSync(folder).find((entry) => /^licen[cs]e/i.test(entry));
    return `${name}\n\n${fs.readFileSync(path.join(folder, file), "utf8").trim()}\n`;
  });
  fs.writeFileSync(path.join(page, "licences.txt"), texts.join("\n\n"));
}

async function views(folder, page) {
  const { metafile } = await build({
    ...common,
    entryPoints: [path.join(folder, "app.tsx"), path.join(folder, "style.css")],
    outdir: page,
    format: "iife",
    minify: true,
    legalComments: "eof",
    metafile: true,
  });
  licences(Object.keys(metafile.inputs), page);
  fs.copyFileSync(path.join(folder, "index.html"), path.join(page, "index.html"));
}

async function tests(folder) {
  const sources = path.join(here, "tests");
  await build({
    ...common,
    entryPoints: fs
      .readdirSync(sources)
      .filter((name) => name.endsWith(".test.ts"))
      .map((name) => path.join(sources, name)),
    outdir: folder,
    outExtension: { ".js": ".mjs" },
    platform: "node",
    format: "esm",
    external: ["playwright-core"],
  });
}

const [first, second, third] = process.argv.slice(2);
if (first === "--tests") {
  await tests(path.resolve(second));
} else {
  const page = path.resolve(third);
  fs.mkdirSync(page, { recursive: true });
  await library(first, second, page);
  const folder = path.join(here, "page");
  if (fs.existsSync(path.join(folder, "app.tsx"))) await views(folder, page);
}
