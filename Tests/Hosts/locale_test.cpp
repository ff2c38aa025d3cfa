// SPDX-License-Identifier: MIT
// Hosts with a decimal comma and grouped digits, in the locale of C and in that of C++. They must get the same numbers
// and texts, and find their locale as they left it.
#include "Tests/Hosts/hosts_support.h"

#include <clocale>
#include <cstdio>
#include <locale>

namespace {

/// Makes a locale with a decimal comma, so that none needs to be installed.
class comma_locale {
public:
    comma_locale() {
        const std::string source = folder_.write("comma.src", "LC_CTYPE\nupper <A>;<B>\nlower <a>;<b>\nEND LC_CTYPE\n"
                                                              "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \".\"\n"
                                                              "grouping 3;3\nEND LC_NUMERIC\n");
        // The command warns of the categories that are missing and ends with 1.
        const std::string command =
            "localedef -c -f ANSI_X3.4-1968 -i " + source + " " + folder_.path() + "/xx_XX >/dev/null 2>&1";
        static_cast<void>(std::system(command.c_str()));
        setenv("LOCPATH", folder_.path().c_str(), 1);
    }
    ~comma_locale() {
        std::setlocale(LC_ALL, "C");
        unsetenv("LOCPATH");
    }
    comma_locale(const comma_locale &) = delete;
    comma_locale &operator=(const comma_locale &) = delete;

    /// A number as the C library writes it in the current locale.
    static std::string one_half() {
        char text[16];
        std::snprintf(text, sizeof text, "%.1f", 0.5);
        return text;
    }

private:
    support::temporary_folder folder_;
};

TEST(locale, of_C) {
    const support::session session;
    const auto wanted = session.run();
    const comma_locale locale;
    if (std::setlocale(LC_ALL, "xx_XX") == nullptr)
        GTEST_SKIP() << "localedef has made no locale";
    ASSERT_EQ(comma_locale::one_half(), "0,5");
    const std::string before = std::setlocale(LC_ALL, nullptr);
    int changed = 0;
    const auto answers = session.run([&](auto call) {
        call();
        changed += std::setlocale(LC_ALL, nullptr) != before || comma_locale::one_half() != "0,5";
    });
    support::expect_same(answers, wanted);
    EXPECT_EQ(changed, 0) << "calls after which the host's locale was another";
}

TEST(locale, of_the_thread) {
    const support::session session;
    const auto wanted = session.run();
    const comma_locale made;
    if (std::setlocale(LC_ALL, "xx_XX") == nullptr)
        GTEST_SKIP() << "localedef has made no locale";
    const locale_t locale = duplocale(LC_GLOBAL_LOCALE);
    std::setlocale(LC_ALL, "C");
    ASSERT_EQ(comma_locale::one_half(), "0.5");
    const locale_t before = uselocale(locale);
    ASSERT_EQ(comma_locale::one_half(), "0,5");
    int changed = 0;
    const auto answers = session.run([&](auto call) {
        call();
        changed += uselocale(nullptr) != locale;
    });
    uselocale(before);
    freelocale(locale);
    support::expect_same(answers, wanted);
    EXPECT_EQ(changed, 0) << "calls after which the thread's locale was another";
}

struct grouping : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
    std::string do_truename() const override { return "wahr"; }
};

TEST(locale, of_C_plus_plus) {
    const support::session session;
    const auto wanted = session.run();
    const std::locale before = std::locale::global(std::locale(std::locale(), new grouping));
    const std::locale during;
    std::ostringstream proof;
    proof << 1234567.5;
    EXPECT_EQ(proof.str(), "1,23457e+06");
    int changed = 0;
    const auto answers = session.run([&](auto call) {
        call();
        changed += std::locale() != during;
    });
    std::locale::global(before);
    support::expect_same(answers, wanted);
    EXPECT_EQ(changed, 0) << "calls after which the host's locale was another";
}

} // namespace
