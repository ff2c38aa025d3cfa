// SPDX-License-Identifier: MIT
export function FluidsView() {
  return <p>Fluids</p>;
}
