// SPDX-License-Identifier: MIT
// Pictures of diagrams as files: those of a fluid, and those of a cycle.
#pragma once

#include "Studies/curves.h"

#include <string>
#include <vector>

namespace command {

struct picture_request {
    studies::diagram_request curves;
    std::string path{};                     ///< .svg, .pdf or .png
    std::string title{};                    ///< that of the fluid and of the kind if it is empty
    std::vector<studies::overlay> states{}; ///< states of the first fluid
    bool show_states = false;               ///< whether axes that are not given reach to all of the states
    double width = 1000;
    double height = 700;
};

/// The kind of diagrams with this name; fails with the name of the argument.
const studies::diagram_kind &diagram_kind_of(const std::string &argument, const std::string &name);
/// Fails unless the path ends with .svg, .pdf or .png.
void check_picture_name(const std::string &argument, const std::string &path);

/// Draws the diagram of a fluid, or of several with the same axes, and writes it.
void write_picture(const picture_request &asked, const std::vector<const ostrel::fluid *> &fluids);

} // namespace command
