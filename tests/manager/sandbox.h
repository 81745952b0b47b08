// SPDX-License-Identifier: MIT
// A data folder, a font world and a library folder of a test's own.
#pragma once

#include "manager/library/places.h"
#include "tests/support/temporaryfolder.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace managertest {

/// A temporary folder that is also XDG_DATA_HOME, XDG_CACHE_HOME and the whole of what fontconfig
/// looks at. Removed with its owner.
class Sandbox {
public:
    Sandbox();

    [[nodiscard]] const std::string& root() const { return root_; }
    [[nodiscard]] manager::Places places() const { return {root_ + "/data"}; }
    /// A folder for font files, outside of what fontconfig sees.
    [[nodiscard]] std::string library() const { return root_ + "/library"; }
    /// Writes a file under library(), with its folders; returns its path.
    std::string write(const std::string& relativePath, std::string_view bytes) const;
    /// Makes these the whole of fontconfig's settings, but for its cache.
    void setFontconfig(const std::string& settings) const;

private:
    testsupport::TemporaryFolder folder_;
    std::string root_ = std::filesystem::canonical(folder_.path()).string();
    testsupport::Variable data_{"XDG_DATA_HOME", root_ + "/data"};
    testsupport::Variable cache_{"XDG_CACHE_HOME", root_ + "/cache"};
    testsupport::Variable fontconfig_{"FONTCONFIG_FILE", root_ + "/fonts.conf"};
    testsupport::Variable x_{"DISPLAY", ""}; // or windows would open
    testsupport::Variable wayland_{"WAYLAND_DISPLAY", ""};
    testsupport::Variable platform_{"QT_QPA_PLATFORM", ""};
    testsupport::Variable locale_{"LC_ALL", "C.UTF-8"}; // whatever its user speaks
    testsupport::Variable language_{"LANGUAGE", std::nullopt};
    testsupport::Variable replyTime_{"GLYPHORA_REPLY_TIME", "20000"}; // on a slow machine, too
};

inline std::string readBytes(const std::string& path) {
    return testsupport::contentOf(path);
}
void writeBytes(const std::string& path, std::string_view bytes);

} // namespace managertest
