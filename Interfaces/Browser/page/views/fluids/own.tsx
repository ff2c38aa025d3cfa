// SPDX-License-Identifier: MIT
// The editor of own fluids. Their texts stay in the page.
import { useEffect, useId, useRef, useState } from "preact/hooks";
import type { CheckReport } from "../../../core/library";
import { library } from "../../library";
import { sentence } from "../../parts/message";
import { change, getState, keepOwnFluid, ownPrefix, useStore } from "../../store";
import { edit, guardSize, largestText, takeFile } from "./files";

const pause = 150;
/** The check speaks of a file. */
const file = "own.osd";
const mostLines = 300;
const longestLine = 400;

/** What is shown of a text that may be of any length. */
const cut = (text: string) => (text.length > longestLine ? `${text.slice(0, longestLine)} …` : text);

function useReport(text: string): CheckReport | undefined {
  const [report, setReport] = useState<CheckReport>();
  useEffect(() => {
    if (text.trim() === "") {
      setReport(undefined);
      return undefined;
    }
    const timer = setTimeout(() => setReport(library.check(text, file)), pause);
    return () => clearTimeout(timer);
  }, [text]);
  return report;
}

function Report({ report }: { report: CheckReport }) {
  return (
    <div class="report">
      <div role="status" class="messages">
        {report.error ? (
          <div class="problem">
            <p>{sentence(cut(report.error))}</p>
            {report.advice.map((one) => (
              <p class="advice">{sentence(cut(one))}</p>
            ))}
          </div>
        ) : (
          <p class="good">This text can be used.</p>
        )}
        {report.warnings.length > 0 && (
          <ul class="remarks" aria-label="Warnings">
            {report.warnings.slice(0, mostLines).map((one) => (
              <li>{sentence(cut(one))}</li>
            ))}
          </ul>
        )}
      </div>
      {report.lines.length > 0 && (
        <pre tabIndex={0} aria-label="What the text means">
          {report.lines.slice(0, mostLines).map(cut).join("\n")}
        </pre>
      )}
    </div>
  );
}

function OwnList() {
  const own = useStore((state) => state.own);
  const fluid = useStore((state) => state.fluid);
  if (own.length === 0) return null;
  const remove = (name: string) =>
    change({
      own: own.filter((one) => one.name !== name),
      ...(fluid === ownPrefix + name ? { fluid: "propane" } : {}),
    });
  return (
    <ul class="own-list" aria-label="Own fluids">
      {own.map((one) => (
        <li key={one.name}>
          <strong>{one.name}</strong>
          {fluid === ownPrefix + one.name ? (
            <span class="note">chosen</span>
          ) : (
            <button
              type="button"
              class="quiet"
              aria-label={`Choose ${one.name}`}
              onClick={() => change({ fluid: ownPrefix + one.name })}
            >
              Choose
            </button>
          )}
          <button type="button" class="quiet" aria-label={`Edit ${one.name}`} onClick={() => edit(one.name, one.text)}>
            Edit
          </button>
          <button type="button" class="quiet" aria-label={`Remove ${one.name}`} onClick={() => remove(one.name)}>
            Remove
          </button>
        </li>
      ))}
    </ul>
  );
}

/** The name of the fluid in a text, its first words behind the head line. */
function nameIn(text: string): string {
  const lines = text.split(/\r?\n/, 2);
  return (lines[1] ?? "").trim().slice(0, 40);
}

export function OwnFluids() {
  const id = useId();
  const draft = useStore((state) => state.draft);
  const picker = useRef<HTMLInputElement>(null);
  const report = useReport(draft.text);
  const name = draft.name.trim() || nameIn(draft.text) || "my fluid";
  const write = (what: Partial<typeof draft>) => change({ draft: { ...getState().draft, ...what } });
  const use = () => {
    keepOwnFluid({ name, text: draft.text });
    change({ fluid: ownPrefix + name });
  };
  return (
    <section class="panel own" aria-labelledby={`${id}-title`}>
      <div class="heading">
        <h2 id={`${id}-title`}>Own fluids</h2>
        <p class="note">
          Write or paste the parameters of a fluid, open their file, or drop it on the page. They stay in this page and
          are gone when it is closed, unless a link keeps them.
        </p>
      </div>
      <OwnList />
      <div class="editor">
        <div class="source">
          <div class="fields">
            <div class="field">
              <label for={`${id}-name`}>Name</label>
              <input
                id={`${id}-name`}
                type="text"
                autoComplete="off"
                placeholder={nameIn(draft.text) || "my fluid"}
                maxLength={60}
                value={draft.name}
                onInput={(event) => write({ name: event.currentTarget.value })}
              />
            </div>
            <input
              ref={picker}
              type="file"
              hidden
              accept=".osd,.txt,text/plain"
              onChange={(event) => {
                const chosen = event.currentTarget.files?.[0];
                event.currentTarget.value = "";
                if (chosen) void takeFile(chosen);
              }}
            />
            <button type="button" onClick={() => picker.current?.click()}>
              Open a file
            </button>
            <button type="button" class="primary" disabled={!report || report.error !== ""} onClick={use}>
              Use this fluid
            </button>
          </div>
          {draft.problem && (
            <p class="problem" role="alert">
              {draft.problem}
            </p>
          )}
          <label for={`${id}-text`}>Parameters</label>
          <textarea
            id={`${id}-text`}
            rows={20}
            wrap="off"
            spellcheck={false}
            autoComplete="off"
            maxLength={largestText}
            value={draft.text}
            onPaste={guardSize}
            onDrop={guardSize}
            onInput={(event) => write({ text: event.currentTarget.value, problem: "" })}
          />
        </div>
        <div>
          {report ? (
            <Report report={report} />
          ) : (
            <p class="note">
              What the text means is shown here. To begin with the parameters of a fluid of the catalogue, choose it and
              open its parameters above.
            </p>
          )}
        </div>
      </div>
    </section>
  );
}
