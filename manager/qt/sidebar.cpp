// SPDX-License-Identifier: MIT
#include "manager/qt/sidebar.h"

#include "manager/qt/facemodel.h"
#include "manager/view/texts.h"

#include <QHeaderView>
#include <QLocale>
#include <QStyledItemDelegate>
#include <QTreeWidgetItemIterator>

#include <array>

namespace manager {

namespace {

constexpr int placeRole = Qt::UserRole;

QString text(const std::string& plain) {
    return QString::fromStdString(plain);
}

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
        if (index.column() == 1) {
            option->palette.setColor(QPalette::Text,
                                     option->palette.color(QPalette::PlaceholderText));
        }
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
    connect(this, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
        if (isFilling_ || item == nullptr || item->data(0, placeRole).isNull()) {
            return;
        }
        place_ = places_[item->data(0, placeRole).toUInt()];
        chosen_();
    });
}

void Sidebar::add(QTreeWidgetItem* section, const SidebarPlace& place, const QString& name,
                  std::optional<std::size_t> count) {
    auto* const item = new QTreeWidgetItem(section, {name});
    item->setData(0, placeRole, static_cast<unsigned>(places_.size()));
    item->setToolTip(0, name);
    if (count) {
        item->setText(1, QLocale().toString(static_cast<qulonglong>(*count)));
        item->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
    }
    places_.push_back(place);
    if (place == place_) {
        setCurrentItem(item);
    }
}

void Sidebar::show(const LibraryView& view, const Groups& groups,
                   const std::vector<std::string>& folders) {
    isFilling_ = true;
    clear();
    places_.clear();
    const auto section = [this](const std::string& name) {
        auto* const item = new QTreeWidgetItem(this, {text(name)});
        item->setFlags(Qt::ItemIsEnabled);
        QFont font = item->font(0);
        font.setBold(true);
        item->setFont(0, font);
        item->setFirstColumnSpanned(true);
        return item;
    };
    QTreeWidgetItem* const library = section(translated("Library"));
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
    for (const GroupKind kind : {GroupKind::Collection, GroupKind::Tag}) {
        QTreeWidgetItem* parent = nullptr;
        for (const Group& group : groups) {
            if (group.kind != kind) {
                continue;
            }
            if (parent == nullptr) {
                parent = section(kind == GroupKind::Tag ? translated("Tags")
                                                        : translated("Collections"));
            }
            add(parent, {SidebarPlace::Kind::Group, {}, GroupTitle{kind, group.name}.text()},
                text(group.name), std::nullopt);
        }
    }
    if (!folders.empty()) {
        QTreeWidgetItem* const parent = section(translated("Folders"));
        for (const std::string& folder : folders) {
            add(parent, {SidebarPlace::Kind::Folder, {}, folder}, text(nameOf(folder)),
                std::nullopt);
            parent->child(parent->childCount() - 1)->setToolTip(0, text(folder));
        }
    }
    expandAll();
    isFilling_ = false;
    if (currentItem() == nullptr) {
        setCurrentItem(library->child(0));
    }
}

void Sidebar::choose(const SidebarPlace& place) {
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
