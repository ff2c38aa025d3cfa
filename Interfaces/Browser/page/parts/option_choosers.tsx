// SPDX-License-Identifier: MIT
// The options of an opening, from the library's list of them.
import type { Options } from "../../core/library";
import { library } from "../library";
import { openFluid, useFluid } from "../opening";
import { change, getState, useStore } from "../store";
import { Select, Switch } from "./choice";

const labels: Record<string, string> = {
  model: "Equation of state",
  states: "States",
  phase: "Phase",
  volume: "Volume",
  reference: "Zero of h and s",
};
// Their first values are what holds without them; the other options hold only if they are given.
const withStandard = new Set(["states", "volume", "reference"]);

function setOption(name: string, value: string): void {
  const options: Record<string, string | undefined> = { ...getState().options, [name]: value || undefined };
  // Metastable states need a phase, and others have none.
  if (name === "states") options.phase = value === "metastable" ? "liquid" : undefined;
  change({ options: Object.fromEntries(Object.entries(options).filter(([, one]) => one)) as Options });
}

export const modelName = (model: string) =>
  library.list("models").find((row) => row.name === model)?.description ?? model;

export function ModelChooser() {
  const fluid = useStore((state) => state.fluid);
  const chosen = useStore((state) => state.options.model ?? "");
  useFluid();
  const standard = openFluid(fluid).fluid?.text("model");
  return (
    <Select
      label={labels.model ?? ""}
      value={chosen}
      choose={(value) => setOption("model", value)}
      title={library.adviceOnModel(chosen || (standard ?? ""))}
      choices={[
        { value: "", text: standard ? `of the fluid: ${modelName(standard)}` : "of the fluid" },
        ...library.list("models").map((row) => ({ value: row.name, text: `${row.name}: ${row.description}` })),
      ]}
    />
  );
}

/** All options but the model. */
export function OptionChoosers() {
  const options = useStore((state) => state.options);
  const rows = library
    .list("options")
    .filter((row) => row.unit.includes("|") && row.name !== "model")
    .filter((row) => row.name !== "phase" || options.states === "metastable");
  const inUse = rows.filter((row) => options[row.name]).map((row) => options[row.name]);
  return (
    <details class="options">
      <summary>Options{inUse.length > 0 && `: ${inUse.join(", ")}`}</summary>
      <div class="fields">
        {rows.map((row) => {
          const values = row.unit.split("|");
          const standard = withStandard.has(row.name) ? values[0] : undefined;
          return (
            <Select
              key={row.name}
              label={labels[row.name] ?? row.name}
              title={row.description}
              value={options[row.name] ?? standard ?? ""}
              choose={(value) => setOption(row.name, value === standard ? "" : value)}
              choices={values.map((value) => ({ value, text: value }))}
            />
          );
        })}
      </div>
    </details>
  );
}

export function UnitsChooser() {
  const units = useStore((state) => state.units);
  return (
    <Switch
      label="Units"
      value={units}
      choose={(value) => change({ units: value === "si" ? "si" : "engineering" })}
      choices={[
        { value: "engineering", text: "bar, °C" },
        { value: "si", text: "SI" },
      ]}
    />
  );
}
