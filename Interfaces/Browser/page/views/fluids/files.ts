// SPDX-License-Identifier: MIT
// Parameter texts that somebody brings along.
import { change, getState } from "../../store";

/** Larger files are no parameter files. */
export const largestText = 2_000_000;

/** Opens a text in the editor of own fluids. */
export function edit(name: string, text: string): void {
  change({ view: "fluids", draft: { name, text, problem: "" } });
}

/** Opens a file in the editor. */
export async function takeFile(file: File): Promise<void> {
  const refuse = (why: string) =>
    change({ view: "fluids", draft: { ...getState().draft, problem: `The file ${file.name} ${why}.` } });
  if (file.size > largestText) {
    refuse("is larger than any parameter file");
    return;
  }
  try {
    edit(file.name.replace(/\.[^.]*$/, ""), await file.text());
  } catch {
    refuse("cannot be read");
  }
}

/** Takes files and texts that are dropped anywhere on the page, which the browser would show in its place otherwise. */
export function takeDrops(): void {
  const isField = (event: Event) =>
    event.target instanceof HTMLInputElement || event.target instanceof HTMLTextAreaElement;
  addEventListener("dragover", (event) => {
    if (!isField(event) || event.dataTransfer?.types.includes("Files")) event.preventDefault();
  });
  addEventListener("drop", (event) => {
    const file = event.dataTransfer?.files[0];
    const text = event.dataTransfer?.getData("text/plain");
    if (isField(event) && !file) return;
    event.preventDefault();
    if (file) void takeFile(file);
    else if (text && getState().view === "fluids") edit("", text);
  });
}
