// SPDX-License-Identifier: MIT
// A panel with a table that can be saved.
import type { ComponentChildren } from "preact";
import { SaveCsv } from "./copy_button";

/** `name` is the panel's in identifiers; `saves` is the table, see SaveCsv; `actions` are more buttons. */
export function CsvPanel(props: {
  name: string;
  class?: string;
  title: string;
  saves: Parameters<typeof SaveCsv>[0];
  actions?: ComponentChildren;
  children: ComponentChildren;
}) {
  const title = `${props.name}-title`;
  return (
    <section class={`panel ${props.class ?? ""}`.trim()} aria-labelledby={title}>
      <div class="heading">
        <h2 id={title}>{props.title}</h2>
        <div class="actions">
          <SaveCsv {...props.saves} />
          {props.actions}
        </div>
      </div>
      {props.children}
    </section>
  );
}
