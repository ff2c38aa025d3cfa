/* SPDX-License-Identifier: MIT */
/* Asks for the density that is an input itself, which shows that the library and its fluids are found. */
#include "ostrel.h"

#include <math.h>
#include <stdio.h>

int main(void) {
    const double t = 500, d = 5;
    char text[257];
    const double answer = ostrel_prop("toluene", "td", &t, &d, "d", text, 7, 2, 1, 256);

    text[256] = '\0';
    printf("%g kg/m3, %s\n", answer, text);
    return fabs(answer - d) < 1e-9 ? 0 : 1;
}
