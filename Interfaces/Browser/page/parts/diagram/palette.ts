// SPDX-License-Identifier: MIT
// Colors of diagrams. The canvas cannot take them from the style sheet, and a saved drawing has none.
import type { Letter } from "../../../core/library";

export interface Palette {
  readonly paper: string;
  readonly ink: string;
  readonly faint: string;
  readonly grid: string;
  /** Below the saturation line. */
  readonly mixture: string;
  readonly dome: string;
  /** States that somebody put down, and the one under the pointer. */
  readonly state: string;
  /** The path of a cycle. */
  readonly path: string;
  readonly lines: Readonly<Record<Letter, string>>;
}

export const light: Palette = {
  paper: "#ffffff",
  ink: "#1c2126",
  faint: "#5b646d",
  grid: "#eceef0",
  mixture: "#f3f6f9",
  dome: "#1c2126",
  state: "#c2185b",
  path: "#d84a05",
  lines: { t: "#b5372b", p: "#1f5fa8", v: "#2e7d32", h: "#7a3e9d", s: "#a35a08", q: "#6b7278" },
};

export const dark: Palette = {
  paper: "#1a1f23",
  ink: "#e6e9ec",
  faint: "#9aa4ad",
  grid: "#2a3137",
  mixture: "#202830",
  dome: "#e6e9ec",
  state: "#ff6fa5",
  path: "#ff9a4d",
  lines: { t: "#f0867a", p: "#76aef0", v: "#72c47a", h: "#c595e6", s: "#e0a44e", q: "#8f99a2" },
};
