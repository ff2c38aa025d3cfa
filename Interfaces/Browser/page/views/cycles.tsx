// SPDX-License-Identifier: MIT
export function CyclesView() {
  return <p>Cycles</p>;
}
