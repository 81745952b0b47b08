// SPDX-License-Identifier: MIT
#include "manager/qt/librarywindow.h"

#include "manager/cli/announce.h"
#include "manager/library/folders.h"
#include "manager/qt/listposition.h"
#include "manager/view/texts.h"
#include "platform/notify.h"

#include <QCloseEvent>
#include <QEventLoop>
#include <QSettings>
#include <QShortcut>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace manager {

namespace {

QString text(const std::string& plain) {
    return QString::fromStdString(plain);
}

} // namespace

LibraryWindow::LibraryWindow(const WindowOptions& options)
    : places_(options.places), deeds_(options.program,
                                      [this](const QStringList& problems) {
                                          tell(problems);
                                          read();
                                      }),
      reader_(options.places, [this](const QString& problem) { tell({problem}); }) {
    setWindowTitle(text(translated("Glyphora Font Library")));
    sidebar_ = new Sidebar([this] { filter(); }, this);
    splitter_ = new QSplitter(this);
    splitter_->addWidget(sidebar_);
    splitter_->addWidget(makeList());
    pane_ = new FacePane(
        faces_, reader_, [this](const QString& own) { delegate_->setText(own); }, this);
    splitter_->addWidget(pane_);
    splitter_->setStretchFactor(0, 0);
    splitter_->setStretchFactor(1, 3);
    splitter_->setStretchFactor(2, 2);
    splitter_->setSizes({220, 545, 415});
    splitter_->setChildrenCollapsible(false);
    setCentralWidget(splitter_);
    count_ = new QLabel(this);
    statusBar()->addPermanentWidget(count_);
    makeActions();
    resize(1180, 720);
    const QSettings settings;
    restoreGeometry(settings.value(QStringLiteral("geometry")).toByteArray());
    splitter_->restoreState(settings.value(QStringLiteral("columns")).toByteArray());
    list_->setFocus();

    if (notify_register_check(changeNotification, &changes_) != NOTIFY_STATUS_OK) {
        changes_ = -1;
    }
    constexpr int interval = 300; // milliseconds: a burst is read once
    connect(&news_, &QTimer::timeout, this, [this] {
        bool changed = false;
        for (int check = 1; check != 0;) {
            check = 0;
            notify_check(changes_, &check);
            changed = changed || check != 0;
        }
        if (changed) {
            read();
        }
    });
    if (changes_ >= 0) {
        news_.start(interval);
    }
    take(options.request);
    read();
}

LibraryWindow::~LibraryWindow() {
    delete takeCentralWidget(); // its views use the members
    if (changes_ >= 0) {
        notify_cancel(changes_);
    }
}

void LibraryWindow::take(const WindowRequest& request) {
    if (!request.command.empty()) {
        try {
            reader_.setDrawing(parseCommand(request.command).fonts);
            read();
            sidebar_->choose({.kind = SidebarPlace::Kind::Drawing});
        } catch (const Error& error) {
            tell({QString::fromUtf8(error.what())});
        }
    } else if (!request.search.empty()) {
        sidebar_->choose({});
    } else {
        return;
    }
    search_->setText(text(request.search));
    list_->setFocus();
}

void LibraryWindow::open(const WindowRequest& request) {
    take(request);
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void LibraryWindow::finishReading() {
    QEventLoop loop;
    reader_.run([&loop](Desk&) { return [&loop] { loop.quit(); }; });
    loop.exec();
}

void LibraryWindow::closeEvent(QCloseEvent* event) {
    QSettings settings;
    settings.setValue(QStringLiteral("geometry"), saveGeometry());
    settings.setValue(QStringLiteral("columns"), splitter_->saveState());
    QMainWindow::closeEvent(event);
}

QWidget* LibraryWindow::makeList() {
    auto* const middle = new QWidget(this);
    auto* const column = new QVBoxLayout(middle);
    column->setContentsMargins(0, 6, 0, 0);
    search_ = new QLineEdit(middle);
    search_->setPlaceholderText(text(translated("Search fonts")));
    search_->setAccessibleName(text(translated("Search fonts")));
    search_->setClearButtonEnabled(true);
    connect(search_, &QLineEdit::textChanged, this, [this] { filter(); });
    connect(search_, &QLineEdit::returnPressed, this, [this] { list_->setFocus(); });
    list_ = new QTreeView(middle);
    list_->setModel(&model_);
    list_->setHeaderHidden(true);
    list_->setUniformRowHeights(true);
    list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list_->setFrameShape(QFrame::NoFrame);
    list_->setExpandsOnDoubleClick(false);
    list_->setAlternatingRowColors(false);
    list_->setAccessibleName(text(translated("Fonts")));
    delegate_ = new FaceDelegate(model_, faces_, *list_);
    list_->setItemDelegate(delegate_);
    connect(list_, &QTreeView::doubleClicked, this, [this] { toggleChosen(); });
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        connect(new QShortcut(key, list_, nullptr, nullptr, Qt::WidgetShortcut),
                &QShortcut::activated, this, [this] { toggleChosen(); });
    }
    connect(list_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { showChosen(); });
    empty_ = new QLabel(middle);
    empty_->setAlignment(Qt::AlignCenter);
    empty_->setWordWrap(true);
    empty_->setTextFormat(Qt::PlainText);
    empty_->setMargin(24);
    pages_ = new QStackedWidget(middle);
    pages_->addWidget(list_);
    pages_->addWidget(empty_);
    column->addWidget(search_);
    column->addWidget(pages_, 1);
    return middle;
}

void LibraryWindow::read() {
    reader_.read([this](std::shared_ptr<const LibraryView> view) { take(std::move(view)); });
}

void LibraryWindow::take(std::shared_ptr<const LibraryView> view) {
    view_ = std::move(view);
    std::vector<std::string> folders;
    try {
        groups_ = readGroups(places_);
        folders = readFolders(places_);
    } catch (const Error& error) {
        tell({QString::fromUtf8(error.what())});
    }
    sidebar_->show(*view_, groups_, folders);
    filter();
    if (whenShown_) {
        std::exchange(whenShown_, {})();
    }
}

void LibraryWindow::filter() {
    if (view_ == nullptr) {
        return;
    }
    ListFilter filter{.text = search_->text().toStdString()};
    const SidebarPlace& place = sidebar_->place();
    const FaceTable& table = view_->table;
    switch (place.kind) {
    case SidebarPlace::Kind::All:
        break;
    case SidebarPlace::Kind::Drawing:
        filter.isDrawing = true;
        break;
    case SidebarPlace::Kind::State:
        filter.state = place.state;
        break;
    case SidebarPlace::Kind::Group: {
        const auto title = toGroupTitle(place.name);
        const Group* const group = title ? findGroup(groups_, title->kind, title->name) : nullptr;
        filter.among.emplace();
        if (group != nullptr) {
            for (const GroupMember& member : group->members) {
                filter.among->push_back(member.id);
            }
        }
        std::sort(filter.among->begin(), filter.among->end());
        break;
    }
    case SidebarPlace::Kind::Folder: {
        std::set<ContainerId> containers;
        for (const ListedFace& face : table.faces()) {
            if (liesUnder(table.folderOf(face), place.name)) {
                containers.insert(face.container);
            }
        }
        filter.among.emplace(containers.begin(), containers.end());
        break;
    }
    }
    const ListPosition before = positionOf(*list_, model_);
    model_.show(view_, std::move(filter));
    restore(*list_, model_, before);
    if (place.kind == SidebarPlace::Kind::Drawing) {
        list_->expandAll();
        if (!list_->currentIndex().isValid()) { // the best for the first font
            const QModelIndex font = model_.index(0, 0);
            const QModelIndex best = model_.index(0, 0, font);
            list_->setCurrentIndex(best.isValid() ? best : font);
        }
    }
    showEmpty();
    showCount();
    showChosen();
}

void LibraryWindow::showEmpty() {
    const bool isEmpty = model_.rowCount() == 0;
    pages_->setCurrentIndex(isEmpty ? 1 : 0);
    if (!isEmpty) {
        return;
    }
    if (view_->table.faces().empty()) {
        empty_->setText(text(translated("There are no fonts in the library yet. Add a folder of "
                                        "fonts to begin (Library, Add Folder).")));
    } else if (!search_->text().isEmpty()) {
        empty_->setText(text(translated("No font here has this in its names. Search in \"All "
                                        "fonts\", or with fewer letters.")));
    } else {
        empty_->setText(text(translated("There is no font here.")));
    }
}

void LibraryWindow::showCount() {
    const FaceListing& listing = model_.listing();
    const std::size_t families = listing.families().size();
    const std::size_t faces = listing.faces().size();
    count_->setText(text(listing.filter().isDrawing
                             ? translated("%1 font", "%1 fonts", families) + ", " +
                                   translated("%1 candidate", "%1 candidates", faces)
                             : translated("%1 family", "%1 families", families) + ", " +
                                   translated("%1 style", "%1 styles", faces)));
}

void LibraryWindow::showChosen() {
    const FaceTable& table = model_.listing().view().table;
    ChosenFaces chosen;
    const auto nameOf = [&](const ListedFace& face) {
        return table.families()[face.family].name + " " + face.style;
    };
    const auto add = [&](FaceRow row) {
        const ListedFace& face = table.faces()[row];
        if (chosen.faces.size() < FacePane::most) {
            chosen.faces.push_back({face.id, nameOf(face), table.pathOf(face), face.index});
        }
    };
    const QModelIndexList rows = list_->selectionModel()->selectedRows();
    const bool isDrawing = model_.listing().filter().isDrawing;
    for (const QModelIndex& index : rows) {
        const auto sample = model_.row(index).sample;
        if (isDrawing) { // beside each other what a font may be replaced by
            const auto faces = model_.facesOf(index);
            std::for_each(faces.begin(), faces.end(), add);
        } else if (sample) {
            add(*sample);
        }
    }
    if (rows.size() == 1) {
        const ListRow row = model_.row(rows.front());
        chosen.title = row.title;
        chosen.why = row.state;
        if (isDrawing) {
            chosen.why += QStringLiteral("\n") + row.detail;
        }
        if (row.sample && !(isDrawing && row.isFamily)) {
            const ListedFace& face = table.faces()[*row.sample];
            chosen.title = text(row.isFamily ? table.families()[face.family].name : nameOf(face));
            chosen.why += QStringLiteral("\n") + text(table.pathOf(face));
        }
    } else if (!rows.empty()) {
        chosen.title =
            text(translated("%1 font", "%1 fonts", static_cast<std::size_t>(rows.size())));
    }
    pane_->show(std::move(chosen));
    activate_->setEnabled(!chosenContainers(false).empty());
    deactivate_->setEnabled(!chosenContainers(true).empty());
}

} // namespace manager
