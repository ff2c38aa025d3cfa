// SPDX-License-Identifier: MIT

/** A name as part of the name of a file. */
export const fileName = (name: string): string =>
  name.replace(/[^\p{L}\p{N}]+/gu, "-").replace(/^-+|-+$/g, "").slice(0, 60) || "fluid";
