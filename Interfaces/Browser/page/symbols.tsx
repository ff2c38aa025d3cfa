// SPDX-License-Identifier: MIT
// Symbols of properties, as formulas have them. A name without an entry is its own symbol.
import type { ComponentChild } from "preact";

const letters: Record<string, string> = {
  t: "T",
  d: "ρ",
  eta: "η",
  lambda: "λ",
  z: "Z",
  fundamental: "Γ",
  prandtl: "Pr",
  kappa_t: "κ_T",
  beta_p: "β_p",
  jt: "μ_JT",
  cp: "c_p",
  cv: "c_v",
  cp_cv: "c_p/c_v",
  isentropic_exponent: "k_s",
  tsat: "T_sat",
  psat: "p_sat",
  m_mol: "M",
  r_gas: "R",
  omega: "ω",
};
const upright = /^(phase|Pr|[0-9]+)$/;

const symbolOf = (name: string) =>
  letters[name] ?? name.replace(/^([a-z])_/, (_, letter: string) => `${letters[letter] ?? letter}_`);

function one(symbol: string): ComponentChild {
  const [base = "", ...indices] = symbol.split("_");
  const index = indices.join(",\u2009");
  const text = upright.test(base) ? base : <i>{base}</i>;
  return index ? [text, <sub>{index}</sub>] : text;
}

const plain = (name: string) =>
  symbolOf(name)
    .split("/")
    .map(one)
    .flatMap((part, i) => (i ? ["/", part] : [part]));

/** The names of a derivative's quantities: "dp/dd|u" is p, d, u; "dp_dt" is p, t. */
const quotient = /^d(\w+)\/d(\w)\|(\w)$/;
const written = /^d(2?)([a-z]+)_d([a-z])(?:d([a-z])|(2))?$/;

/** The symbol of an output, a constant or a derivative. */
export function Symbol({ name }: { name: string }) {
  const derivative = quotient.exec(name);
  if (derivative) {
    const [, x = "", y = "", z = ""] = derivative;
    return (
      <span class="symbol">
        (∂{plain(x)}/∂{plain(y)})<sub>{symbolOf(z)}</sub>
      </span>
    );
  }
  const given = written.exec(name);
  if (given) {
    const [, twice, x = "", y = "", other] = given;
    const power = twice ? <sup>2</sup> : null;
    return (
      <span class="symbol">
        ∂{power}
        {plain(x)}/∂{plain(y)}
        {other ? ["∂", plain(other)] : power}
      </span>
    );
  }
  return <span class="symbol">{plain(name)}</span>;
}
