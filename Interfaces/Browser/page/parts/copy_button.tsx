// SPDX-License-Identifier: MIT
import { useEffect, useRef, useState } from "preact/hooks";
import { csvType } from "../files";

/** Copies a text. Where a page has no clipboard, as some browsers decide for files, the old way is taken. */
export async function copy(text: string): Promise<void> {
  try {
    await navigator.clipboard.writeText(text);
  } catch {
    const field = document.createElement("textarea");
    field.value = text;
    field.className = "unseen";
    document.body.append(field);
    field.select();
    document.execCommand("copy");
    field.remove();
  }
}

/** A button that says for a moment that it has done its work. */
export function ActionButton(props: {
  label: string;
  done: string;
  act: () => void | Promise<void>;
  title?: string;
  /** What a screen reader says in place of the label. */
  name?: string;
}) {
  const [finished, setFinished] = useState(false);
  const timer = useRef<ReturnType<typeof setTimeout>>(undefined);
  useEffect(() => () => clearTimeout(timer.current), []);
  const act = async () => {
    await props.act();
    setFinished(true);
    clearTimeout(timer.current);
    timer.current = setTimeout(() => setFinished(false), 1500);
  };
  return (
    <button type="button" class="quiet" title={props.title} aria-label={props.name} onClick={() => void act()}>
      <span aria-hidden={props.name !== undefined}>{finished ? props.done : props.label}</span>
      {props.name !== undefined && (
        <span class="unseen" role="status">
          {finished ? props.done : ""}
        </span>
      )}
    </button>
  );
}

export function CopyButton({ text, label = "Copy", name }: { text: () => string; label?: string; name?: string }) {
  return <ActionButton label={label} done="Copied" name={name} act={() => copy(text())} />;
}

/** Saves a text as a file. */
export function save(name: string, type: string, text: string): void {
  const address = URL.createObjectURL(new Blob([text], { type }));
  const anchor = document.createElement("a");
  anchor.href = address;
  anchor.download = name;
  anchor.click();
  setTimeout(() => URL.revokeObjectURL(address), 10_000);
}

export function SaveButton(props: {
  file: () => string;
  type: string;
  text: () => string;
  label: string;
  name?: string;
}) {
  return (
    <ActionButton
      label={props.label}
      done="Saved"
      name={props.name}
      act={() => save(props.file(), props.type, props.text())}
    />
  );
}

/** Saves a table; `what` is "the properties". */
export function SaveCsv({ what, file, text }: { what: string; file: () => string; text: () => string }) {
  return <SaveButton label="Save CSV" name={`Save ${what} as CSV`} type={csvType} file={file} text={text} />;
}
