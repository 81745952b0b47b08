// SPDX-License-Identifier: MIT
// What is active, in the desktop's tray while the window's program runs: why, and off with it.
#pragma once

#include "manager/cli/groups.h"
#include "manager/view/facelisting.h"

#include <QMenu>
#include <QStringList>
#include <QSystemTrayIcon>

#include <functional>
#include <string>
#include <utility>

namespace manager {

class LibraryWindow;

/// [main-thread] Its rows are the sets and folders of which all is active, then containers.
class TrayMenu : public QMenu {
public:
    struct Handlers {
        std::function<void(const QStringList& containers)> deactivate; ///< as the commands call it
        std::function<void()> open;
        std::function<void(bool)> keep; ///< in the tray when the window is closed
        std::function<void()> quit;
    };
    explicit TrayMenu(Handlers handlers) : handlers_(std::move(handlers)) {}

    /// Shows what is active in a view. More containers than a screen has room for are counted.
    void fill(const LibraryView& view, const Groups& groups,
              const std::vector<std::string>& folders, bool isKept);

private:
    void addActive(const std::string& name, const QString& container);
    void addSets(const LibraryView& view, const Groups& groups);
    void addFolders(const LibraryView& view, const std::vector<std::string>& folders);
    void addContainers(const LibraryView& view);

    Handlers handlers_;
};

/// [main-thread] An icon with that menu; for where the desktop has a tray. Not to outlive the
/// window. If its user wants so, the program goes on when its windows are closed.
class Tray {
public:
    explicit Tray(LibraryWindow& window);

    [[nodiscard]] TrayMenu& menu() { return menu_; }

private:
    TrayMenu menu_;
    QSystemTrayIcon icon_;
};

} // namespace manager
