// SPDX-License-Identifier: MIT
// Turns a formula in the notation of TeX, from standard input, into HTML. An argument "block" makes it stand alone.
const katex = require("/usr/share/javascript/katex/katex.js");
const formula = require("fs").readFileSync(0, "utf8");
process.stdout.write(katex.renderToString(formula, { displayMode: process.argv[2] === "block", throwOnError: true }));
