// SPDX-License-Identifier: MIT
// Names and types of the files that the page saves.

export const csvType = "text/csv;charset=utf-8";

/** "propane-saturation.csv" from a name that may have anything in it. */
export function fileName(name: string, what: string, extension: string): string {
  const safe =
    name
      .replace(/[^\p{L}\p{N}]+/gu, "_")
      .replace(/^_+|_+$/g, "")
      .slice(0, 40) || "fluid";
  return `${safe}${what && `-${what}`}.${extension}`;
}
