// SPDX-License-Identifier: MIT
#pragma once

#include <QScreen>
#include <QWidget>

namespace manager {

/// [main-thread] The size that a window begins with: the one wanted, or what its screen has room
/// for beside frame and title, which nobody can tell before it is shown.
[[nodiscard]] inline QSize startSize(const QWidget& window, const QSize& wanted) {
    constexpr QSize frame{16, 48};
    return wanted.boundedTo(window.screen()->availableSize() - frame);
}

} // namespace manager
