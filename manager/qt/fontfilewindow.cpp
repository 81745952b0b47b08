// SPDX-License-Identifier: MIT
#include "manager/qt/fontfilewindow.h"

#include "manager/qt/progressline.h"
#include "manager/qt/startsize.h"
#include "manager/qt/text.h"
#include "manager/qt/userprocess.h"
#include "manager/view/facefacts.h"
#include "manager/view/problemwords.h"
#include "manager/view/texts.h"

#include <QCloseEvent>
#include <QEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QProcess>
#include <QShortcut>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace manager {

namespace {

/// Its name, or its file's where it has none.
QString calledIn(const faces::Face& face, const std::string& file) {
    const QString name = text(nameForPeople(face)).trimmed();
    return name.isEmpty() ? QFileInfo(text(file)).fileName() : name;
}

QLabel* plainLabel(QWidget* parent) {
    auto* const label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

} // namespace

FontFileWindow::FontFileWindow(const WindowOptions& options, std::vector<std::string> files,
                               ShowInLibrary showInLibrary)
    : files_(std::move(files)), program_(options.program), showInLibrary_(std::move(showInLibrary)),
      standings_(files_.size()), contents_(files_.size()),
      reader_(options.places,
              [this](const QString& problem) {
                  tell({problem});
                  showStanding(); // what was begun has ended
                  if (!isRead_ && whenRead_) {
                      std::exchange(whenRead_, {})(problem);
                  }
              }),
      deeds_(options.program, reader_, [this](const QString&, const QStringList& problems) {
          tell(problems);
          readStandings();
      }) {
    setWindowTitle(files_.size() == 1
                       ? QFileInfo(text(files_.front())).fileName()
                       : text(translated("%1 font file", "%1 font files", files_.size())));
    makeContent();
    for (const QKeySequence& keys :
         {QKeySequence(QKeySequence::Close), QKeySequence(Qt::Key_Escape)}) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, &QWidget::close);
    }
    resize(startSize(*this, {820, 660}));
    showStanding();
    startReading();
}

FontFileWindow::~FontFileWindow() {
    if (reading_ != nullptr) {
        reading_->disconnect(this);
        reading_->kill();
        reading_->waitForFinished(-1);
    }
    deeds_.finish();
    delete content_; // its views use the members
}

void FontFileWindow::makeContent() {
    auto* const outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    content_ = new QWidget(this);
    outer->addWidget(content_);
    auto* const column = new QVBoxLayout(content_);
    problems_ = plainLabel(content_);
    problems_->hide();
    column->addWidget(problems_);
    auto* const columns = new QSplitter(content_);
    list_ = new QListWidget(columns);
    list_->setSpacing(2);
    list_->setAccessibleName(text(translated("Faces of the file")));
    list_->setFrameShape(QFrame::NoFrame);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->hide();
    connect(list_, &QListWidget::currentRowChanged, this, [this] { showChosen(); });
    pane_ = new FacePane(
        faces_, *this, [](const QString&) {}, columns);
    columns->addWidget(list_);
    columns->addWidget(pane_);
    columns->setStretchFactor(1, 1);
    columns->setSizes({230, 590});
    columns->setChildrenCollapsible(false);
    column->addWidget(columns, 1);
    progress_ = new ProgressLine([this] { deeds_.cancel(); }, content_);
    deeds_.follow([this](const auto& progress) { progress_->show(progress); });
    column->addWidget(progress_);
    column->addLayout(makeButtons());
}

QLayout* FontFileWindow::makeButtons() {
    auto* const row = new QHBoxLayout;
    standing_ = plainLabel(content_);
    add_ = new QPushButton(text(translated("&Add to Library")), content_);
    switch_ = new QPushButton(content_);
    show_ = new QPushButton(text(translated("Show in &Library")), content_);
    connect(add_, &QPushButton::clicked, this, [this] { addChosen(); });
    connect(switch_, &QPushButton::clicked, this, [this] { switchChosen(); });
    connect(show_, &QPushButton::clicked, this, [this] {
        if (const Entry* const face = chosen()) {
            showInLibrary_(face->face.names.empty() ? face->face.postScriptName
                                                    : face->face.names.front().family);
        }
    });
    row->addWidget(standing_, 1);
    for (QPushButton* const button : {show_, add_, switch_}) {
        button->setAutoDefault(false);
        row->addWidget(button, 0, Qt::AlignBottom);
    }
    return row;
}

void FontFileWindow::startReading() {
    QStringList arguments{QStringLiteral("read-fonts"), QStringLiteral("--")};
    for (const std::string& file : files_) {
        arguments.push_back(QFile::decodeName(file.c_str()));
    }
    reading_ = new QProcess(this);
    // Also when it cannot be started: then every file has a problem.
    const auto finish = [this] {
        if (QProcess* const done = std::exchange(reading_, nullptr)) {
            done->deleteLater();
            take(decodeFontFiles(done->readAllStandardOutput().toStdString(), files_));
        }
    };
    connect(reading_, &QProcess::finished, this, finish);
    connect(reading_, &QProcess::errorOccurred, this, [finish](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            finish();
        }
    });
    reading_->setProcessEnvironment(userEnvironment());
    reading_->start(text(program_), arguments);
}

void FontFileWindow::take(const std::vector<FontFileOutcome>& outcomes) {
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        if (const auto* const problem = std::get_if<FontFileProblem>(&outcomes[i])) {
            bad_.push_back(text(problemInWords(problem->text)));
            continue;
        }
        contents_[i] = std::get<ReadFont>(outcomes[i]).contents;
        for (const faces::Face& face : contents_[i].faces) {
            if (isNamedTwice(face, contents_[i].faces)) {
                continue;
            }
            entries_.push_back({i, face});
            list_->addItem(calledIn(face, files_[i]));
            list_->item(list_->count() - 1)
                ->setToolTip(calledIn(face, files_[i]) + QLatin1Char('\n') + text(files_[i]));
        }
    }
    tell({});
    list_->setVisible(entries_.size() > 1);
    list_->setCurrentRow(entries_.empty() ? -1 : 0);
    pane_->setVisible(!entries_.empty());
    (list_->isHidden() ? &pane_->views() : static_cast<QWidget*>(list_))->setFocus();
    readStandings();
}

void FontFileWindow::readStandings() {
    // What the thread works with may not be the window's own.
    const auto files = std::make_shared<const std::vector<std::string>>(files_);
    const auto contents = std::make_shared<const std::vector<faces::FontFileContents>>(contents_);
    reader_.run([this, files, contents](Desk& desk) -> LibraryReader::Taker {
        return [this, standings = manager::readStandings(desk, *files, *contents)]() mutable {
            standings_ = std::move(standings);
            isRead_ = true;
            showStanding();
            if (whenRead_) {
                std::exchange(whenRead_, {})({});
            }
        };
    });
}

const FontFileWindow::Entry* FontFileWindow::entry(FaceId id) const {
    const auto place = static_cast<std::size_t>(id);
    return place < entries_.size() ? &entries_[place] : nullptr;
}

const FontFileWindow::Entry* FontFileWindow::chosen() const {
    return entry(FaceId{list_->currentRow()});
}

void FontFileWindow::readFace(FaceId id, FaceTaker take) {
    const Entry* const wanted = entry(id);
    if (wanted == nullptr) {
        return;
    }
    std::vector<faces::Face> instances;
    for (const faces::Face& other : contents_[wanted->file].faces) {
        if (!wanted->face.axes.empty() && isInstanceOf(other, wanted->face.index)) {
            instances.push_back(other);
        }
    }
    take(wanted->face, instances);
}

void FontFileWindow::readCharacters(FaceId id, CharacterTaker take) {
    const Entry* const wanted = entry(id);
    faces::Coverage coverage = wanted == nullptr ? faces::Coverage() : wanted->face.coverage;
    reader_.run([coverage = std::move(coverage), take = std::move(take)](Desk&) {
        auto characters = std::make_shared<const Characters>(coverage);
        return [take, characters = std::move(characters)] { take(characters); };
    });
}

void FontFileWindow::showChosen() {
    ChosenFaces shown;
    if (const Entry* const face = chosen()) {
        const std::string& file = files_[face->file];
        shown.title = calledIn(face->face, file);
        for (const std::string& fact : shortFactsOf(face->face)) {
            shown.why += (shown.why.isEmpty() ? QString() : QStringLiteral("\n")) + text(fact);
        }
        shown.path = text(file);
        shown.faces.push_back(
            {FaceId{list_->currentRow()}, shown.title.toStdString(), file, face->face.index});
    }
    pane_->show(std::move(shown));
    showStanding();
}

void FontFileWindow::showStanding() {
    const Entry* const face = chosen();
    const FileStanding none;
    const FileStanding& standing = face == nullptr ? none : standings_[face->file];
    const bool isReady = face != nullptr && isRead_;
    const bool isKnown = standing.known.has_value();
    const bool isOwn = isKnown && !standing.known->isForSession;
    const bool isShown = isKnown && standing.known->face.shownByDesktop;
    standing_->setText(isReady ? wordsOf(standing) : QString());
    add_->setVisible(!isOwn);
    add_->setEnabled(isReady);
    show_->setVisible(isOwn);
    switch_->setText(text(standing.isActive ? translated("&Deactivate")
                                            : translated("Activate for This &Session")));
    switch_->setEnabled(isReady && !isShown);
}

void FontFileWindow::addChosen() {
    if (const Entry* const face = chosen()) {
        add_->setEnabled(false); // until it is done
        deeds_.run({QStringLiteral("add"), QStringLiteral("--json"), QStringLiteral("--"),
                    QFile::decodeName(files_[face->file].c_str())});
    }
}

void FontFileWindow::switchChosen() {
    const Entry* const face = chosen();
    if (face == nullptr) {
        return;
    }
    switch_->setEnabled(false); // until it is done
    const FileStanding& standing = standings_[face->file];
    if (standing.isActive) {
        deeds_.run({QStringLiteral("deactivate"), QStringLiteral("--json"),
                    text(toText(standing.known->face.container))});
    } else {
        deeds_.run({QStringLiteral("activate"), QStringLiteral("--json"),
                    QStringLiteral("--until-logout"), QStringLiteral("--"),
                    QFile::decodeName(files_[face->file].c_str())});
    }
}

void FontFileWindow::tell(const QStringList& problems) {
    const QStringList all = bad_ + problems;
    problems_->setText(all.join(QLatin1Char('\n')));
    problems_->setVisible(!all.isEmpty());
}

// Other windows do not wait for it.
void FontFileWindow::closeEvent(QCloseEvent* event) {
    QWidget::closeEvent(event);
    leaveWhenIdle();
}

void FontFileWindow::leaveWhenIdle() {
    deeds_.work({}, [this](Desk&) -> LibraryReader::Taker { // after all deeds
        return [this] {
            reader_.run([this](Desk&) -> LibraryReader::Taker { // and what they have read again
                return [this] {
                    if (!isVisible()) { // else it was opened once more
                        isLeaving_ = true;
                        deleteLater();
                    }
                };
            });
        };
    });
}

void FontFileWindow::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && reading_ == nullptr) {
        readStandings(); // others may have changed it, or mended the library
    }
    QWidget::changeEvent(event);
}

} // namespace manager
