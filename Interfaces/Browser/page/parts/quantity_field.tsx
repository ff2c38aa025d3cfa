// SPDX-License-Identifier: MIT
// A field for a number with its unit. The store keeps the text with the unit, as "10 bar".
import { useId, useRef, useState } from "preact/hooks";
import { LibraryError, type Unit } from "../../core/library";
import { library } from "../library";
import { fieldText, unitText } from "../numbers";
import { sentence } from "./message";

export interface Quantity {
  /** SI value; NaN if the text cannot be read. */
  readonly value: number;
  /** The library's sentence if the text cannot be read. */
  readonly problem: string;
}

/** Reads "10 bar" as SI value. */
export function readQuantity(text: string, si: string): Quantity {
  if (text.trim() === "") return { value: NaN, problem: "" };
  try {
    return { value: library.units.parse(text, si), problem: "" };
  } catch (problem) {
    if (problem instanceof LibraryError) return { value: NaN, problem: sentence(problem.message) };
    throw problem;
  }
}

const number = String.raw`[-+]?(?:\d+\.?\d*|\.\d+)(?:e[-+]?\d+)?`;
const bareNumber = new RegExp(`^\\s*${number}\\s*$`, "i");
const numberAndUnit = new RegExp(`^\\s*(${number})\\s*(\\S.*)$`, "i");

/** "kJ/(kg K)" and "kJ/kg/K" are spellings of one unit. */
const spelling = (unit: Unit) => unitText(unit.name).replace(/[^\p{L}\p{N}°%]/gu, "");

/** The units of a quantity, each in its first spelling. */
function choices(si: string): readonly Unit[] {
  const all = library.units.of(si);
  return all.filter((unit, i) => all.findIndex((other) => spelling(other) === spelling(unit)) === i);
}

/** The number and the unit of a text, if it has a unit that the table knows. */
function parts(text: string, si: string): { number: string; unit?: string } {
  const found = numberAndUnit.exec(text);
  const unit = library.units.of(si).find((one) => one.name === found?.[2]?.trim());
  if (!found || !unit) return { number: text };
  return { number: found[1] ?? "", unit: choices(si).find((one) => spelling(one) === spelling(unit))?.name };
}

const joined = (text: string, unit: string) =>
  bareNumber.test(text) && unit !== "1" ? `${text.trim()} ${unit}` : text;

/** An SI value as text with a unit. */
export function quantityText(value: number, unit: Unit): string {
  return joined(fieldText(library.units.to(value, unit)), unit.name);
}

export function QuantityField(props: {
  label: string;
  si: string;
  /** With its unit: "10 bar". */
  text: string;
  write: (text: string) => void;
  /** What else is wrong with the value. */
  problem?: string;
}) {
  const id = useId();
  const { si, text } = props;
  const units = choices(si);
  const read = parts(text, si);
  // The unit stays while the number is typed anew.
  const latest = useRef({ si, unit: read.unit });
  if (read.unit || latest.current.si !== si) latest.current = { si, unit: read.unit };
  const unit = units.find((one) => one.name === latest.current.unit) ?? library.units.shown(si, "si");
  // What is typed stays as it is, "10 at" on its way to "10 atm", until the focus leaves the field.
  const [draft, setDraft] = useState({ typed: "", written: "" });
  const shown = draft.typed && draft.written === text ? draft.typed : read.number;
  const { value, problem } = readQuantity(text, si);
  const said = problem || props.problem || "";
  const type = (typed: string) => {
    const written = joined(typed, unit.name);
    setDraft({ typed, written });
    props.write(written);
  };
  const take = (name: string) => {
    const chosen = units.find((one) => one.name === name) ?? unit;
    latest.current = { si, unit: name };
    props.write(Number.isFinite(value) ? quantityText(value, chosen) : joined(read.number, name));
  };
  return (
    <div class="field quantity">
      <label for={id}>{props.label}</label>
      <div class="joined">
        <input
          id={id}
          type="text"
          autoComplete="off"
          spellcheck={false}
          value={shown}
          aria-invalid={said !== ""}
          aria-describedby={said ? `${id}-said` : undefined}
          onInput={(event) => type(event.currentTarget.value)}
          onBlur={() => setDraft({ typed: "", written: "" })}
        />
        {units.length > 1 ? (
          <select
            aria-label={`Unit of ${props.label}`}
            value={unit.name}
            onChange={(event) => take(event.currentTarget.value)}
          >
            {units.map((one) => (
              <option value={one.name} selected={one.name === unit.name}>
                {unitText(one.name) || one.name}
              </option>
            ))}
          </select>
        ) : (
          <span class="only-unit">{unitText(unit.name)}</span>
        )}
      </div>
      {said && (
        <p class="said" id={`${id}-said`}>
          {said}
        </p>
      )}
    </div>
  );
}
