// SPDX-License-Identifier: MIT
// Cycles from definitions as texts, with sliders on their numbers.
import { useMemo, useRef, useState } from "preact/hooks";
import { type CycleResult, LibraryError } from "../../core/library";
import { fileName } from "../files";
import { library } from "../library";
import { openFluid, useFluid } from "../opening";
import { Select, Switch } from "../parts/choice";
import { SaveButton, SaveCsv } from "../parts/copy_button";
import { type Changes, examples, withChanges } from "../parts/cycle/definition";
import { Elsewhere } from "../parts/cycle/elsewhere";
import { Nozzle } from "../parts/cycle/nozzle";
import { cycleAsCsv, CycleStates, Figures } from "../parts/cycle/results";
import { Sliders } from "../parts/cycle/sliders";
import { attempt, changesOf, pathOf, portable, type Solved, solved } from "../parts/cycle/solved";
import { Diagram } from "../parts/diagram/diagram";
import { Families } from "../parts/diagram/families";
import type { Plot } from "../parts/diagram/plot";
import { SaveDrawing } from "../parts/diagram/saving";
import { stateInWords } from "../parts/diagram/state_panel";
import { kindNamed, pairOf, type Place, type View } from "../parts/diagram/view";
import { fluidName } from "../parts/fluid_chooser";
import { Problem } from "../parts/message";
import { defineSlice, ownPrefix, useSlice, useStore, type Value } from "../store";
import { kindTitle } from "./diagrams";
import { solve } from "./state/solution";

interface CyclesState {
  readonly example: string;
  /** The text, if it is not that of the example. */
  readonly text: string;
  readonly changes: Changes;
  readonly kind: string;
  /** Letters of the isolines; "standard" for those of the kind. */
  readonly families: string;
  /** Whether the page's fluid takes the place of the one in the text. */
  readonly pageFluid: boolean;
}

const isAccepted: Partial<Record<keyof CyclesState, (value: Value) => boolean>> = {
  example: (value) => examples.some((one) => one.name === value),
  kind: (value) => library.diagramKinds.some((kind) => kind.name === value),
  changes: (value) => Object.values(value as object).every(Number.isFinite),
};

const slice = defineSlice<CyclesState>(
  "cycles",
  { example: examples[0]!.name, text: "", changes: {}, kind: "ts", families: "standard", pageFluid: false },
  (key, value) => isAccepted[key as keyof CyclesState]?.(value) ?? true,
);

export function CyclesView() {
  const [{ example, text: own, changes, kind: name, families: kept, pageFluid }, change] = useSlice(slice);
  const units = useStore((state) => state.units);
  const ownFluids = useStore((state) => state.own);
  const pageName = useStore((state) => state.fluid);
  const pageOptions = useStore((state) => state.options);
  const ofPage = useFluid();
  const plot = useRef<Plot>(null);
  const area = useRef<HTMLTextAreaElement>(null);
  const last = useRef<{ of: Solved; result: CycleResult }>(undefined);
  const [view, setView] = useState<{ of: string; view: View | undefined }>();
  const [pointed, setPointed] = useState<Place>();

  const text = own || (examples.find((one) => one.name === example) ?? examples[0]!).text;
  const page = useMemo(
    () => (pageFluid ? { ...ofPage, name: pageName, options: pageOptions } : undefined),
    [pageFluid, ofPage.fluid, ofPage.problem, pageName, pageOptions],
  );
  const names = useMemo(() => ownFluids.map((one) => one.name), [ownFluids]);
  const now = useMemo(() => solved(text, changes, names, page), [text, changes, names, page]);
  const { definition, result, problem } = now;
  // It is asked for at each drawing, so that it stays open.
  const fluid = now.fluid && openFluid(now.fluidName, now.options).fluid;

  const kind = kindNamed(library, name);
  const families = kept === "standard" ? kind.families : kept;
  if (result) last.current = { of: now, result };
  // What has no solution, or cannot be read, leaves the last cycle on the page. Its fluid may have been closed.
  const before = last.current;
  const drawn = fluid ?? (before && openFluid(before.of.fluidName, before.of.options).fluid);
  const keyOf = (one: Solved | undefined) => JSON.stringify([one?.fluidName, one?.options]);
  const isSame = !fluid || keyOf(now) === keyOf(before?.of);
  const shownResult = result ?? (isSame ? before?.result : undefined);
  const shown = result ? now : before?.of;
  // While a slider moves, the text stays what it is.
  const inText = useMemo(
    () => (shown?.isChanged ? attempt(() => library.cycle(text, {}, shown.replacement)) : undefined),
    [text, shown?.isChanged, shown?.replacement],
  );
  const path = useMemo(() => shownResult && pathOf(shownResult, kind, !result), [shownResult, kind, !result]);
  const fluidTitle = drawn?.text("name") ?? "";
  const of = keyOf(fluid ? now : before?.of) + name;
  const { inputs, xFirst } = pairOf(library, kind);
  const changedCount = definition ? Object.keys(changesOf(definition, changes)).length : 0;
  const file = (what: string, extension: string) => fileName(fluidTitle, what, extension);
  const cycleKind = definition?.kind ?? "cycle";
  const definitionText = () => portable(text, definition ? changesOf(definition, changes) : {}, now);
  const goToLine = (line: number) => {
    const lines = text.split("\n");
    const begin = lines.slice(0, line - 1).reduce((sum, one) => sum + one.length + 1, 0);
    area.current?.focus();
    area.current?.setSelectionRange(begin, begin + (lines[line - 1]?.length ?? 0));
  };
  const readout =
    pointed && drawn
      ? stateInWords(xFirst ? solve(drawn, inputs, pointed.x, pointed.y) : solve(drawn, inputs, pointed.y, pointed.x), [
          "t",
          "p",
          "h",
          "s",
        ])
      : "";
  return (
    <div class="cycles">
      <div class="fields diagram-choices">
        <Select
          label="Example"
          value={own ? "" : example}
          choices={[
            ...(own ? [{ value: "", text: "own text" }] : []),
            ...examples.map((one) => ({ value: one.name, text: one.title })),
          ]}
          choose={(value) => value && change({ example: value, text: "", changes: {} })}
        />
        <Switch
          label="Fluid of the cycle"
          value={pageFluid ? "page" : "text"}
          choices={[
            { value: "text", text: definition && !pageFluid ? `of the text: ${definition.fluid}` : "of the text" },
            { value: "page", text: `of the page: ${fluidName(pageName)}` },
          ]}
          choose={(value) => change({ pageFluid: value === "page" })}
        />
        <Switch
          label="Diagram"
          value={name}
          choices={library.diagramKinds.map((one) => ({ value: one.name, text: kindTitle(one.name) }))}
          choose={(value) => change({ kind: value, families: "standard" })}
        />
      </div>
      <div class="cycle-areas">
        <div class="cycle-diagram">
          {drawn && (
            <>
              <Diagram
                plot={plot}
                fluid={drawn}
                kind={name}
                units={units}
                families={families}
                view={view?.of === of ? view.view : undefined}
                states={noMarks}
                path={path}
                over={problem && definition && fluid && <Problem problem={problem} id="cycle-problem" />}
                label={`${kindTitle(name)} diagram of the cycle with ${fluidTitle}`}
                events={{ viewed: (to) => setView({ of, view: to }), pointed: setPointed }}
              />
              <p class="note readout">{readout}</p>
              <Families kind={kind} chosen={families} choose={(value) => change({ families: value })} />
            </>
          )}
        </div>
        <div class="wanted">
          {definition && definition.given.length > 0 && (
            <section class="panel" aria-label="Numbers of the definition">
              <div class="heading">
                <h2>Numbers</h2>
                <div class="actions">
                  <button
                    type="button"
                    class="quiet"
                    disabled={!changedCount}
                    onClick={() => change({ text: withChanges(text, definition.given, changes), changes: {} })}
                  >
                    Write into the text
                  </button>
                  <button type="button" class="quiet" disabled={!changedCount} onClick={() => change({ changes: {} })}>
                    As in the text
                  </button>
                </div>
              </div>
              <Sliders
                text={text}
                given={definition.given}
                changes={changes}
                change={(next) => change({ changes: next })}
              />
            </section>
          )}
          <section class="panel definition" aria-label="Definition">
            <div class="heading">
              <h2>
                <label for="cycle-text">Definition (TOML)</label>
              </h2>
              <SaveButton
                label="Save TOML"
                file={() => file(cycleKind, "toml")}
                type="application/toml"
                text={definitionText}
              />
            </div>
            {problem && !(definition && fluid) && <Refusal problem={problem} goToLine={goToLine} />}
            <textarea
              id="cycle-text"
              ref={area}
              rows={14}
              spellcheck={false}
              aria-invalid={problem !== undefined && problem.line > 0}
              aria-describedby={problem ? "cycle-problem" : undefined}
              value={text}
              onInput={(event) => change({ text: event.currentTarget.value })}
            />
          </section>
        </div>
        <div class="outcome">
          {shownResult && (
            <section class={result ? "panel" : "panel faded"} aria-label="Figures">
              <div class="heading">
                <h2>Figures</h2>
                <div class="actions">
                  <SaveDrawing
                    plot={plot}
                    file={(extension) => file(`${cycleKind}-${name}`, extension)}
                    heading={`${fluidTitle}, ${cycleKind}`}
                  />
                  <SaveCsv
                    what="the figures and states"
                    file={() => file(cycleKind, "csv")}
                    text={() => cycleAsCsv(shownResult)}
                  />
                </div>
              </div>
              {!result && <p class="said">These are the last figures. The numbers as they are now have no solution.</p>}
              <Figures
                figures={shownResult.figures}
                before={inText instanceof LibraryError ? undefined : inText?.figures}
              />
            </section>
          )}
        </div>
        <div class="rest">
          {shownResult && (
            <section class={result ? "panel" : "panel faded"} aria-label="States of the cycle">
              <h2>States</h2>
              <CycleStates result={shownResult} />
            </section>
          )}
          {result && fluid && <Nozzle fluid={fluid} cycle={result} />}
          {result && (
            <Elsewhere
              text={definitionText()}
              figure={result.kind === "rankine" ? "efficiency" : "cop_cooling"}
              ownFluid={now.fluidName.startsWith(ownPrefix)}
            />
          )}
        </div>
      </div>
    </div>
  );
}

/** Why there is no cycle, and where in the text. */
function Refusal({ problem, goToLine }: { problem: LibraryError; goToLine: (line: number) => void }) {
  return (
    <div role="status">
      <Problem problem={problem} id="cycle-problem" />
      {problem.line > 0 && (
        <button type="button" class="quiet" onClick={() => goToLine(problem.line)}>
          Go to line {problem.line}
        </button>
      )}
    </div>
  );
}

const noMarks = [] as const;
