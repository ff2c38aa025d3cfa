// SPDX-License-Identifier: MIT
// The table of saturated states by temperature or pressure.
import { LibraryError, type Fluid, type Row, type Saturation as Answer } from "../../../core/library";
import { columnName, csvText } from "../../csv";
import { fileName } from "../../files";
import { library } from "../../library";
import { placesOf, shownUnit, useUnits } from "../../numbers";
import { useFluid } from "../../opening";
import { outputRow } from "../../outputs";
import { Switch } from "../../parts/choice";
import { CsvPanel } from "../../parts/csv_panel";
import { fluidName } from "../../parts/fluid_chooser";
import { sentence } from "../../parts/message";
import { OutputsField, readOutputs } from "../../parts/outputs_field";
import { QuantityField, quantityText, readQuantity } from "../../parts/quantity_field";
import { ColumnHead, ScrolledTable, ValueCell } from "../../parts/table";
import { getState, useSlice } from "../../store";
import { stateSlice } from "./slice";

type By = "t" | "p";
const mostRows = 500;

const steps = [100, 50, 25, 20, 10, 5, 2, 1];
const fewestRows = 9;

interface Ends {
  readonly from: string;
  readonly to: string;
  readonly rows: number;
}

/** Round temperatures that suit the fluid, in the page's unit, or pressures with two digits. */
function usualEnds(fluid: Fluid, by: By): Ends | undefined {
  const si = by === "t" ? "K" : "Pa";
  const unit = shownUnit(si);
  const critical = fluid.constant("t_crit");
  const lowest = Math.max(0.5 * critical, fluid.constant("t_triple") || 0, fluid.constant("t_sat_min") || 0);
  const [low, high] = [Math.min(lowest * 1.001, 0.9 * critical), 0.995 * critical];
  const text = (value: number) => quantityText(library.units.from(value, unit), unit);
  const [first = NaN, last = NaN] = [low, high].map((t) =>
    library.units.to(by === "t" ? t : fluid.value("tq", t, 1, "p"), unit),
  );
  if (!Number.isFinite(fluid.value("tq", high, 1, "p"))) return undefined;
  if (by === "p") return { from: text(Number(first.toPrecision(2))), to: text(Number(last.toPrecision(2))), rows: 12 };
  const step = steps.find((one) => (last - first) / one >= fewestRows) ?? (last - first) / fewestRows;
  const [from, to] = [Math.ceil(first / step), Math.floor(last / step)];
  return { from: text(from * step), to: text(to * step), rows: to - from + 1 };
}

/** SI values from one end to the other; pressures are a geometric series. */
function series(from: number, to: number, rows: number, by: By): Float64Array {
  return library.units.parseRange(`${from}:${to}:${rows}${by === "p" ? ":log" : ""}`, by === "t" ? "K" : "Pa");
}

interface Table {
  readonly at: Float64Array;
  readonly answer: Answer;
  readonly columns: readonly { readonly row: Row; readonly phase: "liquid" | "vapor" }[];
}

function tableOf(fluid: Fluid, by: By, at: Float64Array, outputs: readonly Row[]): Table {
  const other = by === "t" ? "p" : "t";
  const answer = fluid.saturation(by, [other, ...outputs.map((row) => row.name)], at);
  const columns = outputs.flatMap((row) => (["liquid", "vapor"] as const).map((phase) => ({ row, phase })));
  return { at, answer, columns };
}

export function Saturation() {
  const [slice, set] = useSlice(stateSlice);
  const { unit, shown } = useUnits();
  const { fluid } = useFluid();
  const by: By = slice.by === "p" ? "p" : "t";
  const other = by === "t" ? "p" : "t";
  const [given, follows] = [outputRow(by), outputRow(other)];
  const { rows: asked } = readOutputs(slice.saturated);
  if (!fluid || !given || !follows) return null;
  const outputs = asked.filter((row) => row.name !== "t" && row.name !== "p");
  const latent = outputs.some((row) => row.name === "h") ? outputRow("h") : undefined;

  const usual = usualEnds(fluid, by);
  const texts = {
    from: slice.from || (usual?.from ?? ""),
    to: slice.to || (usual?.to ?? ""),
    rows: slice.rows || String(usual?.rows ?? 2),
  };
  const ends = { from: readQuantity(texts.from, given.unit), to: readQuantity(texts.to, given.unit) };
  const count = Number(texts.rows);
  const wrongCount =
    Number.isInteger(count) && count >= 2 && count <= mostRows ? "" : `A table has 2 to ${mostRows} rows.`;
  let table: Table | undefined;
  let problem = "";
  if (Number.isFinite(ends.from.value) && Number.isFinite(ends.to.value) && !wrongCount) {
    try {
      table = tableOf(fluid, by, series(ends.from.value, ends.to.value, count, by), outputs);
    } catch (refusal) {
      if (!(refusal instanceof LibraryError)) throw refusal;
      problem = sentence(refusal.message);
    }
  } else if (!usual && !slice.from) {
    problem = "This equation of state has no saturation line.";
  }

  const width = outputs.length + 1;
  const value = (row: number, column: number, phase: "liquid" | "vapor") =>
    table?.answer[phase][row * width + column] ?? NaN;
  const latentHeat = (row: number) => {
    const place = outputs.findIndex((one) => one.name === "h") + 1;
    return value(row, place, "vapor") - value(row, place, "liquid");
  };
  const latentUnit = latent && unit(latent.unit, true);
  const rows = table
    ? [...table.at].map((at, i) => ({
        at,
        i,
        fails: table.answer.status[i] !== 0 && !Number.isFinite(value(i, 0, "vapor")),
      }))
    : [];
  const numbers = (row: { at: number; i: number }) => [
    shown(row.at, given.unit),
    shown(value(row.i, 0, "vapor"), follows.unit),
    ...outputs.flatMap((one, column) =>
      (["liquid", "vapor"] as const).map((phase) => shown(value(row.i, column + 1, phase), one.unit)),
    ),
    ...(latentUnit ? [latentHeat(row.i) / latentUnit.factor] : []),
  ];
  const filled = rows.filter((row) => !row.fails).map(numbers);
  const places = (filled[0] ?? [NaN]).map((_, column) => placesOf(filled.map((row) => row[column] ?? NaN)));
  const placesAt = (column: number) => places[column] ?? placesOf([]);
  const csv = () =>
    csvText([
      [
        columnName(by, unit(given.unit).name),
        columnName(other, unit(follows.unit).name),
        ...(table?.columns.map(({ row, phase }) => columnName(`${row.name} ${phase}`, unit(row.unit).name)) ?? []),
        ...(latentUnit ? [columnName("latent heat", latentUnit.name)] : []),
      ],
      ...filled,
    ]);
  return (
    <CsvPanel
      name="saturation"
      title="Saturation table"
      saves={{
        what: "the saturation table",
        file: () => fileName(fluidName(getState().fluid), "saturation", "csv"),
        text: csv,
      }}
    >
      <div class="fields">
        <Switch
          label="By"
          value={by}
          choices={[
            { value: "t", text: "temperature" },
            { value: "p", text: "pressure" },
          ]}
          choose={(value) => set({ by: value, from: "", to: "", rows: "" })}
        />
        <QuantityField
          key={`from-${by}`}
          label="From"
          si={given.unit}
          text={texts.from}
          write={(from) => set({ from })}
        />
        <QuantityField key={`to-${by}`} label="To" si={given.unit} text={texts.to} write={(to) => set({ to })} />
        <div class="field">
          <label for="saturation-rows">Rows</label>
          <input
            id="saturation-rows"
            class="count"
            type="text"
            inputMode="numeric"
            value={texts.rows}
            aria-invalid={wrongCount !== ""}
            onInput={(event) => set({ rows: event.currentTarget.value })}
          />
          {wrongCount && <p class="said">{wrongCount}</p>}
        </div>
        <OutputsField text={slice.saturated} write={(saturated) => set({ saturated })} />
      </div>
      {problem && <p class="problem">{problem}</p>}
      {table && (
        <ScrolledTable label="Saturated states">
          <thead>
            <tr>
              <ColumnHead row={given} note="&nbsp;" />
              <ColumnHead row={follows} note="&nbsp;" />
              {table.columns.map(({ row, phase }) => (
                <ColumnHead row={row} note={phase} />
              ))}
              {latent && (
                <ColumnHead row={{ ...latent, name: "Δh", description: "latent heat" }} note="latent" difference />
              )}
            </tr>
          </thead>
          <tbody>
            {rows.map((row) =>
              row.fails ? (
                <tr>
                  <ValueCell value={shown(row.at, given.unit)} places={placesAt(0)} />
                  <td colSpan={2 * outputs.length + 2} class="note">
                    no saturated state
                  </td>
                </tr>
              ) : (
                <tr>
                  {numbers(row).map((one, column) => (
                    <ValueCell value={one} places={placesAt(column)} />
                  ))}
                </tr>
              ),
            )}
          </tbody>
        </ScrolledTable>
      )}
    </CsvPanel>
  );
}
