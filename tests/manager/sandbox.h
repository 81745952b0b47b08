// SPDX-License-Identifier: MIT
// A data folder, a font world and a library folder of a test's own.
#pragma once

#include "manager/library/places.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace managertest {

/// Sets environment variables and restores them.
class Environment {
public:
    void set(const char* name, const std::string& value);
    Environment() = default;
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;
    ~Environment();

private:
    std::vector<std::pair<std::string, std::optional<std::string>>> previous_;
};

/// A temporary folder that is also XDG_DATA_HOME, XDG_CACHE_HOME and the whole of what fontconfig
/// looks at. Removed with its owner.
class Sandbox {
public:
    Sandbox();
    ~Sandbox();
    Sandbox(const Sandbox&) = delete;
    Sandbox& operator=(const Sandbox&) = delete;

    [[nodiscard]] const std::string& root() const { return root_; }
    [[nodiscard]] manager::Places places() const { return {root_ + "/data"}; }
    /// A folder for font files, outside of what fontconfig sees.
    [[nodiscard]] std::string library() const { return root_ + "/library"; }
    /// Writes a file under library(), with its folders; returns its path.
    std::string write(const std::string& relativePath, std::string_view bytes) const;

private:
    Environment environment_;
    std::string root_;
};

std::string readBytes(const std::string& path);
void writeBytes(const std::string& path, std::string_view bytes);

} // namespace managertest
