// SPDX-License-Identifier: MIT
import type { LibraryError } from "../../core/library";

/** A refusal of the library: its sentence, and what would help. */
export function Problem({ problem, id }: { problem: LibraryError; id?: string }) {
  return (
    <div class="problem" id={id}>
      <p>{sentence(problem.message)}</p>
      {problem.advice.map((one) => (
        <p class="advice">{sentence(one)}</p>
      ))}
    </div>
  );
}

/** A message with a full stop, unless it has a mark of its own or ends with a quotation. */
export function sentence(text: string): string {
  const trimmed = text.trim();
  return /[.!?:"]$/.test(trimmed) || trimmed === "" ? trimmed : `${trimmed}.`;
}
