// SPDX-License-Identifier: MIT
// What of the library is listed: by state, collection, tag or folder.
#pragma once

#include "manager/cli/groups.h"
#include "manager/qt/fontchoice.h"
#include "manager/view/facelisting.h"

#include <QTreeWidget>

#include <functional>
#include <span>
#include <string>
#include <utility>
#include <vector>

class QLineEdit;

namespace manager {

/// What a place of the sidebar stands for.
struct SidebarPlace {
    enum class Kind : std::uint8_t { All, Drawing, State, Copies, Group, Folder };
    Kind kind = Kind::All;
    FaceState state = FaceState::Inactive;
    std::string name = {}; ///< "tag:NAME", or the folder's path
    bool operator==(const SidebarPlace&) const = default;
};

/// [main-thread]
class Sidebar : public QTreeWidget {
public:
    Sidebar(std::function<void()> chosen, QWidget* parent);

    /// What is done with a group that the user has renamed, or dropped fonts on. A name that
    /// is empty stands for one that is to be made.
    struct Handlers {
        std::function<void(const GroupTitle& title, const std::string& name)> rename;
        std::function<void(const GroupTitle& title, const FontChoice& dropped)> drop;
        std::function<void(bool on)> switchAll; ///< of the set that is chosen
    };
    void setHandlers(Handlers handlers) { handlers_ = std::move(handlers); }
    /// The group that is chosen; nullopt: none is.
    [[nodiscard]] std::optional<GroupTitle> group() const;
    /// What the commands call the group or the folder that is chosen; nullopt: neither is.
    [[nodiscard]] std::optional<std::string> setName() const;
    /// Lets the user write another name for a group, now or once it is shown.
    void editName(const GroupTitle& title);

    /// Shows them, with numbers of faces; the place that was chosen stays so, if it is still there.
    void show(const LibraryView& view, const Groups& groups,
              const std::vector<std::string>& folders);
    /// Chooses a place, or what is to be one with the next library that is shown.
    void choose(const SidebarPlace& place);
    [[nodiscard]] const SidebarPlace& place() const { return place_; }

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
    QStringList mimeTypes() const override;
    Qt::DropActions supportedDropActions() const override { return Qt::CopyAction; }
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    /// Of the name that is being edited; null: none is.
    [[nodiscard]] QLineEdit* editor() const;
    void endEdit();
    void followRenamed(const Groups& groups);
    /// `faces`: of each of the groups.
    void addGroups(GroupKind kind, const Groups& groups,
                   std::span<const std::vector<FaceRow>> faces);
    QTreeWidgetItem* addSection(const std::string& name);
    /// Leaves the names and numbers of a section the room that they need.
    void showWhole(const QTreeWidgetItem& section);
    /// What dropped fonts would be put in; its name is empty for a new one.
    [[nodiscard]] std::optional<GroupTitle> targetOf(const QTreeWidgetItem* item) const;
    void add(QTreeWidgetItem* section, const SidebarPlace& place, const QString& text,
             std::size_t count);

    std::function<void()> chosen_;
    std::vector<SidebarPlace> places_;
    SidebarPlace place_;
    bool isFilling_ = false;
    std::pair<std::string, std::string> renamed_; ///< what a group was and will be; empty: none
    Handlers handlers_;
    std::optional<GroupTitle> toEdit_; ///< once it is shown, or the window is active again
};

} // namespace manager
