// SPDX-License-Identifier: MIT
// Draws diagrams with Cairo: the same drawing as SVG, PDF or PNG.
//
// Computes   the layout of a picture, with labels along the isolines that keep clear of each other, of the frame and of
//            the critical point
// Given      the curves of one or several diagrams with the same axes, and states to be marked
// Returned   the bytes of the picture's file, and the places of its labels
// Valid      the same curves give the same bytes on one machine: files have no dates. Texts are outlines in SVG and
//            embedded fonts in PDF, so that pictures look the same wherever they are shown.
#pragma once

#include "Studies/curves.h"

#include <array>
#include <stdexcept>
#include <string>
#include <vector>

namespace drawing {

enum class format { svg, pdf, png };

/// The curves of one equation of state.
struct layer {
    std::string name; ///< in the legend, if there are several layers
    studies::diagram curves;
};

/// States in the plane of the diagram, as studies::overlay has them.
struct marked_states {
    std::string label{};
    studies::polyline points{};
    std::vector<std::string> names{};
    bool marked = false;
    bool joined = true;
};
marked_states projected(const ostrel::fluid &fluid, const studies::diagram_kind &kind, const studies::overlay &states);

struct content {
    std::string title{};
    std::string notes{};         ///< small, below the title
    std::vector<layer> layers{}; ///< the first one has the axes and the labels
    std::vector<marked_states> states{};
    studies::unit_system units = studies::unit_system::engineering;
    double width = 1000; ///< px, in PDF pt
    double height = 700;
};

/// The place of a text beside a line or a mark.
struct label_box {
    std::string text;
    std::array<studies::diagram_point, 4> corners; ///< px
};

struct picture {
    std::string bytes;
    std::vector<label_box> labels{};
    std::size_t left_out = 0;                      ///< isolines for whose label there is no place
    std::array<studies::diagram_point, 2> frame{}; ///< px, the corners of the diagram itself
    studies::diagram_point size{};                 ///< px
    std::vector<label_box> texts{};                ///< title, notes, axes and legend
};

class drawing_failed : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Throws drawing_failed if the size leaves no room for a diagram, or if memory is out.
picture draw(const content &what, format as);

/// Whether two boxes have a point in common.
bool overlap(const label_box &a, const label_box &b);

} // namespace drawing
