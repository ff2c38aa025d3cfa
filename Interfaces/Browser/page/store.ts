// SPDX-License-Identifier: MIT
// The state of the page, and its picture in the link. Every view is a function of it.
//
// The link has what differs from the state at the start: #view=diagrams&fluid=water&options.model=pr&state.pair=ph
// Each view keeps its part in a slice. The texts of own fluids are in a link only if somebody asks for them.
import { useLayoutEffect, useReducer, useRef } from "preact/hooks";
import type { Options, UnitSystem } from "../core/library";

export const views = ["state", "diagrams", "cycles", "fluids"] as const;
export type View = (typeof views)[number];

/** A fluid whose parameters somebody brought along. */
export interface OwnFluid {
  readonly name: string;
  readonly text: string;
}

/** An own fluid that is being written. */
export interface Draft extends OwnFluid {
  /** What was wrong with its file. */
  readonly problem: string;
}

/** What links can have: texts, numbers, yes or no, and arrays and objects of these. */
export type Value = string | number | boolean | readonly Value[] | { readonly [key: string]: Value };
export type Values = { readonly [key: string]: Value };

export interface PageState {
  readonly view: View;
  /** A name that the library opens, or "own:" and the name of an own fluid. */
  readonly fluid: string;
  readonly options: Options;
  readonly units: UnitSystem;
  readonly own: readonly OwnFluid[];
  /** What somebody writes as an own fluid; no link has it. */
  readonly draft: Draft;
  /** The parts of the views, by name. */
  readonly slices: { readonly [name: string]: Values };
}

/** The part of the state that belongs to one view. */
export interface Slice<T> {
  readonly name: string;
  readonly defaults: T;
  /** Whether a link's value of a key can be taken; its type has been compared with that of the default. */
  readonly accept: (key: string, value: Value) => boolean;
}

export const ownPrefix = "own:";

const atStart: PageState = {
  view: "state",
  fluid: "propane",
  options: {},
  units: "engineering",
  own: [],
  draft: { name: "", text: "", problem: "" },
  slices: {},
};

let state: PageState = atStart;
const slices = new Map<string, Slice<Values>>();
const listeners = new Set<() => void>();

/** Declares a slice. Its defaults are what links leave out. Values must be replaced, never changed in place. */
export function defineSlice<T>(
  name: string,
  defaults: T,
  accept: (key: string, value: Value) => boolean = () => true,
): Slice<T> {
  const slice: Slice<T> = { name, defaults, accept };
  slices.set(name, slice as unknown as Slice<Values>);
  return slice;
}

export function getState(): PageState {
  return state;
}

export function getSlice<T>(slice: Slice<T>): T {
  return (state.slices[slice.name] as T | undefined) ?? slice.defaults;
}

export function change(what: Partial<PageState>): void {
  const before = state;
  state = { ...state, ...what };
  for (const listener of [...listeners]) listener();
  writeLinkSoon(before.view !== state.view);
}

export function changeSlice<T>(slice: Slice<T>, what: Partial<T>): void {
  const values = { ...getSlice(slice), ...what } as unknown as Values;
  change({ slices: { ...state.slices, [slice.name]: values } });
}

export function subscribe(listener: () => void): () => void {
  listeners.add(listener);
  return () => listeners.delete(listener);
}

/** A part of the state; the component is drawn again when it changes. */
export function useStore<T>(select: (state: PageState) => T): T {
  const [, drawAgain] = useReducer((count: number) => count + 1, 0);
  const value = select(state);
  const latest = useRef({ select, value });
  latest.current = { select, value };
  useLayoutEffect(() => {
    const compare = () => {
      if (!Object.is(latest.current.select(state), latest.current.value)) drawAgain(undefined);
    };
    compare();
    return subscribe(compare);
  }, []);
  return value;
}

export function useSlice<T>(slice: Slice<T>): readonly [T, (what: Partial<T>) => void] {
  return [useStore(() => getSlice(slice)), (what) => changeSlice(slice, what)];
}

// ---- Links ---------------------------------------------------------------------------------------------------------

const same = (a: Value | undefined, b: Value | undefined) => JSON.stringify(a) === JSON.stringify(b);

function write(value: Value): string {
  return typeof value === "string" ? value : JSON.stringify(value);
}

/** The value that a text stands for, if it is of the same kind as the default. */
function read(text: string, like: Value): Value | undefined {
  if (typeof like === "string") return text;
  try {
    const value = JSON.parse(text) as Value;
    return typeof value === typeof like && Array.isArray(value) === Array.isArray(like) && value !== null
      ? value
      : undefined;
  } catch {
    return undefined;
  }
}

function parameters(): URLSearchParams {
  const result = new URLSearchParams();
  if (state.view !== atStart.view) result.set("view", state.view);
  result.set("fluid", state.fluid);
  if (state.units !== atStart.units) result.set("units", state.units);
  for (const [key, value] of Object.entries(state.options)) if (value) result.set(`options.${key}`, value);
  for (const [name, slice] of slices) {
    const values = state.slices[name] ?? {};
    for (const [key, standard] of Object.entries(slice.defaults)) {
      const value = values[key];
      if (value !== undefined && !same(value, standard)) result.set(`${name}.${key}`, write(value));
    }
  }
  return result;
}

function stateOf(given: URLSearchParams): PageState {
  const options: Record<string, string> = {};
  const parts: Record<string, Record<string, Value>> = {};
  for (const [name, text] of given) {
    const dot = name.indexOf(".");
    const [head, key] = [name.slice(0, dot), name.slice(dot + 1)];
    const slice = slices.get(head);
    if (head === "options" && key !== "folder") options[key] = text;
    else if (slice && Object.hasOwn(slice.defaults, key)) {
      const value = read(text, slice.defaults[key] as Value);
      if (value !== undefined && slice.accept(key, value)) (parts[head] ??= { ...slice.defaults })[key] = value;
    }
  }
  return {
    ...atStart,
    view: views.find((view) => view === given.get("view")) ?? atStart.view,
    fluid: given.get("fluid") || atStart.fluid,
    units: given.get("units") === "si" ? "si" : atStart.units,
    own: state.own,
    draft: state.draft,
    options,
    slices: parts,
  };
}

// Browsers refuse more than some changes of the address in a second.
const pause = 250;
let timer: ReturnType<typeof setTimeout> | undefined;
let newEntry = false;

function writeLinkSoon(asNewEntry: boolean): void {
  newEntry ||= asNewEntry;
  timer ??= setTimeout(writeLink, pause);
}

function writeLink(): void {
  clearTimeout(timer);
  timer = undefined;
  const hash = `#${parameters()}`;
  if (hash !== location.hash) {
    if (newEntry) history.pushState(null, "", hash);
    else history.replaceState(null, "", hash);
  }
  newEntry = false;
}

async function through(transform: GenericTransformStream, bytes: Uint8Array, limit: number): Promise<Uint8Array> {
  const reader = new Blob([bytes as Uint8Array<ArrayBuffer>]).stream().pipeThrough(transform).getReader();
  const parts: Uint8Array[] = [];
  for (let size = 0; ; ) {
    const { done, value } = await reader.read();
    if (done) break;
    size += value.length;
    if (size > limit) throw new RangeError("The own fluids of the link are too large.");
    parts.push(value);
  }
  return new Uint8Array(await new Blob(parts as Uint8Array<ArrayBuffer>[]).arrayBuffer());
}

/** Own fluids of a link may have so many bytes together. */
const ownLimit = 400_000;

async function packed(own: readonly OwnFluid[]): Promise<string> {
  const text = JSON.stringify(own.map((one) => [one.name, one.text]));
  const bytes = await through(new CompressionStream("deflate-raw"), new TextEncoder().encode(text), ownLimit);
  let letters = "";
  for (const byte of bytes) letters += String.fromCharCode(byte);
  return btoa(letters).replaceAll("+", "-").replaceAll("/", "_").replaceAll("=", "");
}

async function unpacked(text: string): Promise<OwnFluid[]> {
  const letters = atob(text.replaceAll("-", "+").replaceAll("_", "/"));
  const bytes = Uint8Array.from(letters, (letter) => letter.charCodeAt(0));
  const read = await through(new DecompressionStream("deflate-raw"), bytes, ownLimit);
  const pairs = JSON.parse(new TextDecoder().decode(read)) as unknown;
  if (!Array.isArray(pairs)) return [];
  return pairs
    .filter((pair): pair is [string, string] => Array.isArray(pair) && pair.every((one) => typeof one === "string"))
    .map(([name, text]) => ({ name, text }));
}

/** A link that restores the page, with the texts of own fluids if they are wanted. */
export async function link(withOwnFluids: boolean): Promise<string> {
  const result = parameters();
  if (withOwnFluids && state.own.length > 0) result.set("own", await packed(state.own));
  return `${location.href.split("#")[0]}#${result}`;
}

/** Keeps an own fluid, in place of one of the same name. */
export function keepOwnFluid(one: OwnFluid): void {
  const others = state.own.filter((other) => other.name !== one.name);
  change({ own: [...others, one] });
}

async function readLink(): Promise<void> {
  const given = new URLSearchParams(location.hash.slice(1));
  state = stateOf(given);
  const own = given.get("own");
  if (own) {
    const found = await unpacked(own).catch(() => []);
    const names = new Set(found.map((one) => one.name));
    state = { ...state, own: [...state.own.filter((one) => !names.has(one.name)), ...found] };
  }
  for (const listener of [...listeners]) listener();
}

/** Takes the state of the link, now and whenever the link changes. */
export async function startStore(): Promise<void> {
  addEventListener("hashchange", () => void readLink());
  await readLink();
}
