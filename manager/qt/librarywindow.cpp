// SPDX-License-Identifier: MIT
#include "manager/qt/librarywindow.h"

#include "manager/cli/announce.h"
#include "manager/library/folders.h"
#include "manager/qt/filedrop.h"
#include "manager/qt/progressline.h"
#include "manager/qt/startsize.h"
#include "manager/qt/text.h"
#include "manager/qt/userprocess.h"
#include "manager/view/texts.h"
#include "platform/notify.h"

#include <QCloseEvent>
#include <QEventLoop>
#include <QProcess>
#include <QSplitter>
#include <QStatusBar>
#include <QVBoxLayout>

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace manager {

namespace {

// What can go wrong but is no command.
const auto askedDeed = QStringLiteral("asked");
const auto setsDeed = QStringLiteral("sets");

/// Adds to equal names what tells them apart: the file's, or where it lies.
void tellApart(std::vector<ShownFace>& faces) {
    std::map<std::string, std::vector<ShownFace*>> namesakes;
    for (ShownFace& face : faces) {
        namesakes[face.name].push_back(&face);
    }
    for (const auto& [name, same] : namesakes) {
        std::set<std::string> files;
        for (const ShownFace* const face : same) {
            files.insert(nameOf(face->file));
        }
        for (ShownFace* const face : same) {
            if (same.size() > 1) {
                face->name += "  " + (files.size() == same.size() ? nameOf(face->file)
                                                                  : folderOf(face->file));
            }
        }
    }
}

} // namespace

LibraryWindow::LibraryWindow(const WindowOptions& options)
    : places_(options.places), keeps_(options.pictures.empty()),
      reader_(options.places, [this](const QString& problem) { fail(problem); }),
      deeds_(options.program, reader_,
             [this](const QString& deed, const QStringList& problems) {
                 statusBar()->clearMessage();
                 problems_->show(deed, problems);
                 read(); // also what was refused, as it is
             }),
      groupDeeds_(options.places, deeds_, [this](const QString& deed) {
          statusBar()->clearMessage();
          problems_->show(deed, {});
          readSets();
      }) {
    setWindowTitle(text(translated("Glyphora Font Library")));
    sidebar_ = new Sidebar([this] { filter(); }, this);
    splitter_ = new QSplitter(this);
    splitter_->addWidget(sidebar_);
    splitter_->addWidget(makeList());
    pane_ = new FacePane(
        faces_, libraryFaces_, [this](const QString& own) { delegate_->setText(own); }, this);
    splitter_->addWidget(pane_);
    splitter_->setStretchFactor(0, 0);
    splitter_->setStretchFactor(1, 3);
    splitter_->setStretchFactor(2, 2);
    splitter_->setSizes({220, 545, 415});
    splitter_->setChildrenCollapsible(false);
    auto* const middle = new QWidget(this);
    auto* const column = new QVBoxLayout(middle);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(splitter_, 1);
    problems_ = new ProblemList(middle);
    column->addWidget(problems_);
    setCentralWidget(middle);
    auto* const progress = new ProgressLine([this] { deeds_.cancel(); }, this);
    deeds_.follow([progress](const auto& deed) { progress->show(deed); });
    statusBar()->addPermanentWidget(progress);
    count_ = new QLabel(this);
    statusBar()->addPermanentWidget(count_);
    makeActions();
    new FileDrop(*this, [this](const QStringList& paths) { bring(paths); });
    resize(startSize(*this, wantedSize));
    if (keeps_) {
        recall();
    }
    list_->setFocus();

    for (const char* const name : {changeNotification, setsNotification}) {
        if (int token = 0; notify_register_check(name, &token) == NOTIFY_STATUS_OK) {
            changes_.push_back(token);
        }
    }
    constexpr int interval = 300; // milliseconds: a burst is read once
    connect(&news_, &QTimer::timeout, this, [this] { takeNews(); });
    if (!changes_.empty()) {
        news_.start(interval);
    }
    take(options.request);
    read();
    scanWhereOwed();
}

LibraryWindow::~LibraryWindow() {
    deeds_.finish();
    delete takeCentralWidget(); // its views use the members
    for (const int token : changes_) {
        notify_cancel(token);
    }
}

void LibraryWindow::needServer(const std::string& program) {
    reader_.run([program](Desk& /*desk*/) -> LibraryReader::Taker {
        if (findServer() || startServer()) {
            return {};
        }
        return [program] {
            QProcess server;
            server.setProgram(text(program));
            server.setArguments({QStringLiteral("serve")});
            server.setProcessEnvironment(userEnvironment());
            for (const auto channel :
                 {&QProcess::setStandardOutputFile, &QProcess::setStandardErrorFile}) {
                (server.*channel)(QProcess::nullDevice(), QIODevice::WriteOnly);
            }
            server.startDetached(); // it stays, as one that the bus starts
        };
    });
}

void LibraryWindow::take(const WindowRequest& request) {
    if (!request.command.empty()) {
        try {
            showDrawing(parseCommand(request.command).fonts, text(translated("Drawing")));
            problems_->show(askedDeed, {});
        } catch (const Error& error) {
            problems_->show(askedDeed, {QString::fromUtf8(error.what())});
        }
    } else if (!request.drawings.empty()) {
        QStringList drawings;
        for (const std::string& drawing : request.drawings) {
            drawings.push_back(text(drawing));
        }
        readDrawings(drawings);
    } else if (!request.search.empty()) {
        isDrawingAwaited_ = false;
        sidebar_->choose({});
    } else {
        return;
    }
    filters_->clear(); // they would hide what is asked for
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
    if (keeps_) {
        remember();
    }
    QMainWindow::closeEvent(event);
}

void LibraryWindow::read() {
    reader_.read([this](std::shared_ptr<const LibraryView> view) { nextView_ = std::move(view); });
    readSets();
}

void LibraryWindow::scanWhereOwed() {
    reader_.run([this](Desk& desk) -> LibraryReader::Taker {
        if (!desk.library().isScanOwed()) {
            return {};
        }
        return [this] { deeds_.run({QStringLiteral("scan"), QStringLiteral("--json")}); };
    });
}

void LibraryWindow::takeNews() {
    bool changed = false;
    for (const int token : changes_) {
        for (int check = 1; check != 0;) {
            check = 0;
            notify_check(token, &check);
            changed = changed || check != 0;
        }
    }
    if (changed) {
        read();
    }
}

void LibraryWindow::readSets() {
    reader_.run([this, places = places_](Desk& desk) -> LibraryReader::Taker {
        Groups groups;
        std::vector<std::string> folders;
        QString problem;
        try {
            groups = currentGroups(desk.library(), readGroups(places));
            folders = readFolders(places);
        } catch (const Error& error) {
            problem = QString::fromUtf8(error.what());
        }
        return [this, groups = std::move(groups), folders = std::move(folders), problem] {
            if (problem.isEmpty()) {
                problems_->show(setsDeed, {});
                takeSets(groups, folders);
            } else {
                problems_->show(setsDeed, {problem});
                takeSets(groups_, folders_); // as they were
            }
        };
    });
}

void LibraryWindow::takeSets(Groups groups, std::vector<std::string> folders) {
    groups_ = std::move(groups);
    folders_ = std::move(folders);
    const bool isNew = nextView_ != nullptr;
    std::shared_ptr<const LibraryView> before;
    if (isNew) {
        before = std::exchange(view_, std::exchange(nextView_, nullptr));
        searchIndex();
    }
    if (view_ == nullptr) {
        return;
    }
    sidebar_->show(*view_, groups_, folders_);
    // Not before: a reading that was under way brings a library without it, or with another one.
    if (view_->drawingNumber == drawingNumber_ && !view_->drawing.empty() &&
        std::exchange(isDrawingAwaited_, false)) {
        list_->selectionModel()->clear(); // the best for it is chosen
        sidebar_->choose({.kind = SidebarPlace::Kind::Drawing});
    }
    filter();
    if (!isNew) {
        return;
    }
    problems_->show(readDeed(), {});
    offerTags();
    reader_.drop(std::move(before));
    tellShown({});
}

void LibraryWindow::showChosen() {
    const FaceTable& table = model_.listing().view().table;
    ChosenFaces chosen;
    const auto called = [&](const ListedFace& face) {
        return table.families()[face.family].name + " " + face.style;
    };
    const auto add = [&](FaceRow row) {
        const ListedFace& face = table.faces()[row];
        // A family's sample may be chosen by itself, too.
        const bool isNew =
            std::none_of(chosen.faces.begin(), chosen.faces.end(),
                         [&](const ShownFace& known) { return known.id == face.id; });
        if (isNew && chosen.faces.size() < FacePane::most) {
            chosen.faces.push_back({face.id, called(face), table.pathOf(face), face.index});
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
    tellApart(chosen.faces);
    if (rows.size() == 1) {
        const ListRow row = model_.row(rows.front());
        chosen.title = row.title;
        chosen.why = row.state;
        if (isDrawing) {
            chosen.why += QStringLiteral("\n") + row.detail;
        }
        if (row.sample && !(isDrawing && row.isFamily)) {
            const ListedFace& face = table.faces()[*row.sample];
            chosen.title = text(row.isFamily ? table.families()[face.family].name : called(face));
            chosen.path = text(table.pathOf(face));
        }
    } else if (!rows.empty()) {
        const bool areCompared = !isDrawing && chosen.faces.size() < FacePane::most;
        const std::size_t fonts =
            areCompared ? chosen.faces.size() : static_cast<std::size_t>(rows.size());
        chosen.title = text(translated("%1 font", "%1 fonts", fonts));
    }
    pane_->show(std::move(chosen));
    activate_->setEnabled(!choice(true).isEmpty());
    deactivate_->setEnabled(!choice(false).isEmpty());
    collect_->setEnabled(!rows.empty());
    // Of a family all copies would be kept.
    keep_->setEnabled(!rows.empty() &&
                      std::all_of(rows.begin(), rows.end(),
                                  [](const QModelIndex& row) { return row.parent().isValid(); }));
}

} // namespace manager
