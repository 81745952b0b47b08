// SPDX-License-Identifier: MIT
// Where the plug-in is looked for when no option names it.
#pragma once

#include <filesystem>
#include <optional>

namespace host {

/// $GLYPHORA_PLUGIN, else Glyphora.aip beside the program, in the folder above (the build tree), or
/// in ../lib/glyphora (installed). Nothing when there is none; what the variable names need not
/// exist.
[[nodiscard]] std::optional<std::filesystem::path> findPlugin();
/// The same for a program in `programFolder`, without the variable.
[[nodiscard]] std::optional<std::filesystem::path>
findPluginNear(const std::filesystem::path& programFolder);

} // namespace host
