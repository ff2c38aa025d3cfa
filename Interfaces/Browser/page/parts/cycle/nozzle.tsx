// SPDX-License-Identifier: MIT
// A nozzle with the fluid of the cycle: the turbine's expansion without blades, unless other values are given.
import { useMemo } from "preact/hooks";
import { type CycleResult, type Fluid, LibraryError, type NozzleResult } from "../../../core/library";
import { type Cell, columnName, csvText } from "../../csv";
import { fileName } from "../../files";
import { library } from "../../library";
import { placesOf, shownUnit, useUnits } from "../../numbers";
import { outputRow, outputTitle } from "../../outputs";
import { defineSlice, useSlice } from "../../store";
import { SaveCsv } from "../copy_button";
import { sentence } from "../message";
import { Num, UnitName } from "../number";
import { QuantityField, quantityText, readQuantity } from "../quantity_field";
import { ScrolledTable, ValueCell } from "../table";

/** Texts with units; empty for what the cycle has. */
const slice = defineSlice("nozzle", { p: "", t: "", outlet: "" });

const choking: Record<NozzleResult["choking"], string> = {
  none: "The flow stays below the speed of sound.",
  sonic: "The flow reaches the speed of sound in the throat.",
  "saturation line": "The speed of sound drops on the saturation line, which is the throat.",
};

interface Column {
  readonly title: string;
  readonly name: string;
  readonly si: string;
  readonly values: Float64Array;
}

function columnsOf({ states, flow }: NozzleResult): readonly Column[] {
  const ofState = (["p", "t", "h", "d", "q"] as const).map((name) => ({
    title: outputTitle(name),
    name,
    si: outputRow(name)?.unit ?? "1",
    values: states[name],
  }));
  return [
    ...ofState,
    { title: "velocity", name: "velocity", si: "m/s", values: flow.velocity },
    { title: "speed of sound", name: "c", si: "m/s", values: flow.sound },
    { title: "Mach number", name: "mach", si: "1", values: flow.mach },
    { title: "mass flux", name: "mass_flux", si: "kg/(m2 s)", values: flow.mass_flux },
    { title: "area/area of the throat", name: "area_ratio", si: "1", values: flow.area_ratio },
    { title: "fundamental derivative", name: "fundamental", si: "1", values: flow.fundamental },
  ];
}

function nozzleAsCsv({ places }: NozzleResult, columns: readonly Column[]): string {
  return csvText([
    ["place", ...columns.map((column) => columnName(column.name, column.si))],
    ...places.map((place, i): Cell[] => [place, ...columns.map((column) => column.values[i])]),
  ]);
}

/** The state of a cycle from which a gas expands, and the pressure to which it does. */
function expansionOf({ places, states }: CycleResult): { p: number; t: number; outlet: number } {
  const from = places.findIndex((place) => /^(turbine inlet|compressor outlet)$/.test(place));
  const to = places.findIndex((place) => /^(turbine outlet|compressor inlet)$/.test(place));
  return { p: states.p[from] ?? NaN, t: states.t[from] ?? NaN, outlet: states.p[to] ?? NaN };
}

export function Nozzle({ fluid, cycle }: { fluid: Fluid; cycle: CycleResult }) {
  const [given, change] = useSlice(slice);
  const { unit, shown } = useUnits();
  const ofCycle = expansionOf(cycle);
  const text = (key: "p" | "t" | "outlet", si: string) => given[key] || quantityText(ofCycle[key], shownUnit(si));
  const texts = { p: text("p", "Pa"), t: text("t", "K"), outlet: text("outlet", "Pa") };
  const [p, t, outlet] = [readQuantity(texts.p, "Pa"), readQuantity(texts.t, "K"), readQuantity(texts.outlet, "Pa")];
  const found = useMemo(() => {
    if (![p, t, outlet].every(({ value }) => Number.isFinite(value))) return undefined;
    try {
      return library.nozzle(fluid, "pt", p.value, t.value, outlet.value);
    } catch (problem) {
      if (problem instanceof LibraryError) return problem;
      throw problem;
    }
  }, [fluid, p.value, t.value, outlet.value]);
  const result = found instanceof LibraryError ? undefined : found;
  const columns = result ? columnsOf(result) : [];
  const rows = columns.map((column) => {
    const values = [...column.values].map((value) => shown(value, column.si));
    return { column, values, places: placesOf(values) };
  });
  return (
    <details class="panel nozzle">
      <summary>Nozzle with this fluid</summary>
      <div class="fields">
        <QuantityField label="Total pressure" si="Pa" text={texts.p} write={(next) => change({ p: next })} />
        <QuantityField label="Total temperature" si="K" text={texts.t} write={(next) => change({ t: next })} />
        <QuantityField label="Outlet pressure" si="Pa" text={texts.outlet} write={(next) => change({ outlet: next })} />
        <button
          type="button"
          class="quiet"
          disabled={!given.p && !given.t && !given.outlet}
          onClick={() => change({ p: "", t: "", outlet: "" })}
        >
          As in the cycle
        </button>
        {result && (
          <SaveCsv
            what="the nozzle"
            file={() => fileName(fluid.text("name"), "nozzle", "csv")}
            text={() => nozzleAsCsv(result, columns)}
          />
        )}
      </div>
      {found instanceof LibraryError && <p class="problem">{sentence(found.message)}</p>}
      {result && (
        <>
          <p>{choking[result.choking]}</p>
          {result.notes.map((note) => (
            <p class="note">{sentence(note)}</p>
          ))}
          <ScrolledTable label="Nozzle">
            <thead>
              <tr>
                <th scope="col">Place</th>
                {columns.map((column) => (
                  <th scope="col" key={column.name} class="numeric">
                    {column.title}
                    <span class="below">
                      <UnitName name={unit(column.si).name} />
                    </span>
                  </th>
                ))}
              </tr>
            </thead>
            <tbody>
              {result.places.map((place, i) => (
                <tr key={i} class={place ? "named" : undefined}>
                  <th scope="row">{place}</th>
                  {rows.map(({ column, values, places }) =>
                    place ? (
                      <td class="numeric" key={column.name}>
                        <strong>
                          <Num value={values[i]!} places={places} />
                        </strong>
                      </td>
                    ) : (
                      <ValueCell key={column.name} value={values[i]!} places={places} />
                    ),
                  )}
                </tr>
              ))}
            </tbody>
          </ScrolledTable>
        </>
      )}
    </details>
  );
}
