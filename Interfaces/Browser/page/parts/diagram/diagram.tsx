// SPDX-License-Identifier: MIT
// A diagram of a fluid, with its gestures and keys.
import { useId, useLayoutEffect, useRef, useState } from "preact/hooks";
import type { ComponentChildren, RefObject } from "preact";
import type { Diagram as Curves } from "../../../core/library";
import { library } from "../../library";
import { sentence } from "../message";
import { Plot, type PlotEvents, type Shown } from "./plot";

export interface DiagramProps extends Shown {
  /** What a screen reader says of it. */
  readonly label: string;
  readonly events: Partial<PlotEvents>;
  /** What stands over its lower edge. */
  readonly over?: ComponentChildren;
  /** For buttons beside the diagram. */
  readonly plot?: RefObject<Plot | null>;
}

/** What the keys do; states can be put down in some diagrams only. */
const keysText = (puts: boolean): string =>
  [
    "The arrow keys move a cross hair, with Ctrl in small steps.",
    puts && "Enter puts a state down, Delete takes the last one away.",
    "+ and − zoom, Shift and the arrow keys move the view, 0 shows everything.",
  ]
    .filter(Boolean)
    .join(" ");

export function Diagram(props: DiagramProps) {
  const { label, events, over, plot: given, ...shown } = props;
  const help = useId();
  const host = useRef<HTMLDivElement>(null);
  const layer = useRef<HTMLDivElement>(null);
  const own = useRef<Plot | null>(null);
  const [curves, setCurves] = useState<{ diagram?: Curves; problem: string }>({ problem: "" });
  const latest = useRef(events);
  latest.current = events;

  useLayoutEffect(() => {
    const plot = new Plot(library, host.current!, layer.current!, {
      viewed: (view) => latest.current.viewed?.(view),
      pointed: (at, byKey) => latest.current.pointed?.(at, byKey),
      put: (at) => latest.current.put?.(at),
      takeBack: () => latest.current.takeBack?.(),
      computed: (diagram, problem) => {
        setCurves((before) => (saysTheSame(before, diagram, problem) ? before : { diagram, problem }));
        latest.current.computed?.(diagram, problem);
      },
    });
    own.current = plot;
    if (given) given.current = plot;
    return () => {
      plot.destroy();
      own.current = null;
      if (given) given.current = null;
    };
  }, []);
  useLayoutEffect(() => own.current?.show(shown));

  return (
    <div class="diagram">
      <div class="plot" ref={host}>
        <div
          class="layer"
          ref={layer}
          tabIndex={0}
          role="application"
          aria-roledescription="diagram"
          aria-label={label}
          aria-describedby={help}
        />
        {curves.problem && (
          <p class="no-curves" role="status">
            {sentence(curves.problem)}
          </p>
        )}
        <div class="over" role="status">
          {over}
        </div>
        <div class="zoom" role="group" aria-label="View of the diagram">
          <button type="button" aria-label="Zoom in" title="Zoom in" onClick={() => own.current?.zoomBy(1.5)}>
            +
          </button>
          <button type="button" aria-label="Zoom out" title="Zoom out" onClick={() => own.current?.zoomBy(1 / 1.5)}>
            −
          </button>
          <button type="button" title="Show everything" onClick={() => own.current?.reset()}>
            Reset
          </button>
        </div>
      </div>
      <p class="note keys" id={help}>
        {keysText(events.put !== undefined)}
      </p>
      {curves.diagram?.remarks.map((remark) => (
        <p class="note">{remark}</p>
      ))}
    </div>
  );
}

/** Whether the page shows the same around the curves. */
function saysTheSame(before: { diagram?: Curves; problem: string }, diagram: Curves | undefined, problem: string) {
  return (
    before.problem === problem &&
    !before.diagram === !diagram &&
    (before.diagram?.remarks ?? []).join("\n") === (diagram?.remarks ?? []).join("\n")
  );
}
