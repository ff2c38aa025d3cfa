// SPDX-License-Identifier: MIT
import { useId } from "preact/hooks";

export interface Choice {
  readonly value: string;
  readonly text: string;
}

/** A labelled list of which one is chosen. */
export function Select(props: {
  label: string;
  value: string;
  choices: readonly Choice[];
  choose: (value: string) => void;
  title?: string;
}) {
  const id = useId();
  return (
    <div class="field" title={props.title}>
      <label for={id}>{props.label}</label>
      <select id={id} value={props.value} onChange={(event) => props.choose(event.currentTarget.value)}>
        {props.choices.map((one) => (
          <option value={one.value} selected={one.value === props.value}>
            {one.text}
          </option>
        ))}
      </select>
    </div>
  );
}

/** A few choices side by side. */
export function Switch(props: {
  label: string;
  value: string;
  choices: readonly Choice[];
  choose: (value: string) => void;
}) {
  const name = useId();
  return (
    <fieldset class="switch">
      <legend>{props.label}</legend>
      <div class="choices">
        {props.choices.map((one) => (
          <label>
            <input
              type="radio"
              name={name}
              value={one.value}
              checked={one.value === props.value}
              onChange={() => props.choose(one.value)}
            />
            <span>{one.text}</span>
          </label>
        ))}
      </div>
    </fieldset>
  );
}
