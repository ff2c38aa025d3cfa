// SPDX-License-Identifier: MIT
// Open fluids. The page opens one again only if it has not been asked for since many others were.
import { LibraryError, type Fluid, type Options } from "../core/library";
import { library } from "./library";
import { getState, ownPrefix, useStore } from "./store";

/** A fluid, or why there is none. */
export interface Opened {
  readonly fluid?: Fluid;
  readonly problem?: LibraryError;
}

const mostOpen = 40;
const opened = new Map<string, Opened>();

/** The text of an own fluid. */
export function ownText(fluid: string): string | undefined {
  const name = fluid.slice(ownPrefix.length);
  return getState().own.find((one) => one.name === name)?.text;
}

function open(fluid: string, text: string | undefined, options: Options): Opened {
  try {
    if (text !== undefined) return { fluid: library.openText(text, options) };
    if (!fluid.startsWith(ownPrefix)) return { fluid: library.open(fluid, options) };
    const name = fluid.slice(ownPrefix.length);
    return { problem: new LibraryError(`The text of the own fluid "${name}" is not in this page; open it in Fluids.`) };
  } catch (problem) {
    if (problem instanceof LibraryError) return { problem };
    throw problem;
  }
}

/** Opens a fluid of the catalogue or an own one ("own:NAME"). Nobody but this module closes it. */
export function openFluid(fluid: string, options: Options = {}): Opened {
  const text = fluid.startsWith(ownPrefix) ? ownText(fluid) : undefined;
  const key = JSON.stringify([fluid, text, Object.entries(options).filter(([, value]) => value)]);
  const result = opened.get(key) ?? open(fluid, text, options);
  opened.delete(key);
  opened.set(key, result);
  for (const [oldest, one] of opened) {
    if (opened.size <= mostOpen) break;
    opened.delete(oldest);
    one.fluid?.close();
  }
  return result;
}

/** The page's fluid with the page's options. */
export function useFluid(): Opened {
  const fluid = useStore((state) => state.fluid);
  const options = useStore((state) => state.options);
  useStore((state) => state.own);
  return openFluid(fluid, options);
}
