// SPDX-License-Identifier: MIT
// Finds a fluid by any of its names as somebody types.
import { useEffect, useId, useMemo, useRef, useState } from "preact/hooks";
import { library } from "../library";
import { openFluid } from "../opening";
import { change, ownPrefix, useStore } from "../store";

interface Found {
  readonly fluid: string;
  readonly name: string;
  readonly note: string;
}

const mostShown = 60;

let names: ReadonlyMap<string, string> | undefined;

/** The name of a fluid for people: the catalogue's for a file, the text's for another name of a fluid. */
export function fluidName(fluid: string): string {
  if (fluid.startsWith(ownPrefix)) return fluid.slice(ownPrefix.length);
  names ??= new Map(library.find("").map((one) => [one.file, one.name]));
  return names.get(fluid) ?? (openFluid(fluid).fluid?.text("name") || fluid);
}

export function FluidChooser() {
  const id = useId();
  const fluid = useStore((state) => state.fluid);
  const own = useStore((state) => state.own);
  const [words, setWords] = useState<string>();
  const [active, setActive] = useState(0);
  const list = useRef<HTMLUListElement>(null);
  const open = words !== undefined;

  const found = useMemo<readonly Found[]>(() => {
    if (words === undefined) return [];
    const lower = words.toLowerCase();
    const mine = own
      .filter((one) => one.name.toLowerCase().includes(lower))
      .map((one) => ({ fluid: ownPrefix + one.name, name: one.name, note: "own fluid" }));
    const others = library.find(words).map((one) => ({ fluid: one.file, name: one.name, note: one.file }));
    return [...mine, ...others];
  }, [words, own]);
  const shown = found.slice(0, mostShown);

  useEffect(() => {
    list.current?.querySelector('[aria-selected="true"]')?.scrollIntoView({ block: "nearest" });
  }, [active, open]);

  const choose = (one: Found | undefined) => {
    if (one) change({ fluid: one.fluid });
    setWords(undefined);
  };
  const search = (text: string) => {
    setWords(text);
    setActive(0);
  };
  const key = (event: KeyboardEvent) => {
    const step = { ArrowDown: 1, ArrowUp: -1, PageDown: 8, PageUp: -8 }[event.key];
    if (step !== undefined) {
      event.preventDefault();
      if (!open) search("");
      else setActive(Math.min(Math.max(active + step, 0), shown.length - 1));
    } else if (event.key === "Enter" && open) {
      event.preventDefault();
      if (shown.length > 0) choose(shown[active]);
    } else if (event.key === "Escape") {
      setWords(undefined);
    }
  };
  const option = (i: number) => `${id}-option-${i}`;
  return (
    <div class="field chooser">
      <label for={id}>Fluid</label>
      <input
        id={id}
        type="text"
        role="combobox"
        autoComplete="off"
        spellcheck={false}
        placeholder="name, formula, R number or CAS number"
        aria-autocomplete="list"
        aria-expanded={open}
        aria-controls={`${id}-list`}
        aria-activedescendant={open && shown.length > 0 ? option(active) : undefined}
        value={words ?? fluidName(fluid)}
        onFocus={(event) => event.currentTarget.select()}
        onClick={() => open || search("")}
        onInput={(event) => search(event.currentTarget.value)}
        onKeyDown={key}
        onBlur={() => setWords(undefined)}
      />
      <ul id={`${id}-list`} class="choices-list" role="listbox" aria-label="Fluids" hidden={!open} ref={list}>
        {shown.map((one, i) => (
          <li
            key={one.fluid}
            id={option(i)}
            role="option"
            aria-selected={i === active}
            onPointerDown={(event) => {
              event.preventDefault();
              choose(one);
            }}
          >
            <span>{one.name}</span>
            <span class="note">{one.note}</span>
          </li>
        ))}
        {found.length > mostShown && (
          <li class="note" role="presentation">
            {found.length - mostShown} more; type to find them.
          </li>
        )}
      </ul>
      <p class="unseen" role="status">
        {open && (found.length === 1 ? "1 fluid" : `${found.length} fluids`)}
      </p>
      {open && found.length === 0 && <p class="said">No fluid has this name, formula or number.</p>}
    </div>
  );
}
