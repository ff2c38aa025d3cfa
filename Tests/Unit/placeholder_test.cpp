#include "Tests/support.h"
TEST(smoke, toluene) {
    const auto a = support::ask("toluene", "td", 400, 5.0, "p");
    EXPECT_EQ(a.text, "No errors");
    EXPECT_NEAR(a.value, 175e3, 10e3);
}
