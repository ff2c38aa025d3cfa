// SPDX-License-Identifier: MIT
// A successful request allocates nothing, except when it loads a fluid or builds the saturation table.
#include "Tests/Support/allocations.h"
#include "Tests/Support/frame.h"

#include <cstring>

namespace {

using support::allocations;

struct allocation : support::frame_test {};

TEST_F(allocation, only_loading_and_the_table_allocate) {
    char text[256];
    const std::string_view fluid = "toluene";
    const double first = 500.0, density = 2.0;
    allocations = 0;
    ostrel_prop(fluid.data(), "td", &first, &density, "p", text, fluid.size(), 2, 1, sizeof text);
    EXPECT_GT(allocations, 0) << "loading";
    allocations = 0;
    const double one = 1.0;
    ostrel_prop(fluid.data(), "tq", &first, &one, "p", text, fluid.size(), 2, 1, sizeof text);
    EXPECT_EQ(allocations, 4) << "the table's four columns";

    for (const char *code : support::pair_codes) {
        if (std::string_view(code) == "hs")
            continue; // finds few states of a real gas; it is tested below
        SCOPED_TRACE(code);
        const auto [value1, value2] = support::inputs_at(fluid, code, 510.0, 3.0);
        for (const auto &output : support::output_cases) {
            allocations = 0;
            ostrel_prop(fluid.data(), code, &value1, &value2, output.name, text, fluid.size(), 2,
                        std::strlen(output.name), sizeof text);
            EXPECT_EQ(allocations, 0) << output.name;
            EXPECT_EQ(std::string_view(text, 9), "No errors");
        }
    }
    const std::string_view ideal = "n2-ig";
    const auto [h, s] = support::inputs_at(ideal, "hs", 400.0, 2.0);
    allocations = 0;
    ostrel_prop(ideal.data(), "hs", &h, &s, "t", text, ideal.size(), 2, 1, sizeof text);
    EXPECT_EQ(allocations, 0);
    EXPECT_EQ(std::string_view(text, 9), "No errors");
}

} // namespace
