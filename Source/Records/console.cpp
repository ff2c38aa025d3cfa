// SPDX-License-Identifier: MIT
#include "Records/console.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace console {

void write(std::initializer_list<records::written_value> values) {
    std::puts(records::list_directed(values).c_str());
    static_cast<void>(std::fflush(stdout));
}

void pause() {
    if (isatty(STDIN_FILENO) == 0)
        return;
    for (int c = 0; c != '\n' && c != EOF;)
        c = std::getchar();
}

void stop() {
    std::exit(EXIT_FAILURE);
}

void stop(std::initializer_list<std::string_view> lines) {
    for (const std::string_view line : lines)
        write({line});
    stop();
}

} // namespace console
