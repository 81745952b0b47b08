// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <string>

namespace manager {

/// As the toolkit has texts; bytes that are not UTF-8 become U+FFFD.
[[nodiscard]] inline QString text(const std::string& plain) {
    return QString::fromStdString(plain);
}

} // namespace manager
