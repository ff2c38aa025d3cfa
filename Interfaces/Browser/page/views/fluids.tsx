// SPDX-License-Identifier: MIT
// The catalogue, what is known about a fluid, and own fluids.
import { Catalogue } from "./fluids/catalogue";
import { Facts } from "./fluids/facts";
import { OwnFluids } from "./fluids/own";

export function FluidsView() {
  return (
    <div class="fluids-view">
      <Catalogue />
      <Facts />
      <OwnFluids />
    </div>
  );
}
