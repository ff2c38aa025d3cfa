// SPDX-License-Identifier: MIT
// Tests of the handles share this file: fluids that close themselves, and the answers of calls with their messages.
#pragma once

#include "ostrel_fluid.h"

#include <bit>
#include <cstdint>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

namespace support {

/// What a call that opens or finds something answered. The message is empty after a success.
struct outcome {
    int status = OSTREL_OK;
    std::string message{};
};

inline outcome told(int status) {
    return {status, status == OSTREL_OK ? "" : ostrel_last_message()};
}

/// An opened fluid, or none.
class handle {
public:
    handle() = default;
    handle(const handle &) = delete;
    handle &operator=(const handle &) = delete;
    ~handle() { ostrel_fluid_close(fluid_); }

    // These close what was open.
    outcome open(const char *name, const char *options = nullptr) {
        return opened([&] { return ostrel_fluid_open(name, options, &fluid_); });
    }
    outcome open_file(const std::string &path, const char *options = nullptr) {
        return opened([&] { return ostrel_fluid_open_file(path.c_str(), options, &fluid_); });
    }
    outcome open_text(const std::string &text, const char *options = nullptr) {
        return opened([&] { return ostrel_fluid_open_text(text.c_str(), options, &fluid_); });
    }
    outcome open_database(const std::string &location, const char *name, const char *options = nullptr) {
        return opened([&] { return ostrel_fluid_open_database(location.c_str(), name, options, &fluid_); });
    }
    operator const ostrel_fluid *() const { return fluid_; }
    std::string text(const char *name) const {
        const char *const found = ostrel_fluid_text(fluid_, name);
        return found != nullptr ? found : "(none)";
    }
    double constant(const char *name) const { return ostrel_fluid_constant(fluid_, name); }

private:
    template <class Open>
    outcome opened(Open open) {
        ostrel_fluid_close(fluid_);
        fluid_ = std::bit_cast<ostrel_fluid *>(~std::uintptr_t{0}); // must be replaced, also by a failure
        const outcome result = told(open());
        EXPECT_EQ(fluid_ != nullptr, result.status == OSTREL_OK) << result.message;
        return result;
    }

    ostrel_fluid *fluid_ = nullptr;
};

/// A handle of a fluid that can be opened.
class opened_fluid : public handle {
public:
    explicit opened_fluid(const char *name = "toluene", const char *options = nullptr) {
        const outcome result = open(name, options);
        if (result.status != OSTREL_OK)
            throw std::runtime_error(result.message);
    }
};

/// The rows of a list, each with its name, unit and description.
struct listed_row {
    std::string name, unit, description;
};
inline std::vector<listed_row> rows_of(const char *kind) {
    std::vector<listed_row> rows;
    while (const char *const name = ostrel_list(kind, rows.size(), "name"))
        rows.push_back({name, ostrel_list(kind, rows.size(), "unit"), ostrel_list(kind, rows.size(), "description")});
    return rows;
}

inline constexpr std::uint64_t bits_of_nan = 0x7ff8000000000000;
inline std::uint64_t bits(double value) {
    return std::bit_cast<std::uint64_t>(value);
}

} // namespace support
