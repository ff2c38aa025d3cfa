// SPDX-License-Identifier: MIT
import { useId } from "preact/hooks";
import { LibraryError, type Row } from "../../core/library";
import { outputRows } from "../outputs";
import { sentence } from "./message";

/** The outputs of a text, or what is wrong with it. */
export function readOutputs(text: string): { rows: readonly Row[]; problem: string } {
  try {
    return { rows: outputRows(text), problem: "" };
  } catch (problem) {
    if (problem instanceof LibraryError) return { rows: [], problem: sentence(problem.message) };
    throw problem;
  }
}

/** A field for names of outputs with commas between them. */
export function OutputsField({ text, write }: { text: string; write: (text: string) => void }) {
  const id = useId();
  const { problem } = readOutputs(text);
  return (
    <div class="field outputs-field">
      <label for={id}>Columns</label>
      <input
        id={id}
        type="text"
        spellcheck={false}
        autoComplete="off"
        value={text}
        aria-invalid={problem !== ""}
        aria-describedby={problem ? `${id}-said` : undefined}
        onInput={(event) => write(event.currentTarget.value)}
      />
      {problem && (
        <p class="said" id={`${id}-said`}>
          {problem}
        </p>
      )}
    </div>
  );
}
