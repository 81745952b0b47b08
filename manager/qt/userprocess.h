// SPDX-License-Identifier: MIT
// What programs that the window starts get from it.
#pragma once

#include <QProcessEnvironment>
#include <QString>

namespace manager {

/// This process's environment with the user's own LANGUAGE: the one here is the window's.
[[nodiscard]] QProcessEnvironment userEnvironment();

/// [main-thread] Opens `folder`, a path, in the user's file manager.
void openFolder(const QString& folder);

} // namespace manager
