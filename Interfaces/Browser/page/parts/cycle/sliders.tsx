// SPDX-License-Identifier: MIT
// Sliders on the numbers that a definition of a cycle gives.
import { useId, useState } from "preact/hooks";
import { type GivenValue, LibraryError } from "../../../core/library";
import { library } from "../../library";
import { sentence } from "../message";
import {
  type Changes,
  positionOf,
  positions,
  readableValue,
  scaleAround,
  unitInText,
  valueAt,
  valueText,
} from "./definition";

/** "drop_hot" as words. */
const words = (name: string) => name.replaceAll("_", " ");

function Slider(props: { text: string; given: GivenValue; value: number; take: (value: number | undefined) => void }) {
  const { text, given, value, take } = props;
  const { key } = given;
  const id = useId();
  const [draft, setDraft] = useState<string>();
  const [problem, setProblem] = useState("");
  const unit = unitInText(text, given);
  const scale = scaleAround(given.value, key, unit);
  const label = words(key.name.split(".")[1] ?? key.name);
  const changed = value !== given.value;
  const type = () => {
    if (draft === undefined) return;
    try {
      take(library.units.parse(/[a-z%°]/i.test(draft) ? draft : `${draft} ${unit.name}`, key.si, key.difference));
      setProblem("");
    } catch (problem) {
      if (!(problem instanceof LibraryError)) throw problem;
      setProblem(sentence(problem.message));
    }
    setDraft(undefined);
  };
  return (
    <div class={changed ? "slider changed" : "slider"} title={key.meaning}>
      <label for={id}>{label}</label>
      <input
        id={id}
        type="range"
        name={key.name}
        min={0}
        max={positions}
        value={positionOf(library.units.to(value, unit), scale)}
        aria-label={`${words(key.name.replace(".", ", "))}: ${key.meaning}`}
        aria-valuetext={readableValue(value, unit)}
        onInput={(event) => {
          setProblem("");
          take(library.units.from(valueAt(Number(event.currentTarget.value), scale), unit));
        }}
      />
      <input
        type="text"
        class="typed"
        aria-label={`Value of ${words(key.name.replace(".", ", "))}`}
        aria-invalid={problem !== ""}
        autoComplete="off"
        spellcheck={false}
        value={draft ?? valueText(value, unit)}
        onInput={(event) => setDraft(event.currentTarget.value)}
        onBlur={type}
        onKeyDown={(event) => event.key === "Enter" && type()}
      />
      <button
        type="button"
        class="quiet"
        disabled={!changed}
        aria-label={`${words(key.name.replace(".", ", "))} as in the text`}
        title={`As in the text: ${readableValue(given.value, unit)}`}
        onClick={() => take(undefined)}
      >
        ↺
      </button>
      {problem && <p class="said">{problem}</p>}
    </div>
  );
}

export function Sliders(props: {
  text: string;
  given: readonly GivenValue[];
  changes: Changes;
  change: (changes: Changes) => void;
}) {
  const { text, given, changes, change } = props;
  const sections = [...new Set(given.map((one) => one.key.name.split(".")[0] ?? ""))];
  const take = (name: string, value: number | undefined) => {
    const others = Object.entries(changes).filter(([other]) => other !== name);
    change(Object.fromEntries(value === undefined ? others : [...others, [name, value]]));
  };
  return (
    <>
      {sections.map((section) => (
        <fieldset class="sliders" key={section}>
          <legend>{words(section)}</legend>
          {given
            .filter((one) => one.key.name.startsWith(`${section}.`))
            .map((one) => (
              <Slider
                key={one.key.name}
                text={text}
                given={one}
                value={changes[one.key.name] ?? one.value}
                take={(value) => take(one.key.name, value === one.value ? undefined : value)}
              />
            ))}
        </fieldset>
      ))}
    </>
  );
}
