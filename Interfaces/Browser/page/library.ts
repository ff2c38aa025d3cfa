// SPDX-License-Identifier: MIT
// The page's library. `start` must have ended before anything is drawn.
import { load, type Library } from "../core/library";

export let library: Library;

export async function start(): Promise<void> {
  library = await load();
}
