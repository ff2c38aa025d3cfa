// SPDX-License-Identifier: MIT
#include "Host/folder_listing.h"

#include <algorithm>
#include <dirent.h>
#include <filesystem>
#include <fnmatch.h>
#include <memory>

std::vector<std::string> folder_listing::files(const std::string &folder, const std::string &pattern) {
    std::vector<std::string> found;
    // The standard library's iterator ends the process when memory is out.
    const std::unique_ptr<DIR, int (*)(DIR *)> listing(opendir(folder.c_str()), closedir);
    while (const dirent *const entry = listing ? readdir(listing.get()) : nullptr) {
        const std::string name = entry->d_name;
        std::error_code failed;
        if (fnmatch(pattern.c_str(), name.c_str(), FNM_PERIOD) == 0 &&
            std::filesystem::is_regular_file(std::filesystem::path(folder) / name, failed))
            found.push_back(name);
    }
    std::sort(found.begin(), found.end());
    return found;
}
