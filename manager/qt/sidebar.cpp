// SPDX-License-Identifier: MIT
#include "manager/qt/sidebar.h"

#include "manager/qt/colours.h"
#include "manager/qt/groupfaces.h"
#include "manager/qt/text.h"
#include "manager/view/texts.h"

#include <QDragMoveEvent>
#include <QHeaderView>
#include <QLineEdit>
#include <QLocale>
#include <QStyledItemDelegate>
#include <QTreeWidgetItemIterator>

#include <algorithm>
#include <array>

namespace manager {

namespace {

constexpr int placeRole = Qt::UserRole;
constexpr int kindRole = Qt::UserRole + 1; ///< of what stands for a group that is to be made

QString capitalised(const QString& word) {
    return word.isEmpty() ? word : word.left(1).toUpper() + word.mid(1);
}

/// Rows with air between them, and numbers that step back behind the names.
class PlaceDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        constexpr double lineHeights = 1.7;
        const int height = static_cast<int>(lineHeights * option.fontMetrics.height());
        return {QStyledItemDelegate::sizeHint(option, index).width(), height};
    }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        if (!index.parent().isValid()) { // a heading, which would stick to the edge
            constexpr int margin = 5;
            option->rect.setLeft(option->rect.left() + margin);
        }
        const bool isHint =
            index.parent().isValid() && !index.flags().testFlag(Qt::ItemIsSelectable);
        if (index.column() == 1 || isHint) {
            option->palette.setColor(QPalette::Text,
                                     readable(option->palette.color(QPalette::PlaceholderText),
                                              option->palette.color(QPalette::Base)));
        }
        option->palette.setColor(QPalette::HighlightedText, coloursOf(*option).text);
    }
};

} // namespace

Sidebar::Sidebar(std::function<void()> chosen, QWidget* parent)
    : QTreeWidget(parent), chosen_(std::move(chosen)) {
    setHeaderHidden(true);
    setColumnCount(2);
    setRootIsDecorated(false);
    setIndentation(12);
    setFrameShape(QFrame::NoFrame);
    setUniformRowHeights(true);
    setItemDelegate(new PlaceDelegate(this));
    setAccessibleName(text(translated("Places")));
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(0, QHeaderView::Stretch);
    header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    setEditTriggers(QAbstractItemView::EditKeyPressed);
    setDragDropMode(QAbstractItemView::DropOnly);
    setDragDropOverwriteMode(true); // onto rows, never between
    setDropIndicatorShown(true);
    connect(this, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* item, int column) {
        const auto title = isFilling_ || column != 0 ? std::nullopt : targetOf(item);
        if (!title || title->name.empty()) {
            return;
        }
        const std::string name = item->text(0).trimmed().toStdString();
        if (name.empty() || name == title->name) {
            item->setText(0, text(title->name));
            return;
        }
        renamed_ = {title->text(), GroupTitle{title->kind, name}.text()};
        handlers_.rename(*title, name);
    });
    connect(this, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
        if (isFilling_ || item == nullptr || item->data(0, placeRole).isNull()) {
            return;
        }
        toEdit_.reset();
        place_ = places_[item->data(0, placeRole).toUInt()];
        chosen_();
    });
}

void Sidebar::add(QTreeWidgetItem* section, const SidebarPlace& place, const QString& name,
                  std::size_t count) {
    auto* const item = new QTreeWidgetItem(section, {name});
    item->setData(0, placeRole, static_cast<unsigned>(places_.size()));
    item->setToolTip(0, name);
    item->setText(1, QLocale().toString(static_cast<qulonglong>(count)));
    item->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
    places_.push_back(place);
    if (place == place_) {
        setCurrentItem(item);
    }
}

void Sidebar::show(const LibraryView& view, const Groups& groups,
                   const std::vector<std::string>& folders) {
    std::optional<GroupTitle> toEdit = toEdit_;
    std::optional<QString> written; // of a name that is being edited
    if (const auto* const before = editor(); before != nullptr) {
        written = before->text();
        toEdit = targetOf(currentItem());
    }
    followRenamed(groups);
    isFilling_ = true;
    clear();
    places_.clear();
    QTreeWidgetItem* const library = addSection(translated("Library"));
    add(library, {}, text(translated("All fonts")), view.table.faces().size());
    if (!view.drawing.empty()) {
        add(library, {.kind = SidebarPlace::Kind::Drawing}, text(translated("For a drawing")),
            view.drawing.size());
    }
    constexpr std::array states{FaceState::Active, FaceState::Inactive, FaceState::Conflicting,
                                FaceState::Shown, FaceState::Away};
    for (const FaceState state : states) {
        add(library, {SidebarPlace::Kind::State, state, {}}, capitalised(wordOf(state)),
            view.states.count(state));
    }
    if (!view.copies.faces().empty()) {
        add(library, {.kind = SidebarPlace::Kind::Copies}, text(translated("Duplicates")),
            view.copies.faces().size());
    }
    const auto facesOfGroups = facesOf(view.table, groups);
    for (const GroupKind kind : {GroupKind::Collection, GroupKind::Tag}) {
        addGroups(kind, groups, facesOfGroups);
    }
    if (!folders.empty()) {
        QTreeWidgetItem* const parent = addSection(translated("Folders"));
        std::vector<std::size_t> counts(view.table.folders().size());
        for (const ListedFace& face : view.table.faces()) {
            ++counts[face.folder];
        }
        for (const std::string& folder : folders) {
            std::size_t count = 0;
            for (std::size_t i = 0; i < counts.size(); ++i) {
                count += liesUnder(view.table.folders()[i], folder) ? counts[i] : 0;
            }
            add(parent, {SidebarPlace::Kind::Folder, {}, folder}, text(nameOf(folder)), count);
            parent->child(parent->childCount() - 1)->setToolTip(0, text(folder));
        }
    }
    expandAll();
    showWhole(*library);
    isFilling_ = false;
    if (currentItem() == nullptr) {
        setCurrentItem(library->child(0));
    }
    if (toEdit) {
        editName(*toEdit);
    }
    if (auto* const again = editor(); written && again != nullptr) {
        again->setText(*written);
    }
}

// Until it has its new name, which takes as long as what is done before, it is the place it was.
void Sidebar::followRenamed(const Groups& groups) {
    const auto isThere = [&groups](const std::string& place) {
        return std::any_of(groups.begin(), groups.end(), [&](const Group& group) {
            return GroupTitle{group.kind, group.name}.text() == place;
        });
    };
    if (!renamed_.first.empty() && !isThere(renamed_.first) && isThere(renamed_.second)) {
        if (place_.name == renamed_.first) { // else another one was chosen meanwhile
            place_.name = renamed_.second;
        }
        renamed_ = {};
    }
}

void Sidebar::showWhole(const QTreeWidgetItem& section) {
    constexpr int blanks = 4; // around the names and the numbers
    std::array<int, 2> widths{};
    for (int row = 0; row < section.childCount(); ++row) {
        for (int column = 0; column < columnCount(); ++column) {
            int& width = widths.at(static_cast<std::size_t>(column));
            width =
                std::max(width, fontMetrics().horizontalAdvance(section.child(row)->text(column)));
        }
    }
    setMinimumWidth(widths[0] + widths[1] + 2 * indentation() +
                    blanks * fontMetrics().horizontalAdvance(QLatin1Char('0')));
}

QTreeWidgetItem* Sidebar::addSection(const std::string& name) {
    auto* const item = new QTreeWidgetItem(this, {text(name)});
    item->setFlags(Qt::ItemIsEnabled);
    QFont font = item->font(0);
    font.setBold(true);
    item->setFont(0, font);
    item->setFirstColumnSpanned(true);
    return item;
}

void Sidebar::addGroups(GroupKind kind, const Groups& groups,
                        std::span<const std::vector<FaceRow>> faces) {
    const bool isTag = kind == GroupKind::Tag;
    QTreeWidgetItem* const parent =
        addSection(isTag ? translated("Tags") : translated("Collections"));
    parent->setData(0, kindRole, static_cast<int>(kind));
    parent->setFlags(parent->flags() | Qt::ItemIsDropEnabled);
    parent->setToolTip(0, text(isTag ? translated("Drop fonts here to begin a new tag")
                                     : translated("Drop fonts here to begin a new collection")));
    for (std::size_t i = 0; i < groups.size(); ++i) {
        const Group& group = groups[i];
        if (group.kind == kind) {
            add(parent, {SidebarPlace::Kind::Group, {}, GroupTitle{kind, group.name}.text()},
                text(group.name), faces[i].size());
            QTreeWidgetItem* const item = parent->child(parent->childCount() - 1);
            item->setFlags(item->flags() | Qt::ItemIsEditable | Qt::ItemIsDropEnabled);
        }
    }
    if (parent->childCount() == 0) {
        auto* const hint = new QTreeWidgetItem(parent, {text(translated("Drop fonts here"))});
        hint->setFlags(Qt::ItemIsEnabled | Qt::ItemIsDropEnabled);
        hint->setData(0, kindRole, static_cast<int>(kind));
        hint->setFirstColumnSpanned(true);
        hint->setToolTip(0, parent->toolTip(0));
    }
}

std::optional<GroupTitle> Sidebar::targetOf(const QTreeWidgetItem* item) const {
    if (item == nullptr) {
        return std::nullopt;
    }
    if (const QVariant kind = item->data(0, kindRole); !kind.isNull()) {
        return GroupTitle{static_cast<GroupKind>(kind.toInt()), {}};
    }
    const QVariant number = item->data(0, placeRole);
    return number.isNull() || places_[number.toUInt()].kind != SidebarPlace::Kind::Group
               ? std::nullopt
               : toGroupTitle(places_[number.toUInt()].name);
}

std::optional<GroupTitle> Sidebar::group() const {
    return place_.kind == SidebarPlace::Kind::Group ? toGroupTitle(place_.name) : std::nullopt;
}

std::optional<std::string> Sidebar::setName() const {
    switch (place_.kind) {
    case SidebarPlace::Kind::Group:
        return place_.name;
    case SidebarPlace::Kind::Folder:
        return "folder:" + place_.name;
    default:
        return std::nullopt;
    }
}

void Sidebar::choose(const SidebarPlace& place) {
    endEdit();
    place_ = place;
    for (QTreeWidgetItemIterator item(this); *item != nullptr; ++item) {
        const QVariant number = (*item)->data(0, placeRole);
        if (!number.isNull() && places_[number.toUInt()] == place) {
            setCurrentItem(*item);
            return;
        }
    }
}

} // namespace manager
