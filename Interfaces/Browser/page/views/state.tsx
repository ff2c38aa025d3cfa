// SPDX-License-Identifier: MIT
export function StateView() {
  return <p>State</p>;
}
