// SPDX-License-Identifier: MIT
import { Component, render, type ComponentChildren, type FunctionComponent } from "preact";
import { useEffect, useRef } from "preact/hooks";
import { library, start } from "./library";
import { ActionButton, copy } from "./parts/copy_button";
import { FluidChooser, fluidName } from "./parts/fluid_chooser";
import { ModelChooser, OptionChoosers, UnitsChooser } from "./parts/option_choosers";
import { change, link, startStore, useStore, views, type View } from "./store";
import { CyclesView } from "./views/cycles";
import { DiagramsView } from "./views/diagrams";
import { FluidsView } from "./views/fluids";
import { takeDrops } from "./views/fluids/files";
import { StateView } from "./views/state";

const shownViews: Record<View, { title: string; content: FunctionComponent }> = {
  state: { title: "State", content: StateView },
  diagrams: { title: "Diagrams", content: DiagramsView },
  cycles: { title: "Cycles", content: CyclesView },
  fluids: { title: "Fluids", content: FluidsView },
};

function Tabs() {
  const current = useStore((state) => state.view);
  const list = useRef<HTMLDivElement>(null);
  const key = (event: KeyboardEvent) => {
    const place = views.indexOf(current);
    const to = { ArrowRight: place + 1, ArrowLeft: place - 1, Home: 0, End: views.length - 1 }[event.key];
    const view = to === undefined ? undefined : views[(to + views.length) % views.length];
    if (!view) return;
    event.preventDefault();
    change({ view });
    list.current?.querySelector<HTMLElement>(`#tab-${view}`)?.focus();
  };
  return (
    <div class="tabs" role="tablist" aria-label="Views" ref={list} onKeyDown={key}>
      {views.map((view) => (
        <button
          type="button"
          role="tab"
          id={`tab-${view}`}
          aria-selected={view === current}
          aria-controls="view"
          tabIndex={view === current ? 0 : -1}
          onClick={() => change({ view })}
        >
          {shownViews[view].title}
        </button>
      ))}
    </div>
  );
}

/** What a defect of a view leaves: a sentence in its place, while the rest of the page goes on. */
class Guard extends Component<{ children: ComponentChildren }, { failure?: string }> {
  static override getDerivedStateFromError(failure: unknown) {
    return { failure: String(failure) };
  }
  override render() {
    const { failure } = this.state;
    return failure === undefined ? (
      this.props.children
    ) : (
      <div class="problem" role="alert">
        <p>This view has a defect and cannot be shown: {failure}</p>
      </div>
    );
  }
}

function Links() {
  const own = useStore((state) => state.own);
  return (
    <div class="links">
      <ActionButton
        label="Copy link"
        done="Link copied"
        title="The link shows the page as it is now."
        act={async () => copy(await link(false))}
      />
      {own.length > 0 && (
        <ActionButton
          label="Copy link with own fluids"
          done="Link copied"
          title="The texts of the own fluids become part of the link."
          act={async () => copy(await link(true))}
        />
      )}
    </div>
  );
}

function App() {
  const view = useStore((state) => state.view);
  const fluid = useStore((state) => state.fluid);
  const Content = shownViews[view].content;
  useEffect(() => {
    document.title = `${fluidName(fluid)}: ${shownViews[view].title} – Ostrel`;
  }, [fluid, view]);
  return (
    <>
      <header>
        <div class="title">
          <h1>Ostrel</h1>
          <span class="note">{library.version}</span>
        </div>
        <div class="fields main-choices">
          <FluidChooser />
          <ModelChooser />
          <UnitsChooser />
          <OptionChoosers />
        </div>
        <Links />
      </header>
      <Tabs />
      <main>
        <div id="view" role="tabpanel" aria-labelledby={`tab-${view}`}>
          <Guard key={view}>
            <Content />
          </Guard>
        </div>
      </main>
    </>
  );
}

async function main(): Promise<void> {
  const place = document.getElementById("page");
  if (!place) return;
  try {
    await start();
    await startStore();
  } catch (failure) {
    place.textContent = `Ostrel cannot start: ${failure instanceof Error ? failure.message : String(failure)}`;
    return;
  }
  takeDrops();
  place.replaceChildren();
  render(<App />, place);
}

void main();
