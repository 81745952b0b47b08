// SPDX-License-Identifier: MIT
// Looking for the plug-in around the running program.
#include "host/cli/bundlesearch.h"

#include <cstdlib>
#include <system_error>

namespace host {

namespace fs = std::filesystem;

std::optional<fs::path> findPlugin() {
    const char* const named = std::getenv("GLYPHORA_PLUGIN"); // NOLINT(concurrency-mt-unsafe)
    if (named != nullptr && *named != '\0') {
        return named;
    }
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    return error ? std::nullopt : findPluginNear(program.parent_path());
}

std::optional<fs::path> findPluginNear(const fs::path& programFolder) {
    for (const char* const place : {".", "..", "../lib/glyphora"}) {
        std::error_code error;
        fs::path bundle = (programFolder / place / "Glyphora.aip").lexically_normal();
        if (fs::is_directory(bundle, error)) {
            return bundle;
        }
    }
    return std::nullopt;
}

} // namespace host
