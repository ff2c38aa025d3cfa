// SPDX-License-Identifier: MIT
// Runs code that ends its process in a process of its own. The test reads the console of that process and types at it.
#pragma once

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <string>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

namespace support {

enum class standard_input { empty, silent_pipe, terminal };

/// Whether the system has pseudo-terminals; it has none in a root folder without /dev/pts.
inline bool has_pseudo_terminals() {
    const int keyboard = posix_openpt(O_RDWR | O_NOCTTY);
    if (keyboard < 0)
        return false;
    const bool usable = grantpt(keyboard) == 0 && unlockpt(keyboard) == 0 && ptsname(keyboard) != nullptr;
    close(keyboard);
    return usable;
}

class child_process {
public:
    /// The exit status when the body returns.
    static constexpr int came_back = 77;
    static constexpr int killed = -1;

    template <class Body>
    explicit child_process(Body body, standard_input input = standard_input::empty) {
        std::array<int, 2> pipe_ends{}, silent_ends{};
        EXPECT_EQ(pipe(pipe_ends.data()), 0);
        EXPECT_EQ(pipe(silent_ends.data()), 0);
        std::string input_name = "/dev/null";
        if (input == standard_input::terminal) {
            keyboard_ = posix_openpt(O_RDWR | O_NOCTTY);
            EXPECT_EQ(grantpt(keyboard_), 0);
            EXPECT_EQ(unlockpt(keyboard_), 0);
            input_name = ptsname(keyboard_);
        }
        std::fflush(stdout);
        id_ = fork();
        if (id_ == 0) {
            alarm(30); // ends a process that waits for ever
            dup2(input == standard_input::silent_pipe ? silent_ends[0] : open(input_name.c_str(), O_RDONLY | O_NOCTTY),
                 STDIN_FILENO);
            dup2(pipe_ends[1], STDOUT_FILENO);
            close(pipe_ends[0]);
            close(pipe_ends[1]);
            body();
            std::fflush(stdout);
            _exit(came_back);
        }
        close(pipe_ends[1]);
        close(silent_ends[0]);
        silent_ = silent_ends[1];
        output_ = pipe_ends[0];
    }
    child_process(const child_process &) = delete;
    child_process &operator=(const child_process &) = delete;
    ~child_process() {
        close(output_);
        close(silent_);
        if (keyboard_ >= 0)
            close(keyboard_);
    }

    void type(std::string_view keys) const {
        EXPECT_EQ(::write(keyboard_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
    }
    /// Reads until this many characters have come, or the end.
    const std::string &read_text(std::size_t size = std::string::npos) {
        std::array<char, 256> piece{};
        while (text_.size() < size) {
            const ssize_t count = ::read(output_, piece.data(), piece.size());
            if (count <= 0)
                break;
            text_.append(piece.data(), static_cast<std::size_t>(count));
        }
        return text_;
    }
    /// True if the process neither writes nor ends for a while.
    bool waits() const {
        constexpr int milliseconds = 300;
        pollfd output{output_, POLLIN, 0};
        return poll(&output, 1, milliseconds) == 0;
    }
    /// The exit status, after the process has ended by itself.
    int status() {
        read_text();
        int result = 0;
        EXPECT_EQ(waitpid(id_, &result, 0), id_);
        return WIFEXITED(result) ? WEXITSTATUS(result) : killed;
    }

private:
    int output_ = -1;
    int silent_ = -1;
    int keyboard_ = -1;
    pid_t id_ = -1;
    std::string text_;
};

/// Expects that the body writes exactly this and then stops the process with exit status 1.
template <class Body>
void expect_stop(Body body, std::string_view text) {
    child_process child(body);
    EXPECT_EQ(child.read_text(), text);
    EXPECT_EQ(child.status(), 1);
}

/// The text that the body writes to the console.
template <class Body>
std::string written(Body body) {
    testing::internal::CaptureStdout();
    body();
    return testing::internal::GetCapturedStdout();
}

} // namespace support
