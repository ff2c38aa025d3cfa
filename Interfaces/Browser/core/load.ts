// SPDX-License-Identifier: MIT
// The library on the WebAssembly module.
import { LibraryError } from "./library";
import type {
  CheckReport,
  CycleDefinition,
  CycleFigure,
  CycleKey,
  CycleResult,
  Diagram,
  DiagramKind,
  DiagramSettings,
  Evaluation,
  Fluid,
  GivenValue,
  Letter,
  Library,
  ListKind,
  Match,
  NozzleResult,
  Options,
  Outputs,
  PropertyText,
  Remark,
  Row,
  Saturation,
  StateColumns,
  Unit,
  Units,
  UnitSystem,
} from "./library";

/** An address in the module's memory. */
type Address = number;

/** The module as emscripten's script makes it: the exports of binding.cpp, and its files. */
interface Core {
  readonly HEAPU8: Uint8Array;
  readonly HEAP32: Int32Array;
  readonly HEAPF64: Float64Array;
  readonly FS: {
    mkdir(path: string): void;
    chdir(path: string): void;
    writeFile(path: string, bytes: Uint8Array, options: { canOwn: boolean }): void;
  };
  _malloc(bytes: number): Address;
  _free(address: Address): void;
  _ostrel_fluid_evaluate(
    handle: Address,
    inputs: Address,
    outputs: Address,
    count: number,
    first: Address,
    second: Address,
    values: Address,
    status: Address,
  ): number;
  _ostrel_fluid_value(
    handle: Address,
    inputs: Address,
    first: number,
    second: number,
    output: Address,
    status: Address,
  ): number;
  _ostrel_fluid_saturation(
    handle: Address,
    input: Address,
    outputs: Address,
    count: number,
    at: Address,
    liquid: Address,
    vapor: Address,
    status: Address,
  ): number;
  _ostrel_fluid_constant(handle: Address, name: Address): number;
  _ostrel_fluid_text(handle: Address, name: Address): Address;
  _ostrel_last_message(): Address;
  _browser_numbers(): Address;
  _browser_open(name: Address, options: Address): Address;
  _browser_open_text(text: Address, options: Address): Address;
  _browser_close(fluid: Address): void;
  _browser_find(words: Address): Address;
  _browser_list(kind: Address): Address;
  _browser_tables(): Address;
  _browser_unit(si: Address): Address;
  _browser_parse(text: Address, si: Address, difference: boolean, range: boolean): Address;
  _browser_remarks(
    fluid: Address,
    outputs: Address,
    inputs: Address,
    t: number,
    p: number,
    phase: number,
  ): Address;
  _browser_check(text: Address, size: number, name: Address): Address;
  _browser_curves(
    fluid: Address,
    kind: Address,
    ranges: Address,
    families: Address,
    si: boolean,
    lines: Address,
    count: number,
  ): Address;
  _browser_read_cycle(text: Address): Address;
  _browser_cycle(text: Address, names: Address, values: Address, fluid: Address): Address;
  _browser_nozzle(
    fluid: Address,
    inputs: Address,
    first: number,
    second: number,
    pOutlet: number,
    intervals: number,
  ): Address;
}

interface Settings {
  instantiateWasm(
    imports: WebAssembly.Imports,
    receive: (instance: WebAssembly.Instance, module: WebAssembly.Module) => void,
  ): object;
}

declare global {
  /** What the script library.js leaves: both parts deflated, in base64. */
  var ostrel_parts: { readonly wasm: string; readonly catalogue: string };
  var ostrel_core: (settings: Settings) => Promise<Core>;
}

/** The place of numbers in the array beside an answer, and their count. */
type Place = readonly [begin: number, count: number];
type Columns = Readonly<Record<keyof StateColumns, Place>>;

interface Refusal {
  readonly error: string;
  readonly status: number;
  readonly advice: readonly string[];
  readonly line: number;
}

interface Tables {
  readonly version: string;
  readonly units: readonly Unit[];
  readonly properties: readonly PropertyText[];
  readonly diagramKinds: readonly DiagramKind[];
  readonly cycleKeys: readonly CycleKey[];
  readonly cycleFigures: readonly Omit<CycleFigure, "value">[];
  readonly advice: Readonly<Record<string, string>>;
  readonly phases: readonly string[];
}

const ok = 0;
const refusedCall = 10; // statuses from here on belong to a call

const utf8 = { encode: new TextEncoder(), decode: new TextDecoder() };

/** The bytes of a part of library.js. */
async function unpacked(base64: string): Promise<Uint8Array<ArrayBuffer>> {
  const text = atob(base64);
  const bytes = new Uint8Array(text.length);
  for (let i = 0; i < text.length; ++i) bytes[i] = text.charCodeAt(i);
  const stream = new Blob([bytes]).stream().pipeThrough(new DecompressionStream("deflate"));
  return new Uint8Array(await new Response(stream).arrayBuffer());
}

/** The calls of the module, with texts and arrays in its memory. */
class Calls {
  /** What the current call has allocated. */
  private allocated: Address[] = [];

  constructor(readonly core: Core) {}

  /** Gives back what `call` allocates. */
  private during<Result>(call: () => Result): Result {
    const outer = this.allocated;
    this.allocated = [];
    try {
      return call();
    } finally {
      for (const address of this.allocated) this.core._free(address);
      this.allocated = outer;
    }
  }
  bytes(count: number): Address {
    const address = this.core._malloc(Math.max(count, 8));
    if (address === 0) throw new LibraryError("the page has no memory left", 13);
    this.allocated.push(address);
    return address;
  }
  text(text: string): Address {
    const encoded = utf8.encode.encode(text);
    const address = this.bytes(encoded.length + 1);
    this.core.HEAPU8.set(encoded, address);
    this.core.HEAPU8[address + encoded.length] = 0;
    return address;
  }
  array(values: ArrayLike<number>): Address {
    const address = this.bytes(8 * values.length);
    this.core.HEAPF64.set(values, address / 8);
    return address;
  }
  textAt(address: Address): string {
    const heap = this.core.HEAPU8;
    return utf8.decode.decode(heap.subarray(address, heap.indexOf(0, address)));
  }
  doublesAt(address: Address, count: number): Float64Array {
    return this.core.HEAPF64.slice(address / 8, address / 8 + count);
  }
  statusesAt(address: Address, count: number): Int32Array {
    return this.core.HEAP32.slice(address / 4, address / 4 + count);
  }
  message(): string {
    return this.textAt(this.core._ostrel_last_message());
  }

  /** What a call answers; throws a refusal. */
  answer<Answer>(call: () => Address): Answer {
    return this.during(() => {
      const found = JSON.parse(this.textAt(call())) as Answer | Refusal;
      if (found !== null && typeof found === "object" && "error" in found && "status" in found)
        throw new LibraryError(found.error, found.status, found.advice, found.line);
      return found as Answer;
    });
  }
  /** The same, with arrays. `make` gets the function that copies one. */
  answerWithNumbers<Answer, Result>(
    call: () => Address,
    make: (answer: Answer, numbers: (place: Place) => Float64Array) => Result,
  ): Result {
    const answer = this.answer<Answer>(call);
    const address = this.core._browser_numbers();
    return make(answer, ([begin, count]) => this.doublesAt(address + 8 * begin, count));
  }
  /** A call that answers with arrays only: `call` returns its status. */
  evaluation<Result>(call: () => number, make: (message: { message?: string }) => Result): Result {
    return this.during(() => {
      const status = call();
      if (status >= refusedCall) throw new LibraryError(this.message(), status);
      return make(status === ok ? {} : { message: this.message() });
    });
  }
  direct<Result>(call: () => Result): Result {
    return this.during(call);
  }
}

function withoutNul(text: string, what: string): string {
  if (text.includes("\0")) throw new LibraryError(`${what} has a NUL; only texts are understood`, refusedCall);
  return text;
}

function namesOf(outputs: Outputs): readonly string[] {
  return typeof outputs === "string" ? outputs.split(",") : outputs;
}

function optionsText(options: Options = {}): string {
  return withoutNul(
    Object.entries(options)
      .filter(([, value]) => value !== undefined && value !== "")
      .map(([key, value]) => `${key}=${value}`)
      .join("; "),
    "the options",
  );
}

class OpenFluid implements Fluid {
  private readonly handle: Address;
  private object: Address;

  constructor(
    private readonly calls: Calls,
    opened: { readonly fluid: Address; readonly handle: Address },
  ) {
    this.object = opened.fluid;
    this.handle = opened.handle;
  }

  /** The address for calls of studies. */
  get address(): Address {
    if (this.object === 0) throw new LibraryError("the fluid has been closed", refusedCall);
    return this.object;
  }
  private get open(): Address {
    return this.address === 0 ? 0 : this.handle;
  }

  evaluate(inputs: string, outputs: Outputs, first: Float64Array, second: Float64Array): Evaluation {
    if (first.length !== second.length)
      throw new LibraryError(`there are ${first.length} first and ${second.length} second inputs`, refusedCall);
    return this.states(["values"], outputs, first.length, (core, calls, names, [values], status) =>
      core._ostrel_fluid_evaluate(
        this.open,
        calls.text(inputs),
        names,
        first.length,
        calls.array(first),
        calls.array(second),
        values!,
        status,
      ),
    );
  }
  value(inputs: string, first: number, second: number, output: string): number {
    const { calls, open } = this;
    return calls.direct(() =>
      calls.core._ostrel_fluid_value(open, calls.text(inputs), first, second, calls.text(output), 0),
    );
  }
  saturation(input: "t" | "p", outputs: Outputs, at: Float64Array): Saturation {
    return this.states(["liquid", "vapor"], outputs, at.length, (core, calls, names, [liquid, vapor], status) =>
      core._ostrel_fluid_saturation(
        this.open,
        calls.text(input),
        names,
        at.length,
        calls.array(at),
        liquid!,
        vapor!,
        status,
      ),
    );
  }
  /** Arrays of that kind with the outputs of `count` states, which `call` fills with their statuses. */
  private states<Kind extends string>(
    kinds: readonly Kind[],
    outputs: Outputs,
    count: number,
    call: (core: Core, calls: Calls, names: Address, arrays: readonly Address[], status: Address) => number,
  ): Record<Kind, Float64Array> & { status: Int32Array; message?: string } {
    const { calls } = this;
    const names = namesOf(outputs);
    const size = count * names.length;
    let arrays: readonly Address[];
    let status: Address;
    return calls.evaluation(
      () => {
        arrays = kinds.map(() => calls.bytes(8 * size));
        status = calls.bytes(4 * count);
        return call(calls.core, calls, calls.text(names.join(",")), arrays, status);
      },
      (message) => ({
        ...(Object.fromEntries(kinds.map((kind, i) => [kind, calls.doublesAt(arrays[i]!, size)])) as Record<
          Kind,
          Float64Array
        >),
        status: calls.statusesAt(status, count),
        ...message,
      }),
    );
  }
  constant(name: string): number {
    const { calls, open } = this;
    return calls.direct(() => calls.core._ostrel_fluid_constant(open, calls.text(name)));
  }
  text(name: string): string {
    const { calls, open } = this;
    return calls.direct(() => {
      const found = calls.core._ostrel_fluid_text(open, calls.text(name));
      return found === 0 ? "" : calls.textAt(found);
    });
  }
  remarks(outputs: Outputs, inputs: string, t: number, p: number, phase: number): readonly Remark[] {
    const { calls, address } = this;
    return calls.answer<readonly Remark[]>(() =>
      calls.core._browser_remarks(
        address,
        calls.text(namesOf(outputs).join("\n").toLowerCase()),
        calls.text(inputs),
        t,
        p,
        phase,
      ),
    );
  }
  close(): void {
    if (this.object !== 0) this.calls.core._browser_close(this.object);
    this.object = 0;
  }
}

/** The module's address of a fluid that this library has opened; 0 for none. */
function addressOf(fluid: Fluid | undefined): Address {
  if (fluid === undefined) return 0;
  if (!(fluid instanceof OpenFluid)) throw new LibraryError("the fluid was not opened by this library", refusedCall);
  return fluid.address;
}

class AllUnits implements Units {
  private readonly shownOf = new Map<string, { quantity: string } & Record<UnitSystem, Unit>>();

  constructor(
    private readonly calls: Calls,
    readonly all: readonly Unit[],
  ) {}

  private about(si: string): { quantity: string } & Record<UnitSystem, Unit> {
    let found = this.shownOf.get(si);
    if (found === undefined) {
      found = this.calls.answer<{ quantity: string } & Record<UnitSystem, Unit>>(() =>
        this.calls.core._browser_unit(this.calls.text(si)),
      );
      this.shownOf.set(si, found);
    }
    return found;
  }
  shown(si: string, system: UnitSystem, difference = false): Unit {
    const unit = this.about(si)[system];
    return difference && unit.offset !== 0 ? this.about(si).si : unit;
  }
  of(si: string): readonly Unit[] {
    const found = this.all.filter((unit) => unit.si === si);
    return found.length > 0 ? found : [{ name: si, si, factor: 1, offset: 0 }];
  }
  to(value: number, unit: Unit): number {
    return (value - unit.offset) / unit.factor;
  }
  from(value: number, unit: Unit): number {
    return value * unit.factor + unit.offset;
  }
  parse(text: string, si: string, difference = false): number {
    const { calls } = this;
    const found = calls.answer<{ value: number | null }>(() =>
      calls.core._browser_parse(calls.text(withoutNul(text, "the value")), calls.text(si), difference, false),
    );
    return found.value ?? NaN;
  }
  parseRange(text: string, si: string, difference = false): Float64Array {
    const { calls } = this;
    return calls.answerWithNumbers<{ values: Place }, Float64Array>(
      () => calls.core._browser_parse(calls.text(withoutNul(text, "the range")), calls.text(si), difference, true),
      (answer, numbers) => numbers(answer.values),
    );
  }
  quantity(si: string): string {
    return this.about(si).quantity;
  }
}

const columnNames = ["t", "p", "v", "h", "s", "q", "d"] as const;

function columnsOf(columns: Columns, numbers: (place: Place) => Float64Array): StateColumns {
  return Object.fromEntries(columnNames.map((name) => [name, numbers(columns[name])])) as StateColumns;
}

/** The offset in a text of a line and of a character in it, both from 1. A character may take two places. */
function offsetIn(text: string, line: number, column: number): number {
  let offset = 0;
  for (let i = 1; i < line; ++i) offset = text.indexOf("\n", offset) + 1;
  for (let i = 1; i < column; ++i) offset += (text.codePointAt(offset) ?? 0) > 0xffff ? 2 : 1;
  return offset;
}

interface ReadDefinition {
  readonly kind: "rankine" | "compression";
  readonly fluid: string;
  readonly options: Options;
  readonly given: readonly {
    readonly key: string;
    readonly value: number;
    readonly place: readonly [number, number, number, number];
  }[];
}
interface SolvedCycle extends ReadDefinition {
  readonly places: readonly string[];
  readonly states: Columns;
  readonly processes: readonly {
    readonly name: string;
    readonly from: number;
    readonly to: number;
    readonly points: Columns;
  }[];
  readonly figures: Place;
}
type DrawnDiagram = Omit<Diagram, "kind" | "dome" | "lines"> & {
  readonly dome: Place;
  readonly lines: readonly { readonly what: Letter; readonly value: number; readonly pieces: readonly Place[] }[];
};
type ExpandedNozzle = Omit<NozzleResult, "states" | "flow"> & {
  readonly states: Columns;
  readonly flow: Readonly<Record<keyof NozzleResult["flow"], Place>>;
};

class LoadedLibrary implements Library {
  readonly version: string;
  readonly units: Units;
  readonly properties: Readonly<Record<Letter, PropertyText>>;
  readonly diagramKinds: readonly DiagramKind[];
  readonly cycleKeys: readonly CycleKey[];
  private readonly tables: Tables;
  private readonly letters: readonly Letter[];
  private readonly lists = new Map<ListKind, readonly Row[]>();

  constructor(private readonly calls: Calls) {
    const tables = calls.answer<Tables>(() => calls.core._browser_tables());
    this.tables = tables;
    this.version = tables.version;
    this.units = new AllUnits(calls, tables.units);
    this.letters = tables.properties.map((property) => property.letter);
    this.properties = Object.fromEntries(
      tables.properties.map((property) => [property.letter, property]),
    ) as Record<Letter, PropertyText>;
    this.diagramKinds = tables.diagramKinds;
    this.cycleKeys = tables.cycleKeys;
  }

  get memory(): number {
    return this.calls.core.HEAPU8.length;
  }
  list(kind: ListKind): readonly Row[] {
    let rows = this.lists.get(kind);
    if (rows === undefined) {
      rows = this.calls.answer<readonly Row[]>(() => this.calls.core._browser_list(this.calls.text(kind)));
      this.lists.set(kind, rows);
    }
    return rows;
  }
  find(words: string): readonly Match[] {
    const { calls } = this;
    return calls
      .answer<readonly (readonly [string, string])[]>(() => calls.core._browser_find(calls.text(words)))
      .map(([file, name]) => ({ file, name }));
  }
  open(name: string, options?: Options): Fluid {
    const { calls } = this;
    return new OpenFluid(
      calls,
      calls.answer(() =>
        calls.core._browser_open(calls.text(withoutNul(name, "the name")), calls.text(optionsText(options))),
      ),
    );
  }
  openText(text: string, options?: Options): Fluid {
    const { calls } = this;
    return new OpenFluid(
      calls,
      calls.answer(() =>
        calls.core._browser_open_text(calls.text(withoutNul(text, "the text")), calls.text(optionsText(options))),
      ),
    );
  }
  check(text: string, name = "own.osd"): CheckReport {
    const { calls } = this;
    const path = name.replace(/[/\0]/g, "_") || "own.osd";
    return calls.answer<CheckReport>(() =>
      calls.core._browser_check(calls.text(text), utf8.encode.encode(text).length, calls.text(path)),
    );
  }
  phaseName(phase: number): string {
    return this.tables.phases[phase] ?? "";
  }
  adviceOnModel(model: string): string {
    return this.tables.advice[model] ?? "";
  }

  curves(fluid: Fluid, kind: string, settings: DiagramSettings = {}): Diagram {
    const { calls } = this;
    const units = settings.units ?? "engineering";
    const lines = this.letters.flatMap((letter, place) =>
      (settings.values?.[letter] ?? []).flatMap((value) => [place, value]),
    );
    return calls.answerWithNumbers<DrawnDiagram, Diagram>(
      () =>
        calls.core._browser_curves(
          addressOf(fluid),
          calls.text(kind),
          calls.array([...(settings.x ?? [NaN, NaN]), ...(settings.y ?? [NaN, NaN])]),
          settings.families === undefined ? 0 : calls.text(settings.families),
          units === "si",
          calls.array(lines),
          lines.length / 2,
        ),
      (drawn, numbers) => ({
        ...drawn,
        kind: this.diagramKinds.find((one) => one.name === kind)!,
        dome: numbers(drawn.dome),
        lines: drawn.lines.map((line) => ({
          ...line,
          label: this.labelOf(line.what, line.value, units),
          pieces: line.pieces.map(numbers),
        })),
      }),
    );
  }
  private labelOf(letter: Letter, value: number, system: UnitSystem): string {
    const unit = this.units.shown(this.properties[letter].si, system);
    const number = String(Number(this.units.to(value, unit).toPrecision(6)));
    return unit.name === "1" ? `${letter} = ${number}` : `${number} ${unit.name}`;
  }

  private definitionOf(text: string, read: ReadDefinition): CycleDefinition {
    return {
      kind: read.kind,
      fluid: read.fluid,
      options: read.options,
      given: read.given.map(
        ({ key, value, place }): GivenValue => ({
          key: this.cycleKeys.find((one) => one.name === key)!,
          value,
          begin: offsetIn(text, place[0], place[1]),
          end: offsetIn(text, place[2], place[3]),
        }),
      ),
    };
  }
  readCycle(text: string): CycleDefinition {
    const { calls } = this;
    return this.definitionOf(
      text,
      calls.answer(() => calls.core._browser_read_cycle(calls.text(withoutNul(text, "the text")))),
    );
  }
  cycle(text: string, changes: Readonly<Record<string, number>> = {}, fluid?: Fluid): CycleResult {
    const { calls } = this;
    return calls.answerWithNumbers<SolvedCycle, CycleResult>(
      () =>
        calls.core._browser_cycle(
          calls.text(withoutNul(text, "the text")),
          calls.text(Object.keys(changes).join("\n")),
          calls.array(Object.values(changes)),
          addressOf(fluid),
        ),
      (solved, numbers) => {
        const figures = numbers(solved.figures);
        return {
          ...this.definitionOf(text, solved),
          places: solved.places,
          states: columnsOf(solved.states, numbers),
          processes: solved.processes.map((process) => ({ ...process, points: columnsOf(process.points, numbers) })),
          figures: this.tables.cycleFigures.map((figure, i) => ({ ...figure, value: figures[i] ?? NaN })),
        };
      },
    );
  }
  nozzle(
    fluid: Fluid,
    inputs: string,
    first: number,
    second: number,
    pOutlet: number,
    intervals = 20,
  ): NozzleResult {
    const { calls } = this;
    return calls.answerWithNumbers<ExpandedNozzle, NozzleResult>(
      () => calls.core._browser_nozzle(addressOf(fluid), calls.text(inputs), first, second, pOutlet, intervals),
      (expanded, numbers) => ({
        ...expanded,
        states: columnsOf(expanded.states, numbers),
        flow: Object.fromEntries(
          Object.entries(expanded.flow).map(([name, place]) => [name, numbers(place)]),
        ) as NozzleResult["flow"],
      }),
    );
  }
}

/** Puts the catalogue into the module's files: its first line is a list of names and sizes, then come the files. */
function putCatalogue(core: Core, packed: Uint8Array): void {
  const head = packed.indexOf("\n".charCodeAt(0));
  const files = JSON.parse(utf8.decode.decode(packed.subarray(0, head))) as readonly (readonly [string, number])[];
  core.FS.mkdir("/Fluids");
  let begin = head + 1;
  for (const [name, size] of files) {
    core.FS.writeFile(`/Fluids/${name}`, packed.subarray(begin, begin + size), { canOwn: true });
    begin += size;
  }
  core.FS.mkdir("/Own");
  core.FS.chdir("/Own");
}

async function loadOnce(): Promise<Library> {
  const catalogue = unpacked(globalThis.ostrel_parts.catalogue);
  const wasm = await unpacked(globalThis.ostrel_parts.wasm);
  const core = await new Promise<Core>((resolve, reject) => {
    globalThis
      .ostrel_core({
        instantiateWasm(imports, receive) {
          WebAssembly.instantiate(wasm, imports).then(({ instance, module }) => receive(instance, module), reject);
          return {};
        },
      })
      .then(resolve, reject);
  });
  putCatalogue(core, await catalogue);
  return new LoadedLibrary(new Calls(core));
}

let loaded: Promise<Library> | undefined;

/** The library, once for a page. The script library.js must have run. Fails where a browser lacks WebAssembly with
 * exceptions or DecompressionStream. */
export function load(): Promise<Library> {
  loaded ??= loadOnce();
  return loaded;
}
