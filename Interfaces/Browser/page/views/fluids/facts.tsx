// SPDX-License-Identifier: MIT
// What the library knows about the page's fluid.
import { library } from "../../library";
import { useUnits } from "../../numbers";
import { useFluid } from "../../opening";
import { fileName } from "../../files";
import { CopyButton, SaveButton } from "../../parts/copy_button";
import { fluidName } from "../../parts/fluid_chooser";
import { Problem } from "../../parts/message";
import { Named, QuantityCells, ScrolledTable } from "../../parts/table";
import { change, getState, useStore } from "../../store";
import { edit } from "./files";

// These stand elsewhere: the name is the title, the model is marked in the table of models, and the others are long.
const elsewhere = new Set(["name", "model", "text", "options", "source"]);

const capital = (text: string) => text.charAt(0).toUpperCase() + text.slice(1);

function Constants() {
  const { fluid } = useFluid();
  if (!fluid) return null;
  return (
    <table class="values constants">
      <caption>Constants and limits</caption>
      <tbody>
        {library
          .list("constants")
          .map((row) => ({ row, value: fluid.constant(row.name) }))
          .filter(({ value }) => Number.isFinite(value))
          .map(({ row, value }) => (
            <tr title={row.name}>
              <th scope="row">
                <div>
                  <Named name={row.name} words={row.description} shown />
                </div>
              </th>
              <QuantityCells value={value} si={row.unit} />
            </tr>
          ))}
      </tbody>
    </table>
  );
}

function Equations({ chosen }: { chosen: string }) {
  return (
    <ScrolledTable label="Equations of state">
      <caption>Equations of state</caption>
      <tbody>
        {library.list("models").map((row) => (
          <tr class={row.name === chosen ? "chosen" : undefined}>
            <th scope="row">{row.description}</th>
            <td class="note advice">{library.adviceOnModel(row.name)}</td>
            <td>
              {row.name === chosen ? (
                "chosen"
              ) : (
                <button
                  type="button"
                  class="quiet"
                  aria-label={`Choose ${row.description}`}
                  onClick={() => change({ options: { ...getState().options, model: row.name } })}
                >
                  Choose
                </button>
              )}
            </td>
          </tr>
        ))}
      </tbody>
    </ScrolledTable>
  );
}

export function Facts() {
  const { fluid, problem } = useFluid();
  const name = useStore((state) => state.fluid);
  useUnits();
  if (!fluid) {
    return <section class="panel facts">{problem && <Problem problem={problem} />}</section>;
  }
  const text = fluid.text("text");
  const texts = library
    .list("texts")
    .filter((row) => !elsewhere.has(row.name))
    .map((row) => ({ row, text: fluid.text(row.name) }))
    .filter((one) => one.text !== "");
  return (
    <section class="panel facts" aria-labelledby="facts-title">
      <h2 id="facts-title">{fluidName(name)}</h2>
      <div class="columns">
        <dl>
          {texts.map(({ row, text: value }) => (
            <>
              <dt title={row.description}>
                {row.name === "cas" ? "CAS number" : capital(row.name.replaceAll("_", " "))}
              </dt>
              <dd>{value}</dd>
            </>
          ))}
        </dl>
        <Constants />
      </div>
      <Equations chosen={fluid.text("model")} />
      <details class="parameters">
        <summary>Parameters of the fluid</summary>
        <div class="actions">
          <button type="button" class="quiet" onClick={() => edit(`my ${fluidName(name)}`, text)}>
            Start an own fluid with these
          </button>
          <CopyButton text={() => text} name="Copy the parameters" />
          <SaveButton
            label="Save"
            name="Save the parameters"
            type="text/plain"
            file={() => fileName(fluidName(name), "", "osd")}
            text={() => text}
          />
        </div>
        <pre tabIndex={0} aria-label="Parameters of the fluid">
          {text}
        </pre>
      </details>
    </section>
  );
}
