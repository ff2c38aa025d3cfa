// SPDX-License-Identifier: MIT
// Diagrams of the page's fluid: any state under the pointer, states that are put down, and their differences.
import { useMemo, useRef, useState } from "preact/hooks";
import type { Letter } from "../../core/library";
import { fileName } from "../files";
import { library } from "../library";
import { shownUnit, useUnits } from "../numbers";
import { useFluid } from "../opening";
import { Switch } from "../parts/choice";
import { Diagram } from "../parts/diagram/diagram";
import { Families } from "../parts/diagram/families";
import { type Plot } from "../parts/diagram/plot";
import { Differences, type PutState, PutStates, solvePut } from "../parts/diagram/put_states";
import { SaveDrawing } from "../parts/diagram/saving";
import { stateInWords, StatePanel } from "../parts/diagram/state_panel";
import { kindNamed, pairOf, type Place, type View } from "../parts/diagram/view";
import { Problem } from "../parts/message";
import { defineSlice, useSlice, useStore, type Value } from "../store";
import { type Solution, solve } from "./state/solution";

interface DiagramsState {
  readonly kind: string;
  /** Letters of the isolines; "standard" for those of the kind. */
  readonly families: string;
  /** Both ranges [SI], and the fluid and the kind that they are for; empty for the automatic view. */
  readonly view: readonly [] | readonly [of: string, x0: number, x1: number, y0: number, y1: number];
  readonly states: readonly PutState[];
  /** The two states that are compared, from 0. */
  readonly compared: readonly [number, number];
}

const isPutState = (one: Value): boolean =>
  Array.isArray(one) && one.length === 3 && one.every((text) => typeof text === "string") && one[0]?.length === 2;

const isAccepted: Record<keyof DiagramsState, (value: Value) => boolean> = {
  kind: (value) => library.diagramKinds.some((kind) => kind.name === value),
  families: () => true,
  view: (value) =>
    Array.isArray(value) &&
    (!value.length || (value.length === 5 && typeof value[0] === "string" && value.slice(1).every(Number.isFinite))),
  states: (value) => Array.isArray(value) && value.length <= 100 && value.every(isPutState),
  compared: (value) => Array.isArray(value) && value.length === 2 && value.every(Number.isInteger),
};

const slice = defineSlice<DiagramsState>(
  "diagrams",
  { kind: "ts", families: "standard", view: [], states: [], compared: [0, 1] },
  (key, value) => isAccepted[key as keyof DiagramsState](value),
);

/** "T–s" */
export const kindTitle = (name: string): string => {
  const { x, y } = kindNamed(library, name);
  return `${library.properties[y].symbol}–${library.properties[x].symbol}`;
};

/** A value as text with a unit, with no more digits than a place on the screen has. */
function placeText(value: number, letter: Letter, resolution: number): string {
  const unit = shownUnit(library.properties[letter].si);
  const shown = library.units.to(value, unit);
  const step = Math.abs(library.units.to(value + resolution, unit) - shown);
  const digits = shown === 0 ? 1 : Math.ceil(Math.log10(Math.abs(shown) / step)) + 1;
  return `${Number(shown.toPrecision(Math.min(Math.max(digits, 3), 17)))} ${unit.name}`;
}

export function DiagramsView() {
  const [{ kind: name, families, view: kept, states: puts, compared }, change] = useSlice(slice);
  const fluidName = useStore((state) => state.fluid);
  const options = useStore((state) => state.options);
  const units = useStore((state) => state.units);
  useUnits();
  const { fluid, problem } = useFluid();
  const plot = useRef<Plot>(null);
  const [pointed, setPointed] = useState<Place>();
  const [said, setSaid] = useState("");
  const sayLater = useRef<ReturnType<typeof setTimeout>>(undefined);

  const kind = kindNamed(library, name);
  const { inputs, xFirst } = pairOf(library, kind);
  const states = useMemo(() => (fluid ? puts.map((put) => solvePut(fluid, put)) : []), [fluid, puts]);
  if (!fluid) return <div class="panel">{problem && <Problem problem={problem} />}</div>;

  const at = ({ x, y }: Place): Solution => solve(fluid, inputs, ...(xFirst ? ([x, y] as const) : ([y, x] as const)));
  const viewOf = JSON.stringify([fluidName, options, name]);
  const [of, x0, x1, y0, y1] = kept as Exclude<DiagramsState["view"], readonly []>;
  const view: View | undefined = of === viewOf ? { x: [x0, x1], y: [y0, y1] } : undefined;
  const marks = states.flatMap((state, i) =>
    state.phase ? [{ x: state.of(kind.x), y: state.of(kind.y), name: String(i + 1) }] : [],
  );
  const setStates = (next: readonly PutState[]) => {
    const last = next.length - 1;
    change({ states: next, compared: next.length > states.length ? [Math.max(last - 1, 0), last] : compared });
  };
  const put = (place: Place) => {
    const resolution = plot.current?.resolutionAt(place) ?? { x: 0, y: 0 };
    const x = placeText(place.x, kind.x, resolution.x / 4);
    const y = placeText(place.y, kind.y, resolution.y / 4);
    setStates([...puts, xFirst ? [inputs, x, y] : [inputs, y, x]]);
  };
  const say = (place: Place | undefined) => {
    clearTimeout(sayLater.current);
    sayLater.current = setTimeout(() => setSaid(place ? stateInWords(at(place), [kind.y, kind.x]) : ""), 250);
  };
  const fluidTitle = fluid.text("name");
  const title = `${kindTitle(name)} diagram of ${fluidTitle}`;
  const [from, to] = compared.map((i) => Math.min(i, states.length - 1)) as [number, number];
  return (
    <div class="diagrams">
      <div class="fields diagram-choices">
        <Switch
          label="Diagram"
          value={name}
          choices={library.diagramKinds.map((one) => ({ value: one.name, text: kindTitle(one.name) }))}
          choose={(value) => change({ kind: value, families: "standard", view: [] })}
        />
        <Families
          kind={kind}
          chosen={families === "standard" ? kind.families : families}
          choose={(value) => change({ families: value })}
        />
        <div class="actions">
          <SaveDrawing
            plot={plot}
            file={(extension) => fileName(fluidTitle, name, extension)}
            heading={`${fluidTitle}, ${fluid.text("model")}`}
          />
        </div>
      </div>
      <div class="beside">
        <Diagram
          plot={plot}
          fluid={fluid}
          kind={name}
          units={units}
          families={families === "standard" ? kind.families : families}
          view={view}
          states={marks}
          label={title}
          events={{
            viewed: (to) => change({ view: to ? [viewOf, ...to.x, ...to.y] : [] }),
            pointed: (place, byKey) => {
              setPointed(place);
              if (byKey) say(place);
            },
            put,
            takeBack: () => setStates(puts.slice(0, -1)),
          }}
        />
        <section class="panel under-pointer" aria-label="State under the pointer">
          <h2>Under the pointer</h2>
          <StatePanel
            state={pointed && at(pointed)}
            hint="Move the pointer over the diagram, or give it the focus and press an arrow key. A click or Enter puts a state down."
          />
          <p class="unseen" role="status">
            {said}
          </p>
        </section>
      </div>
      <PutStates puts={puts} states={states} change={setStates} fluid={fluidTitle} />
      {states.length > 1 && (
        <Differences states={states} from={from} to={to} choose={(a, b) => change({ compared: [a, b] })} />
      )}
    </div>
  );
}
