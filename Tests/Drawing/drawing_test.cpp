// SPDX-License-Identifier: MIT
#include "CommandLine/drawing.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <map>

namespace {

using drawing::content;
using drawing::format;
using drawing::label_box;
using drawing::picture;

content content_of(const ostrel::fluid &fluid, std::string_view kind, double width = 1000, double height = 700) {
    content what{.title = "title of " + std::string(fluid.text("name")),
                 .notes = "some notes",
                 .width = width,
                 .height = height};
    what.layers.push_back({"equation", studies::make_diagram(fluid, {.kind = studies::diagram_kind_named(kind)})});
    return what;
}

/// Labels that keep clear of each other, of the frame and of the critical point.
void check_labels(const picture &made) {
    const auto [first, last] = made.frame;
    for (std::size_t i = 0; i < made.labels.size(); ++i) {
        for (const studies::diagram_point at : made.labels[i].corners) {
            EXPECT_TRUE(at.x > first.x && at.x < last.x && at.y > first.y && at.y < last.y) << made.labels[i].text;
        }
        for (std::size_t k = 0; k < i; ++k)
            EXPECT_FALSE(overlap(made.labels[i], made.labels[k]))
                << made.labels[i].text << " and " << made.labels[k].text;
    }
    // The other texts are in the picture, and nothing is written over them.
    for (std::size_t i = 0; i < made.texts.size(); ++i) {
        for (const studies::diagram_point at : made.texts[i].corners)
            EXPECT_TRUE(at.x >= 0 && at.x <= made.size.x && at.y >= 0 && at.y <= made.size.y) << made.texts[i].text;
        for (std::size_t k = 0; k < i; ++k)
            EXPECT_FALSE(overlap(made.texts[i], made.texts[k])) << made.texts[i].text << " and " << made.texts[k].text;
        for (const label_box &label : made.labels)
            EXPECT_FALSE(overlap(made.texts[i], label)) << made.texts[i].text << " and " << label.text;
    }
}

TEST(drawing, boxes) {
    const label_box one{"", {{{0, 0}, {2, 0}, {2, 1}, {0, 1}}}};
    const label_box beside{"", {{{2.1, 0}, {3, 0}, {3, 1}, {2.1, 1}}}};
    const label_box inside{"", {{{0.5, 0.2}, {1, 0.2}, {1, 0.4}, {0.5, 0.4}}}};
    // Its bounding box has a part of the first box, and the box itself has not.
    const label_box aslant{"", {{{2.6, 0}, {3.6, 1}, {2.6, 2}, {1.6, 1}}}};
    EXPECT_FALSE(overlap(one, beside));
    EXPECT_TRUE(overlap(one, inside));
    EXPECT_TRUE(overlap(inside, one));
    EXPECT_FALSE(overlap(one, {"", {{{2.85, 0.3}, {3.75, 1.2}, {2.85, 2.1}, {1.95, 1.2}}}}));
    EXPECT_TRUE(overlap(one, aslant));
}

TEST(drawing, labels_keep_clear_of_each_other) {
    for (const char *const name : {"water", "d5", "co2", "r134a", "helium"}) {
        const ostrel::fluid fluid = ostrel::fluid::open(name);
        for (const studies::diagram_kind &kind : studies::diagram_kinds())
            for (const auto &[width, height] : {std::pair(1000, 700), std::pair(400, 300), std::pair(2000, 1400)}) {
                SCOPED_TRACE(std::string(name) + " " + std::string(kind.name) + " " + std::to_string(width));
                const content what = content_of(fluid, kind.name, width, height);
                const picture made = draw(what, format::svg);
                check_labels(made);
                // An isoline has one label at most. Most of them have one in a picture of the usual size.
                const std::size_t lines = what.layers[0].curves.lines.size();
                EXPECT_EQ(made.labels.size() + made.left_out, lines);
                EXPECT_GE(made.labels.size(), width < 1000 ? lines / 3 : lines * 2 / 3);
            }
    }
}

TEST(drawing, labels_of_one_picture) {
    const content what = content_of(ostrel::fluid::open("water"), "ts");
    const picture made = draw(what, format::svg);
    std::map<std::string, int> counts;
    for (const label_box &label : made.labels)
        ++counts[label.text];
    for (const char *const text : {"0.2", "0.4", "0.6", "0.8", "0.1", "10", "500", "1000", "−1000", "0"})
        EXPECT_GE(counts[text], 1) << text;
    EXPECT_EQ(made.labels.size() + made.left_out, what.layers[0].curves.lines.size());
    EXPECT_LE(made.left_out, 4U);
}

TEST(drawing, formats) {
    const content what = content_of(ostrel::fluid::open("toluene"), "ph");
    const std::string svg = draw(what, format::svg).bytes;
    EXPECT_TRUE(svg.starts_with("<?xml"));
    EXPECT_TRUE(svg.ends_with("</svg>\n"));
    EXPECT_NE(svg.find("width=\"1000px\""), std::string::npos);
    const std::string pdf = draw(what, format::pdf).bytes;
    EXPECT_TRUE(pdf.starts_with("%PDF-"));
    EXPECT_EQ(pdf.find("Date"), std::string::npos);
    EXPECT_EQ(pdf, draw(what, format::pdf).bytes);
    const std::string png = draw(what, format::png).bytes;
    EXPECT_TRUE(png.starts_with("\x89PNG"));
    EXPECT_EQ(png, draw(what, format::png).bytes);
}

TEST(drawing, states_are_marked) {
    const ostrel::fluid fluid = ostrel::fluid::open("water");
    content what = content_of(fluid, "ph");
    studies::overlay cycle{.label = "cycle", .names = {"", "inlet"}, .marked = true};
    for (const auto &[p, h] : {std::pair(1e5, -1e6), std::pair(1e6, 5e5), std::pair(1e5, 3e5)})
        cycle.states.push_back(fluid.solve("ph", p, h));
    what.states.push_back(drawing::projected(fluid, *what.layers[0].curves.kind, cycle));
    const picture made = draw(what, format::svg);
    check_labels(made);
    // Marks have their names first: the number of the state if it has none.
    ASSERT_GE(made.labels.size(), 3U);
    EXPECT_EQ(made.labels[0].text, "1");
    EXPECT_EQ(made.labels[1].text, "inlet");
    EXPECT_EQ(made.labels[2].text, "3");
    EXPECT_NE(made.bytes, draw(content_of(fluid, "ph"), format::svg).bytes);
}

TEST(drawing, several_equations) {
    content what{.title = "MDM"};
    for (const char *const model : {"pr", "srk", "mh"}) {
        const std::string options = std::string("model=") + model;
        const ostrel::fluid fluid = ostrel::fluid::open("mdm", ostrel::unchecked(options));
        what.layers.push_back(
            {model, studies::make_diagram(fluid, {.kind = studies::diagram_kind_named("ts"), .families = "p"})});
    }
    const picture made = draw(what, format::svg);
    check_labels(made);
    EXPECT_TRUE(std::ranges::any_of(made.labels, [](const label_box &one) { return one.text == "1 bar"; }));
    EXPECT_TRUE(std::ranges::any_of(made.texts, [](const label_box &one) { return one.text == "mh"; }));
}

TEST(drawing, texts_that_are_not_utf_8) {
    content what = content_of(ostrel::fluid::open("water"), "ts");
    what.title = "caf\xE9 \x01 \xF0\x9F";
    const picture made = draw(what, format::svg);
    EXPECT_EQ(made.texts.front().text, "caf\xC3\xA9 ? \xC3\xB0\xC2\x9F");
}

TEST(drawing, no_room) {
    content what = content_of(ostrel::fluid::open("water"), "ts", 100, 80);
    EXPECT_THROW(draw(what, format::svg), drawing::drawing_failed);
}

} // namespace
