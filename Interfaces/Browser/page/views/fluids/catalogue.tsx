// SPDX-License-Identifier: MIT
// The fluids of the catalogue, found by any words.
import { useId, useMemo, useState } from "preact/hooks";
import { library } from "../../library";
import { change, useStore } from "../../store";

export function Catalogue() {
  const id = useId();
  const fluid = useStore((state) => state.fluid);
  const [words, setWords] = useState("");
  const found = useMemo(() => library.find(words), [words]);
  return (
    <section class="panel catalogue" aria-labelledby={`${id}-title`}>
      <h2 id={`${id}-title`}>Catalogue</h2>
      <div class="field">
        <label for={`${id}-words`}>Name, formula, number or family</label>
        <input
          id={`${id}-words`}
          type="search"
          autoComplete="off"
          spellcheck={false}
          value={words}
          onInput={(event) => setWords(event.currentTarget.value)}
        />
      </div>
      <p class="note" role="status">
        {found.length === 1 ? "1 fluid" : `${found.length} fluids`}
      </p>
      <select
        class="found"
        size={18}
        aria-label="Fluids found"
        value={fluid}
        onChange={(event) => change({ fluid: event.currentTarget.value })}
      >
        {found.map((one) => (
          <option key={one.file} value={one.file} selected={one.file === fluid}>
            {one.name}
          </option>
        ))}
      </select>
    </section>
  );
}
