// SPDX-License-Identifier: MIT
// Lines in other languages that give a number of the page.
import type { Options } from "../core/library";

export interface Request {
  /** A name of the catalogue, or the path of a parameter file. */
  readonly fluid: string;
  readonly isFile: boolean;
  readonly options: Options;
  readonly pair: string;
  /** SI values. */
  readonly first: number;
  readonly second: number;
  readonly output: string;
  readonly unit: string;
}

interface Language {
  readonly name: string;
  /** What must be known to run it. */
  readonly note: string;
  readonly lines: (request: Request) => string;
}

const given = (options: Options) =>
  Object.entries(options).filter((entry): entry is [string, string] => Boolean(entry[1]));
const optionText = (options: Options) =>
  given(options)
    .map(([key, value]) => `${key}=${value}`)
    .join("; ");

const escaped = (text: string) => text.replace(/[\\"]/g, "\\$&");
const inQuotes = (text: string) => `"${escaped(text)}"`;
const inSingleQuotes = (text: string) => `'${text.replaceAll("'", "''")}'`;
const word = (text: string) => (/^[\w./%+-]+$/.test(text) ? text : `'${text.replaceAll("'", "'\\''")}'`);

/** A number that reads as floating-point number in C, C++ and Python. */
const float = (value: number) => (/[.e]/.test(String(value)) ? String(value) : `${value}.0`);
/** The same with the letter of Fortran's double precision. */
const double = (value: number) => {
  const [mantissa = "", exponent = "0"] = String(value).split("e");
  return `${mantissa}d${exponent.replace("+", "")}`;
};
export const languages: readonly Language[] = [
  {
    name: "Shell",
    note: "",
    lines: (of) => {
      const options = given(of.options).map(([key, value]) => `--${key} ${word(value)} `);
      const values = `${word(of.fluid)} ${of.pair} ${of.first} ${of.second} ${word(of.output)}`;
      // Behind -- a minus sign does not begin an option.
      return `ostrel prop --csv ${options.join("")}-- ${values}\n`;
    },
  },
  {
    name: "Python",
    note: "",
    lines: (of) => {
      const options = given(of.options).map(([key, value]) => `, ${key}=${inQuotes(value)}`);
      return `import ostrel

fluid = ostrel.Fluid${of.isFile ? ".from_file" : ""}(${inQuotes(of.fluid)}${options.join("")})
print(fluid("${of.pair}", ${float(of.first)}, ${float(of.second)}, "${of.output}"))  # ${of.unit}
`;
    },
  },
  {
    name: "C",
    note: "cc state.c $(pkg-config --cflags --libs ostrel)",
    lines: (of) => `#include <ostrel_fluid.h>
#include <stdio.h>

int main(void) {
    ostrel_fluid *fluid;
    if (ostrel_fluid_open${of.isFile ? "_file" : ""}(${inQuotes(of.fluid)}, ${inQuotes(optionText(of.options))}, &fluid) != OSTREL_OK) {
        fprintf(stderr, "%s\\n", ostrel_last_message());
        return 1;
    }
    printf("%.17g\\n", ostrel_fluid_value(fluid, "${of.pair}", ${float(of.first)}, ${float(of.second)}, "${of.output}", NULL)); /* ${of.unit} */
    ostrel_fluid_close(fluid);
    return 0;
}
`,
  },
  {
    name: "C++",
    note: "c++ -std=c++20 state.cpp $(pkg-config --cflags --libs ostrel)",
    lines: (of) => `#include <cstdio>
#include <ostrel.hpp>

int main() {
    const auto fluid = ostrel::fluid::open${of.isFile ? "_file" : ""}(${inQuotes(of.fluid)}, ${inQuotes(optionText(of.options))});
    std::printf("%.17g\\n", fluid.value("${of.pair}", ${float(of.first)}, ${float(of.second)}, "${of.output}")); // ${of.unit}
}
`,
  },
  {
    name: "Fortran",
    note: "gfortran $(pkg-config --variable=fortran_handles ostrel) state.f90 $(pkg-config --libs ostrel)",
    lines: (of) => `program state
    use ostrel_handles
    implicit none
    type(ostrel_fluid) :: fluid
    call fluid%open${of.isFile ? "_file" : ""}(${inSingleQuotes(of.fluid)}, &
        ${inSingleQuotes(optionText(of.options))})
    print '(es24.16e3)', fluid%value('${of.pair}', ${double(of.first)}, ${double(of.second)}, '${of.output}') ! ${of.unit}
end program state
`,
  },
];
