// SPDX-License-Identifier: MIT
// The lines that give one of the numbers in other languages.
import { useState } from "preact/hooks";
import { languages, type Request } from "../../code_lines";
import { fileName } from "../../files";
import { exactText, unitText } from "../../numbers";
import { ownText } from "../../opening";
import { outputRow, shortMeaning } from "../../outputs";
import { Select } from "../../parts/choice";
import { CopyButton, SaveButton } from "../../parts/copy_button";
import { ownPrefix, useSlice, useStore } from "../../store";
import { stateSlice } from "./slice";
import type { Solution } from "./solution";

export function Elsewhere({ solution, first, second }: { solution: Solution; first: number; second: number }) {
  const [slice, set] = useSlice(stateSlice);
  const fluid = useStore((state) => state.fluid);
  const options = useStore((state) => state.options);
  const [chosen, choose] = useState(languages[0]?.name ?? "");
  const language = languages.find((one) => one.name === chosen);
  const row = outputRow(slice.output);
  if (!solution.phase || !language || !row) return null;
  const isOwn = fluid.startsWith(ownPrefix);
  const file = isOwn ? fileName(fluid.slice(ownPrefix.length), "", "osd") : "";
  const request: Request = {
    fluid: isOwn ? `./${file}` : fluid,
    isFile: isOwn,
    options,
    pair: slice.pair,
    first,
    second,
    output: row.name,
    unit: row.unit,
  };
  const value = solution.of(row.name);
  const lines = language.lines(request);
  return (
    <section class="panel elsewhere" aria-labelledby="elsewhere-title">
      <h2 id="elsewhere-title">The same number elsewhere</h2>
      <div class="fields">
        <Select
          label="Property"
          value={row.name}
          choices={solution.rows
            .filter((one) => one.name !== "phase")
            .map((one) => ({ value: one.name, text: `${one.name}: ${shortMeaning(one)}` }))}
          choose={(output) => set({ output })}
        />
        <Select
          label="Language"
          value={chosen}
          choices={languages.map((one) => ({ value: one.name, text: one.name }))}
          choose={choose}
        />
      </div>
      <div class="exact">
        <span>
          <output id="exact-value">{exactText(value) || "no value"}</output>{" "}
          <span class="unit">{unitText(row.unit)}</span>
        </span>
        <CopyButton text={() => exactText(value)} name="Copy the value with all digits" />
      </div>
      <div class="lines">
        <pre tabIndex={0} aria-label={`Lines in ${language.name}`}>
          {lines}
        </pre>
        <CopyButton text={() => lines} name={`Copy the lines in ${language.name}`} />
      </div>
      {language.note && <p class="note mono">{language.note}</p>}
      {isOwn && (
        <div class="fields">
          <p class="note">The lines read the parameters of this fluid from the file {file}.</p>
          <SaveButton label="Save the file" type="text/plain" file={() => file} text={() => ownText(fluid) ?? ""} />
        </div>
      )}
    </section>
  );
}
