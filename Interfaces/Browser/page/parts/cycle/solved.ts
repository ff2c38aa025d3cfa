// SPDX-License-Identifier: MIT
// From the text of a definition to its cycle, and to the path in a diagram.
import {
  type CycleDefinition,
  type CycleResult,
  type DiagramKind,
  type Fluid,
  LibraryError,
  type Options,
  type Polyline,
  type StateColumns,
} from "../../../core/library";
import { fileName } from "../../files";
import { library } from "../../library";
import { openFluid } from "../../opening";
import { ownPrefix } from "../../store";
import type { DrawnPath } from "../diagram/drawing";
import { type Changes, withChanges, withFluid } from "./definition";

/** What can be made of a text. */
export interface Solved {
  readonly definition?: CycleDefinition;
  readonly fluid?: Fluid;
  /** The fluid as links and files name it. */
  readonly fluidName: string;
  readonly options: Options;
  readonly result?: CycleResult;
  /** Whether sliders have changed some numbers. */
  readonly isChanged?: boolean;
  /** In place of the fluid of the text. */
  readonly replacement?: Fluid;
  readonly problem?: LibraryError;
}

/** What is made, or why it cannot be made. */
export function attempt<T>(make: () => T): T | LibraryError {
  try {
    return make();
  } catch (problem) {
    if (problem instanceof LibraryError) return problem;
    throw problem;
  }
}

/** Those changes whose keys the text has. */
export const changesOf = (definition: CycleDefinition, changes: Changes): Changes =>
  Object.fromEntries(Object.entries(changes).filter(([name]) => definition.given.some((one) => one.key.name === name)));

/** In place of the fluid of the text. */
export interface Replacement {
  readonly name: string;
  readonly options: Options;
  readonly fluid?: Fluid;
  readonly problem?: LibraryError;
}

/** Reads a text and solves its cycle. `own` are the names of own fluids; `page` is the page's fluid if it is wanted. */
export function solved(text: string, changes: Changes, own: readonly string[], page: Replacement | undefined): Solved {
  const definition = attempt(() => library.readCycle(text));
  if (definition instanceof LibraryError) return { problem: definition, fluidName: "", options: {} };
  // An own fluid is as good as one of the catalogue.
  const name = page?.name ?? (own.includes(definition.fluid) ? ownPrefix + definition.fluid : definition.fluid);
  const options = page?.options ?? definition.options;
  const { fluid, problem } = page ?? openFluid(name, options);
  const known = { definition, fluidName: name, options };
  if (!fluid) return { ...known, problem };
  const replacement = page || name !== definition.fluid ? fluid : undefined;
  const valid = changesOf(definition, changes);
  const result = attempt(() => library.cycle(text, valid, replacement));
  const all = { ...known, fluid, replacement, isChanged: Object.keys(valid).length > 0 };
  return result instanceof LibraryError ? { ...all, problem: result } : { ...all, result };
}

/** States as points of a diagram. */
function pointsOf(columns: StateColumns, kind: DiagramKind): Polyline {
  const [xs, ys] = [columns[kind.x], columns[kind.y]];
  const points = new Float64Array(2 * xs.length);
  xs.forEach((x, i) => points.set([x, ys[i]!], 2 * i));
  return points;
}

/** The path of a cycle in a diagram, with its states. */
export function pathOf(result: CycleResult, kind: DiagramKind, faded: boolean): DrawnPath {
  const at = pointsOf(result.states, kind);
  return {
    points: result.processes.map((process) => pointsOf(process.points, kind)),
    marks: result.places.map((_, i) => ({ x: at[2 * i]!, y: at[2 * i + 1]!, name: String(i + 1) })),
    faded,
  };
}

/** A definition that the command understands: own fluids are files beside it. */
export function portable(text: string, changes: Changes, solved: Solved): string {
  const { definition, fluidName: name, options, replacement } = solved;
  if (!definition) return text;
  const changed = withChanges(text, definition.given, changes);
  if (!replacement) return changed;
  return withFluid(
    changed,
    name.startsWith(ownPrefix) ? `./${fileName(name.slice(ownPrefix.length), "", "osd")}` : name,
    options,
  );
}
