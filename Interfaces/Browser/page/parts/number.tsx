// SPDX-License-Identifier: MIT
import { digits, exactText, unitText } from "../numbers";

/** A number whose point stands at the same place in all rows of a column. Its title has all digits. */
export function Num({ value, significant }: { value: number; significant?: number }) {
  const { whole, fraction, exponent } = digits(value, significant);
  return (
    <span class="number" title={exactText(value)}>
      <span class="whole">{whole}</span>
      <span class="fraction">
        {fraction}
        {exponent && (
          <>
            {" × 10"}
            <sup>{exponent.replace("-", "\u2212")}</sup>
          </>
        )}
      </span>
    </span>
  );
}

export function UnitName({ name }: { name: string }) {
  return <span class="unit">{unitText(name)}</span>;
}
