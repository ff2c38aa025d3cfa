// SPDX-License-Identifier: MIT
export function DiagramsView() {
  return <p>Diagrams</p>;
}
