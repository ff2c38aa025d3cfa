// SPDX-License-Identifier: MIT
// Parameter texts that somebody brings along.
import { change, getState } from "../../store";

/** Parameter files have less than a tenth of it, and a browser's text field gets slow with much more. */
export const largestText = 100_000;

/** Shows in the editor why a text was not taken. */
const refuse = (what: string) => change({ view: "fluids", draft: { ...getState().draft, problem: `${what}.` } });

const refuseSize = (what: string) => refuse(`${what} is larger than any parameter file`);

/** Opens a text in the editor of own fluids. */
export function edit(name: string, text: string): void {
  change({ view: "fluids", draft: { name, text, problem: "" } });
}

/** Opens a file in the editor. */
export async function takeFile(file: File): Promise<void> {
  if (file.size > largestText) {
    refuseSize(`The file ${file.name}`);
    return;
  }
  try {
    edit(file.name.replace(/\.[^.]*$/, ""), await file.text());
  } catch {
    refuse(`The file ${file.name} cannot be read`);
  }
}

/** Lets a field take what is pasted or dropped into it, unless it is too large. */
export function guardSize(event: ClipboardEvent | DragEvent): void {
  const data = "clipboardData" in event ? event.clipboardData : event.dataTransfer;
  if ((data?.getData("text/plain").length ?? 0) <= largestText) return;
  event.preventDefault();
  refuseSize("The text");
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
    else if (text && text.length > largestText) refuseSize("The text");
    else if (text && getState().view === "fluids") edit("", text);
  });
}
