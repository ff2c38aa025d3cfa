// SPDX-License-Identifier: MIT
// Lines with which other programs solve the same cycle.
import { CopyButton } from "../copy_button";

/** A word that is no line of the text. */
function delimiter(text: string): string {
  let word = "END";
  while (text.split(/\r?\n/).includes(word)) word += "_";
  return word;
}

const ended = (text: string) => (text.endsWith("\n") ? text : `${text}\n`);

function shellLines(text: string): string {
  const end = delimiter(text);
  return `cat > cycle.toml <<'${end}'\n${ended(text)}${end}\nostrel cycle cycle.toml\n`;
}

/** A text as Python reads it. */
function pythonText(text: string): string {
  const isPlain = !/"""|\\|[^\t\n\x20-\x7e\u00a0-\ud7ff\ue000-\uffff]/.test(text);
  if (isPlain) return `"""\\\n${ended(text)}"""`;
  const escaped = [...ended(text)].map((letter) => {
    const code = letter.codePointAt(0) ?? 0;
    if (letter === "\n") return "\\n";
    if (letter === '"' || letter === "\\") return `\\${letter}`;
    return code < 0x20 || code > 0x7e ? `\\U${code.toString(16).padStart(8, "0")}` : letter;
  });
  return `"${escaped.join("")}"`;
}

/** `figure` is the name of the figure that is printed. */
function pythonLines(text: string, figure: string): string {
  return [
    "from pathlib import Path",
    "",
    "import ostrel",
    "",
    `Path("cycle.toml").write_text(${pythonText(text)}, encoding="utf-8")`,
    'cycle = ostrel.cycle("cycle.toml")',
    `print(cycle.${figure})`,
    "",
  ].join("\n");
}

export function Elsewhere({ text, figure, ownFluid }: { text: string; figure: string; ownFluid: boolean }) {
  return (
    <details class="panel cycle-elsewhere">
      <summary>The same cycle elsewhere</summary>
      {ownFluid && <p class="note">The text of the own fluid must be in the file that the definition names.</p>}
      {[
        { title: "Shell", lines: shellLines(text) },
        { title: "Python", lines: pythonLines(text, figure) },
      ].map(({ title, lines }) => (
        <div key={title}>
          <div class="heading">
            <h3>{title}</h3>
            <CopyButton text={() => lines} name={`Copy the lines for ${title}`} />
          </div>
          <pre tabIndex={0} aria-label={title}>
            {lines}
          </pre>
        </div>
      ))}
    </details>
  );
}
