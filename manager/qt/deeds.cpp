// SPDX-License-Identifier: MIT
#include "manager/qt/deeds.h"

#include "manager/cli/groupchange.h"
#include "manager/qt/mnemonics.h"
#include "manager/qt/userprocess.h"
#include "manager/view/texts.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QProcess>
#include <QUndoCommand>

#include <algorithm>
#include <array>
#include <utility>

namespace manager {

namespace {

constexpr const char* commands[] = {"deactivate", "activate"};
constexpr std::array cancellable = {"activate",   "add",           "change", "collect",
                                    "deactivate", "read-drawings", "scan"};

/// What takes such a change back.
QJsonObject turned(const QJsonObject& change) {
    const QString added = QStringLiteral("added");
    const QString removed = QStringLiteral("removed");
    return {{added, change.value(removed)}, {removed, change.value(added)}};
}

} // namespace

/// What was switched, and would be switched back. It was done when it came.
class SwitchDeed : public QUndoCommand {
public:
    SwitchDeed(Deeds& deeds, std::vector<Deeds::Change> changes, const QString& text)
        : QUndoCommand(text), deeds_(deeds), changes_(std::move(changes)) {}

    void undo() override { deeds_.startChanges(true, changes_); }
    void redo() override {
        if (!std::exchange(isNew_, false)) {
            deeds_.startChanges(false, changes_);
        }
    }

private:
    Deeds& deeds_;
    bool isNew_ = true;
    std::vector<Deeds::Change> changes_;
};

/// A folder that was taken out of the library.
class FolderDeed : public QUndoCommand {
public:
    FolderDeed(Deeds& deeds, const QString& folder)
        : QUndoCommand(undoText(translated("remove %1"), QFileInfo(folder).fileName())),
          deeds_(deeds), folder_(folder) {}

    void undo() override { run("add"); }
    void redo() override {
        if (!std::exchange(isNew_, false)) {
            run("remove");
        }
    }

private:
    void run(const char* command) {
        deeds_.start(
            {QLatin1String(command), QStringLiteral("--json"), QStringLiteral("--"), folder_});
    }

    Deeds& deeds_;
    bool isNew_ = true;
    QString folder_;
};

Deeds::Deeds(std::string program, LibraryReader& reader, Done done)
    : program_(std::move(program)), reader_(reader), done_(std::move(done)) {}

void Deeds::finish() {
    while (isBusy_) { // each end begins the next
        if (running_ != nullptr) {
            running_->waitForFinished(-1);
        } else {
            reader_.finish();
        }
    }
}

void Deeds::inTurn(std::function<void()> deed) {
    waiting_.push(std::move(deed));
    goOn();
}

void Deeds::goOn() {
    while (!isBusy_ && !waiting_.empty()) {
        const std::function<void()> next = std::move(waiting_.front());
        waiting_.pop();
        next();
    }
}

void Deeds::undo() {
    inTurn([this] { undo_.undo(); });
}

void Deeds::redo() {
    inTurn([this] { undo_.redo(); });
}

void Deeds::run(const QStringList& arguments, Taker take, const QByteArray& input) {
    inTurn([this, arguments, take = std::move(take), input] { start(arguments, take, {}, input); });
}

void Deeds::work(const QString& deed, LibraryReader::Work work) {
    inTurn([this, deed, work = std::move(work)] { startWork(deed, work); });
}

void Deeds::startWork(const QString& deed, LibraryReader::Work work) {
    isBusy_ = true;
    reader_.runNext([this, deed, work = std::move(work)](Desk& desk) -> LibraryReader::Taker {
        LibraryReader::Taker then;
        try {
            then = work(desk);
        } catch (const std::exception& error) {
            then = [this, deed, problem = QString::fromUtf8(error.what())] {
                done_(deed, {problem});
            };
        }
        return [this, then = std::move(then)] {
            isBusy_ = false;
            then();
            goOn();
        };
    });
}

void Deeds::start(const QStringList& arguments, Taker take, const QStringList& problems,
                  const QByteArray& input) {
    isBusy_ = true;
    auto* const process = new QProcess(this);
    running_ = process;
    const QString deed = arguments.join(QLatin1Char('\n'));
    const auto finish = [this, process, deed, problems,
                         take = std::move(take)](const QStringList& ends) {
        isBusy_ = false;
        running_ = nullptr;
        if (follow_) {
            follow_(std::nullopt);
        }
        QStringList all = problems + ends;
        const QJsonObject done = QJsonDocument::fromJson(process->readAllStandardOutput()).object();
        const QJsonArray told = done.value(QStringLiteral("problems")).toArray();
        for (const auto& problem : told) {
            all.push_back(problem.toString());
        }
        process->deleteLater();
        done_(deed, all);
        if (take) {
            take(done);
        }
        goOn();
    };
    connect(process, &QProcess::finished, this, [finish](int, QProcess::ExitStatus status) {
        finish(status == QProcess::NormalExit
                   ? QStringList()
                   : QStringList{QString::fromStdString(translated("The command was ended."))});
    });
    connect(process, &QProcess::errorOccurred, this,
            [finish, process](QProcess::ProcessError error) {
                if (error == QProcess::FailedToStart) {
                    finish({process->errorString()});
                }
            });
    QStringList words = arguments;
    if (std::find(cancellable.begin(), cancellable.end(), words.front()) != cancellable.end()) {
        words.insert(1, QStringLiteral("--progress"));
        connect(process, &QProcess::readyReadStandardError, this, [this] { readProgress(); });
        if (follow_) {
            follow_(DeedProgress{words.front()});
        }
    }
    words.prepend(QStringLiteral("--translated"));
    process->setProcessEnvironment(userEnvironment());
    process->start(QString::fromStdString(program_), words);
    process->write(input);
    process->closeWriteChannel();
}

void Deeds::readProgress() {
    if (running_ == nullptr) {
        return;
    }
    running_->setReadChannel(QProcess::StandardError);
    while (running_->canReadLine()) {
        const QJsonObject line = QJsonDocument::fromJson(running_->readLine()).object();
        const QString work = line.value(QStringLiteral("work")).toString();
        if (!work.isEmpty() && follow_) { // others are for people
            const auto number = [&line](const char* name) {
                return static_cast<std::size_t>(line.value(QLatin1String(name)).toInteger());
            };
            follow_(DeedProgress{work, number("done"), number("total")});
        }
    }
}

void Deeds::cancel() {
    if (running_ != nullptr) {
        running_->terminate();
    }
}

void Deeds::change(bool on, const QStringList& containers) {
    run(QStringList{commands[on ? 1 : 0], "--json"} + containers, recordSwitch(on));
}

void Deeds::change(bool on, const QJsonArray& sets) {
    run({QStringLiteral("change"), QStringLiteral("--json")}, recordSwitch(on),
        QJsonDocument(sets).toJson(QJsonDocument::Compact));
}

void Deeds::removeFolder(const QString& folder) {
    run({QStringLiteral("remove"), QStringLiteral("--json"), QStringLiteral("--"), folder},
        [this, folder](const QJsonObject& done) {
            if (!done.value(QStringLiteral("removed")).toArray().isEmpty()) {
                record(new FolderDeed(*this, folder));
            }
        });
}

Deeds::Taker Deeds::recordSwitch(bool on) {
    return [this, on](const QJsonObject& done) {
        const QJsonArray changes = done.value(QStringLiteral("changes")).toArray();
        if (changes.isEmpty()) {
            return; // all of it was so before
        }
        startWork({}, [this, on, changes](Desk& desk) -> LibraryReader::Taker {
            std::vector<Change> known;
            for (const auto& item : changes) {
                const QJsonObject change = item.toObject();
                const ContainerId id{change.value(QStringLiteral("id")).toInt()};
                if (const auto container = desk.library().container(id)) {
                    known.push_back({memberOf(*container),
                                     change.value(QStringLiteral("reasons")).toObject(),
                                     change.value(QStringLiteral("files")).toObject()});
                }
            }
            return [this, on, known = std::move(known)] {
                if (known.empty()) {
                    return; // the library has none of them any more
                }
                QString name = QString::fromStdString(known.front().container.name);
                if (known.size() > 1) {
                    name = QString::fromStdString(translated("%1 font", "%1 fonts", known.size()));
                }
                const std::string text =
                    on ? translated("activate %1") : translated("deactivate %1");
                record(new SwitchDeed(*this, known, undoText(text, name)));
            };
        });
    };
}

void Deeds::startChanges(bool back, const std::vector<Change>& changes) {
    startWork({}, [this, back, changes](Desk& desk) -> LibraryReader::Taker {
        QJsonArray wanted;
        QStringList problems;
        for (const auto& [container, reasons, files] : changes) {
            if (const auto id = currentNumber(desk.library(), container)) {
                wanted.push_back(
                    QJsonObject{{QStringLiteral("id"), static_cast<std::int32_t>(*id)},
                                {QStringLiteral("reasons"), back ? turned(reasons) : reasons},
                                {QStringLiteral("files"), back ? turned(files) : files}});
            } else {
                problems.push_back(
                    QString::fromStdString(translated("%1 is not in the library any more"))
                        .arg(QString::fromStdString(container.folder + "/" + container.name)));
            }
        }
        return [this, wanted, problems] {
            if (wanted.isEmpty()) {
                done_(problems.join(QLatin1Char('\n')), problems);
            } else {
                start({QStringLiteral("change"), QStringLiteral("--json")}, {}, problems,
                      QJsonDocument(wanted).toJson(QJsonDocument::Compact));
            }
        };
    });
}

} // namespace manager
