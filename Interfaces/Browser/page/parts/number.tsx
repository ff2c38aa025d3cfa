// SPDX-License-Identifier: MIT
import { digits, exactText, unitText, type Places } from "../numbers";

/** A number whose point stands at the same place in all rows of a column. Its title has all digits. */
export function Num({ value, places }: { value: number; places?: Places }) {
  const { whole, fraction, exponent } = digits(value);
  const style = places && { gridTemplateColumns: `${places.whole}ch ${places.fraction}ch` };
  return (
    <span class="number" title={exactText(value)} style={style}>
      <span class="whole">{whole}</span>
      <span class="fraction">
        {fraction}
        {exponent && (
          <span class="power">
            ×10<sup>{exponent.replace("-", "\u2212")}</sup>
          </span>
        )}
      </span>
    </span>
  );
}

export function UnitName({ name }: { name: string }) {
  return <span class="unit">{unitText(name)}</span>;
}
