// SPDX-License-Identifier: MIT
// Puts the page together: library.js with the WebAssembly module and the catalogue, and app.js with the views.
//
//     node build.mjs FOLDER-OF-THE-MODULE FOLDER-OF-THE-FLUIDS FOLDER-OF-THE-PAGE
//
// Both scripts are classic ones and need nothing else, so that index.html works when it is opened from a folder.
import { build, transform } from "esbuild";
import fs from "node:fs";
import path from "node:path";
import { fileURLToPath } from "node:url";
import zlib from "node:zlib";

const [moduleFolder, fluids, page] = process.argv.slice(2);
const here = path.dirname(fileURLToPath(import.meta.url));
const packed = (bytes) => zlib.deflateSync(bytes, { level: 9 }).toString("base64");

/** All files of the catalogue behind a line with their names and sizes. */
function catalogue() {
  const files = fs
    .readdirSync(fluids)
    .filter((name) => name.endsWith(".osd") || name === "index.csv")
    .sort()
    .map((name) => [name, fs.readFileSync(path.join(fluids, name))]);
  const sizes = files.map(([name, bytes]) => [name, bytes.length]);
  return Buffer.concat([Buffer.from(JSON.stringify(sizes) + "\n"), ...files.map(([, bytes]) => bytes)]);
}

fs.mkdirSync(page, { recursive: true });
const script = fs.readFileSync(path.join(moduleFolder, "ostrel_core.js"), "utf8");
const { code } = await transform(script, { minify: true, target: "es2022" });
const parts = { wasm: packed(fs.readFileSync(path.join(moduleFolder, "ostrel_core.wasm"))), catalogue: packed(catalogue()) };
fs.writeFileSync(path.join(page, "library.js"), `${code}globalThis.ostrel_core=ostrel_core;globalThis.ostrel_parts=${JSON.stringify(parts)};\n`);

const views = path.join(here, "page");
if (fs.existsSync(views)) {
  await build({
    entryPoints: [path.join(views, "app.tsx")],
    outfile: path.join(page, "app.js"),
    bundle: true,
    format: "iife",
    minify: true,
    target: "es2022",
    jsx: "automatic",
    jsxImportSource: "preact",
    legalComments: "eof",
    logLevel: "warning",
  });
  for (const name of ["index.html", "style.css"]) fs.copyFileSync(path.join(views, name), path.join(page, name));
}
