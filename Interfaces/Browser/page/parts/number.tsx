// SPDX-License-Identifier: MIT
import { exactText, numberText, placesOf, unitText, type Places } from "../numbers";

/** Of a column whose numbers are not known together. */
const usualWhole = 6.5;

/** A number whose point stands at the same place in all rows of a column. Its title has all digits. */
export function Num({ value, places }: { value: number; places?: Places }) {
  const before = (places?.whole ?? usualWhole) - placesOf([value]).whole;
  return (
    <span class="number" title={exactText(value)} style={{ paddingLeft: `${Math.max(0, before)}ch` }}>
      {numberText(value)}
    </span>
  );
}

export function UnitName({ name }: { name: string }) {
  return <span class="unit">{unitText(name)}</span>;
}
