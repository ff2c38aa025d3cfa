// SPDX-License-Identifier: MIT
// The library in a browser: what the views of the page may ask for.
//
//     const library = await load();
//     const water = library.open("water");
//     const { values } = water.evaluate("pt", ["d", "h"], Float64Array.of(1e5), Float64Array.of(300));
//
// All numbers are in SI units, per kilogram where they are specific. Names of inputs, outputs, constants, texts and
// options are those of the library (Documentation/Handles.md); `list` has them with units and meanings. All calls but
// `load` answer immediately, in the page's own thread. Everything that is returned belongs to the caller.

/** A request that was refused. The message is the library's sentence: what was asked, what is wrong, what is right. */
export class LibraryError extends Error {
  /** Status of the library, 10 and above; 0 where a study and not the library refused. */
  readonly status: number;
  /** What would help, a sentence a line. Mostly empty. */
  readonly advice: readonly string[];
  /** The line of the text that was refused, from 1; 0 if the refusal is about no line. */
  readonly line: number;
  constructor(message: string, status = 0, advice: readonly string[] = [], line = 0) {
    super(message);
    this.name = "LibraryError";
    this.status = status;
    this.advice = advice;
    this.line = line;
  }
}

/** What there is to ask for. */
export type ListKind =
  | "inputs"
  | "outputs"
  | "derivatives"
  | "constants"
  | "texts"
  | "models"
  | "options"
  | "statuses";

/** A row of a list. Options have their values in place of a unit, as "liquid|vapor", and statuses their numbers. */
export interface Row {
  readonly name: string;
  readonly unit: string;
  readonly description: string;
}

/** A fluid that was found: the name that opens it, and its name for people. */
export interface Match {
  readonly file: string;
  readonly name: string;
}

/** Options of an opening: `{ model: "pr", states: "stable" }`. Undefined and empty values are left out. */
export type Options = Readonly<Record<string, string | undefined>>;

/** Names of outputs: ["d", "dp/dd|u"], or "d,dp/dd|u". */
export type Outputs = string | readonly string[];

/** The letters of properties that diagrams, cycles and nozzles have: temperature [K], pressure [Pa], volume [m3/kg],
 * enthalpy [J/kg], entropy [J/(kg K)] and vapor quality [1]. */
export type Letter = "t" | "p" | "v" | "h" | "s" | "q";

/** Statuses of a state. 0 is success; list("statuses") has all of them. */
export interface Evaluation {
  /** values[state * number of outputs + output]; NaN where a state has none. */
  readonly values: Float64Array;
  /** The status of each state. */
  readonly status: Int32Array;
  /** About the first state that failed. */
  readonly message?: string;
}

export interface Saturation {
  /** liquid[state * number of outputs + output] */
  readonly liquid: Float64Array;
  readonly vapor: Float64Array;
  readonly status: Int32Array;
  readonly message?: string;
}

/** A remark on numbers that are rough, and the outputs that it is about; none if it is about the state. */
export interface Remark {
  readonly text: string;
  readonly outputs: readonly string[];
}

/** An open fluid. It never changes. */
export interface Fluid {
  /** Properties of many states, each of two inputs. Throws LibraryError if the call cannot be understood; a state that
   * has no answer has a status and NaNs. */
  evaluate(inputs: string, outputs: Outputs, first: Float64Array, second: Float64Array): Evaluation;
  /** One property of one state; NaN if there is none. */
  value(inputs: string, first: number, second: number, output: string): number;
  /** Both saturated phases at temperatures or pressures: input is "t" or "p". */
  saturation(input: "t" | "p", outputs: Outputs, values: Float64Array): Saturation;
  /** A constant; NaN where there is none. */
  constant(name: string): number;
  /** A text; empty where nothing is known. */
  text(name: string): string;
  /** What somebody should know about these outputs at a state, which is given by t [K], p [Pa] and the output "phase".
   * The letters of the inputs matter, since t follows from h, s and u by the heat capacity. */
  remarks(outputs: Outputs, inputs: string, t: number, p: number, phase: number): readonly Remark[];
  /** Gives its memory back. The fluid must not be used after that; a second call does nothing. */
  close(): void;
}

/** What `ostrel check` says about a parameter text. */
export interface CheckReport {
  /** The description, a line each; empty if the text cannot be read. */
  readonly lines: readonly string[];
  readonly warnings: readonly string[];
  /** Why the text cannot be used; empty if it can. */
  readonly error: string;
  /** What would help, a sentence each. */
  readonly advice: readonly string[];
}

export type UnitSystem = "si" | "engineering";

/** A unit that people write. The value in SI units is value * factor + offset; differences have no offset. */
export interface Unit {
  readonly name: string;
  /** The SI unit of the same quantity, as list gives it. */
  readonly si: string;
  readonly factor: number;
  readonly offset: number;
}

export interface Units {
  /** All units. The first one of each SI unit is that SI unit itself. */
  readonly all: readonly Unit[];
  /** The unit in which a system shows values of this SI unit. */
  shown(si: string, system: UnitSystem, difference?: boolean): Unit;
  /** All units of the quantity with this SI unit; only the SI unit itself if the table does not have it. */
  of(si: string): readonly Unit[];
  /** A value [SI] in a unit. */
  to(value: number, unit: Unit): number;
  /** A value in a unit as SI value. */
  from(value: number, unit: Unit): number;
  /** The SI value of "10 bar" or "10", which is in the SI unit. With `difference`, 10 degC are 10 K. Throws LibraryError,
   * with what would be right. */
  parse(text: string, si: string, difference?: boolean): number;
  /** "VALUE", "FIRST:LAST:COUNT" or "FIRST:LAST:COUNT:log" as SI values. Throws LibraryError. */
  parseRange(text: string, si: string, difference?: boolean): Float64Array;
  /** The name of the quantity with this SI unit: "temperature"; "value" if the table does not have it. */
  quantity(si: string): string;
}

/** A property of an axis or of isolines. */
export interface PropertyText {
  readonly letter: Letter;
  readonly name: string;
  /** As formulas have it. */
  readonly symbol: string;
  readonly si: string;
  /** The name of the lines along which it is constant: "isobars". */
  readonly lines: string;
  /** Whether axes and steps of lines are logarithmic. */
  readonly logarithmic: boolean;
}

/** A kind of diagrams: "ts", "ph", "hs", "pv" or "pt"; the first letter is the vertical axis. */
export interface DiagramKind {
  readonly name: string;
  readonly x: Letter;
  readonly y: Letter;
  /** Letters of the properties of its isolines, the most important one first. */
  readonly families: string;
  /** Letters of all isolines that can be asked for. */
  readonly possible: string;
}

/** Both ends of an axis [SI]. */
export type AxisRange = readonly [low: number, high: number];

export interface DiagramSettings {
  /** Chosen from the fluid if not given. Curves are computed for the range, so a view that zooms asks again. */
  readonly x?: AxisRange;
  readonly y?: AxisRange;
  /** Letters of the isolines; those of the kind if not given; "" for none. */
  readonly families?: string;
  /** In which the values of isolines are round; "engineering" if not given. */
  readonly units?: UnitSystem;
  /** Values of isolines [SI]; chosen where there are none. */
  readonly values?: Readonly<Partial<Record<Letter, readonly number[]>>>;
}

/** Points in the plane of a diagram [SI]: x0, y0, x1, y1, ... */
export type Polyline = Float64Array;

export interface Isoline {
  readonly what: Letter;
  readonly value: number;
  /** Value and unit for people: "10 bar". */
  readonly label: string;
  /** There are several where the equation has no states between them. */
  readonly pieces: readonly Polyline[];
}

export interface Diagram {
  readonly kind: DiagramKind;
  readonly x: AxisRange;
  readonly y: AxisRange;
  /** The saturation line from the liquid side over the critical point to the vapor side; in "pt" one line up to the
   * critical point. Empty if there is none. */
  readonly dome: Polyline;
  /** The place of the critical point among the points of the dome. */
  readonly domePeak: number;
  readonly critical?: readonly [x: number, y: number];
  /** Nothing is drawn below this temperature [K]. */
  readonly tLow: number;
  /** Sentences for people: why the diagram begins at tLow, if there is a reason. */
  readonly remarks: readonly string[];
  readonly lines: readonly Isoline[];
}

/** A value that a definition of a cycle may have: "evaporator.p" is the key p of the section evaporator. */
export interface CycleKey {
  /** "evaporator.p" */
  readonly name: string;
  readonly si: string;
  /** Whether it is a difference, for which 10 degC are 10 K. */
  readonly difference: boolean;
  readonly range: "positive" | "not negative" | "part";
  readonly ofRankine: boolean;
  readonly ofCompression: boolean;
  /** What holds if it is not given. */
  readonly standard?: number;
  readonly meaning: string;
}

/** A value that a text gives, for a slider. */
export interface GivenValue {
  readonly key: CycleKey;
  readonly value: number;
  /** Where it stands in the text, as offsets of JavaScript: text.slice(begin, end) is `"15 bar"` or `0.85`. */
  readonly begin: number;
  readonly end: number;
}

export interface CycleFigure {
  readonly name: string;
  readonly si: string;
  readonly difference: boolean;
  readonly meaning: string;
  /** NaN if the cycle does not have it, or if its definition does not determine it. */
  readonly value: number;
}

/** States as columns [SI]; d is the density. */
export type StateColumns = Readonly<Record<Letter | "d", Float64Array>>;

export interface CycleProcess {
  readonly name: string;
  /** Places of its ends among the states. */
  readonly from: number;
  readonly to: number;
  /** From one end to the other, with the corners on the saturation line: the path in every diagram. */
  readonly points: StateColumns;
}

export interface CycleResult {
  readonly kind: "rankine" | "compression";
  /** The fluid of the text as `open` takes it. */
  readonly fluid: string;
  readonly options: Options;
  /** Names of the states, in the order of the flow: "turbine inlet". */
  readonly places: readonly string[];
  readonly states: StateColumns;
  readonly processes: readonly CycleProcess[];
  readonly figures: readonly CycleFigure[];
  readonly given: readonly GivenValue[];
}

/** What a text says, without solving: for sliders on a text whose cycle has no solution. */
export type CycleDefinition = Pick<CycleResult, "kind" | "fluid" | "options" | "given">;

export interface NozzleResult {
  /** "total state", "throat", "outlet", "saturation line"; empty between them. */
  readonly places: readonly string[];
  readonly states: StateColumns;
  /** velocity and sound [m/s], mach [1], mass_flux [kg/(m2 s)], area_ratio [1] to the throat, fundamental [1]. */
  readonly flow: Readonly<
    Record<"velocity" | "sound" | "mach" | "mass_flux" | "area_ratio" | "fundamental", Float64Array>
  >;
  readonly choking: "none" | "sonic" | "saturation line";
  readonly notes: readonly string[];
}

export interface Library {
  /** Version of the package. */
  readonly version: string;
  /** Bytes of the module's memory. */
  readonly memory: number;
  /** A list of what there is to ask for; the same array at each call. */
  list(kind: ListKind): readonly Row[];
  /** The fluids of the catalogue whose names, formulas or families have to do with the words, the best first; all of
   * them for "". Fast enough to be called at every key. */
  find(words: string): readonly Match[];
  /** Opens a fluid of the catalogue by any of its names. Throws LibraryError. */
  open(name: string, options?: Options): Fluid;
  /** Opens a fluid from a parameter text. Throws LibraryError. */
  openText(text: string, options?: Options): Fluid;
  /** Says in words what a parameter text means. `name` stands for the path of the file in messages; "own.osd" if not
   * given. */
  check(text: string, name?: string): CheckReport;

  readonly units: Units;
  /** "liquid" for the output "phase". */
  phaseName(phase: number): string;
  /** What an equation of state, named as in the option model, is good for. */
  adviceOnModel(model: string): string;

  readonly properties: Readonly<Record<Letter, PropertyText>>;
  readonly diagramKinds: readonly DiagramKind[];
  /** The curves of a diagram. Throws LibraryError if the fluid has no state in the ranges. */
  curves(fluid: Fluid, kind: string, settings?: DiagramSettings): Diagram;

  readonly cycleKeys: readonly CycleKey[];
  /** Reads a definition of a cycle (TOML). Throws LibraryError with the line. */
  readCycle(text: string): CycleDefinition;
  /** Reads and solves a definition of a cycle. `changes` are values [SI] by the names of keys that replace those of the
   * text, for sliders. `fluid` replaces the one of the text, for fluids of openText. Throws LibraryError. */
  cycle(text: string, changes?: Readonly<Record<string, number>>, fluid?: Fluid): CycleResult;
  /** Expands a fluid from a total state to a pressure [Pa]; `intervals` are equal ratios of pressure. */
  nozzle(fluid: Fluid, inputs: string, first: number, second: number, pOutlet: number, intervals?: number): NozzleResult;
}

/** The library, once for a page. The WebAssembly and the catalogue are in the script `library.js` of the page. */
export { load } from "./load";
