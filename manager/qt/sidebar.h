// SPDX-License-Identifier: MIT
// What of the library is listed: by state, collection, tag or folder.
#pragma once

#include "manager/cli/groups.h"
#include "manager/view/facelisting.h"

#include <QTreeWidget>

#include <functional>
#include <string>
#include <vector>

namespace manager {

/// What a place of the sidebar stands for.
struct SidebarPlace {
    enum class Kind : std::uint8_t { All, Drawing, State, Group, Folder };
    Kind kind = Kind::All;
    FaceState state = FaceState::Inactive;
    std::string name = {}; ///< "tag:NAME", or the folder's path
    bool operator==(const SidebarPlace&) const = default;
};

/// [main-thread]
class Sidebar : public QTreeWidget {
public:
    Sidebar(std::function<void()> chosen, QWidget* parent);

    /// Shows them, with numbers of faces; the place that was chosen stays so, if it is still there.
    void show(const LibraryView& view, const Groups& groups,
              const std::vector<std::string>& folders);
    /// Chooses a place, or what is to be one with the next library that is shown.
    void choose(const SidebarPlace& place);
    [[nodiscard]] const SidebarPlace& place() const { return place_; }

private:
    void add(QTreeWidgetItem* section, const SidebarPlace& place, const QString& text,
             std::optional<std::size_t> count);

    std::function<void()> chosen_;
    std::vector<SidebarPlace> places_;
    SidebarPlace place_;
    bool isFilling_ = false;
};

} // namespace manager
