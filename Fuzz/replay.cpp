// SPDX-License-Identifier: MIT
// Runs a fuzzer once over each of the given files and folders, so that the corpus and the finds are an ordinary test.
// The limits are those of scripts/fuzz: 2048 MB for all, and 30 s for a file, since a saturation table under sanitizers
// on a busy machine takes several seconds.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

namespace fs = std::filesystem;

/// The file in work, for the message when something ends the process.
std::string current;

std::vector<std::string> files_of(int count, char **names) {
    std::vector<std::string> files;
    for (const fs::path name : std::vector<std::string>(names, names + count)) {
        if (!fs::is_directory(name)) {
            files.push_back(name.string());
            continue;
        }
        for (const auto &entry : fs::recursive_directory_iterator(name))
            if (entry.is_regular_file())
                files.push_back(entry.path().string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

void name_current() {
    if (!current.empty())
        std::fprintf(stderr, "The process was ended by %s\n", current.c_str());
}

} // namespace

int main(int argc, char **argv) {
    constexpr unsigned seconds = 30;
    constexpr long megabytes = 2048;
    std::atexit([] {
        name_current();
        if (!current.empty())
            std::_Exit(EXIT_FAILURE);
    });
    const std::vector<std::string> files = files_of(argc - 1, argv + 1);
    for (const std::string &file : files) {
        std::ifstream in(file, std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(in), {}};
        // The copy has exactly this size, so that the sanitizer notices a read beyond it.
        const std::vector<std::uint8_t> data(text.begin(), text.end());
        std::fprintf(stderr, "%s\n", file.c_str());
        current = file;
        alarm(seconds);
        LLVMFuzzerTestOneInput(data.data(), data.size());
        alarm(0);
        current.clear();
    }
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    if (used.ru_maxrss > megabytes * 1024) {
        std::fprintf(stderr, "%ld kB of memory were used\n", used.ru_maxrss);
        return EXIT_FAILURE;
    }
    std::fprintf(stderr, "%zu files\n", files.size());
    return files.empty() ? EXIT_FAILURE : EXIT_SUCCESS;
}
