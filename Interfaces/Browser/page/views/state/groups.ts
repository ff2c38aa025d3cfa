// SPDX-License-Identifier: MIT
// The order in which the page shows outputs. Those without a place here come last.
import type { Row } from "../../../core/library";

export const groups: readonly { readonly title: string; readonly names: readonly string[] }[] = [
  { title: "State", names: ["t", "p", "v", "d", "z"] },
  { title: "Energy and entropy", names: ["h", "s", "u", "g", "a"] },
  { title: "Heat capacities", names: ["cp", "cv", "cp_cv"] },
  { title: "Sound and gas dynamics", names: ["c", "isentropic_exponent", "fundamental"] },
  { title: "Compression and expansion", names: ["kappa_t", "beta_p", "jt"] },
  { title: "Transport", names: ["eta", "lambda", "prandtl"] },
  { title: "Saturation at this p, at this t", names: ["tsat", "psat"] },
  { title: "Derivatives", names: ["dp_dt", "dp_dv", "d2p_dt2", "d2p_dv2", "d2p_dtdv", "dcv_dt"] },
];
/** These stand above all groups. */
export const aboveGroups = ["phase", "q"];

/** The outputs in groups; derivatives that somebody asked are with the others. */
export function grouped(rows: readonly Row[]): readonly { title: string; rows: readonly Row[] }[] {
  const placed = new Set([...aboveGroups, ...groups.flatMap((group) => group.names)]);
  const rest = rows.filter((row) => !placed.has(row.name));
  const isDerivative = (row: Row) => row.name.includes("|");
  const found = groups.map(({ title, names }) => ({
    title,
    rows: [
      ...names.flatMap((name) => rows.find((row) => row.name === name) ?? []),
      ...(title === "Derivatives" ? rest.filter(isDerivative) : []),
    ],
  }));
  return [...found, { title: "Others", rows: rest.filter((row) => !isDerivative(row)) }].filter(
    (group) => group.rows.length > 0,
  );
}
