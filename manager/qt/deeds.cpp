// SPDX-License-Identifier: MIT
#include "manager/qt/deeds.h"

#include "manager/cli/groupchange.h"
#include "manager/qt/mnemonics.h"
#include "manager/view/texts.h"

#include <QJsonDocument>
#include <QProcess>
#include <QUndoCommand>

#include <algorithm>
#include <array>
#include <utility>

namespace manager {

namespace {

constexpr const char* commands[] = {"deactivate", "activate"};
constexpr std::array cancellable = {"activate",   "add",           "collect",
                                    "deactivate", "read-drawings", "scan"};
constexpr const char* lists[] = {"deactivated", "activated"};

} // namespace

/// What was switched, and would be switched back. It was done when it came.
class SwitchDeed : public QUndoCommand {
public:
    SwitchDeed(Deeds& deeds, bool on, std::vector<GroupMember> members, const QString& text)
        : QUndoCommand(text), deeds_(deeds), on_(on), members_(std::move(members)) {}

    void undo() override { deeds_.startSwitch(!on_, members_); }
    void redo() override {
        if (!std::exchange(isNew_, false)) {
            deeds_.startSwitch(on_, members_);
        }
    }

private:
    Deeds& deeds_;
    bool on_;
    bool isNew_ = true;
    std::vector<GroupMember> members_; // a new index may give numbers anew
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

void Deeds::run(const QStringList& arguments, Taker take) {
    inTurn([this, arguments, take = std::move(take)] { start(arguments, take); });
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

void Deeds::start(const QStringList& arguments, Taker take, const QStringList& problems) {
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
    process->start(QString::fromStdString(program_), words);
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
    const int which = on ? 1 : 0;
    run(QStringList{commands[which], "--json"} + containers, [this, on, which](const auto& done) {
        const QJsonArray switched = done.value(QLatin1String(lists[which])).toArray();
        if (!switched.isEmpty()) {
            recordSwitch(on, switched);
        }
    });
}

void Deeds::recordSwitch(bool on, const QJsonArray& switched) {
    startWork({}, [this, on, switched](Desk& desk) -> LibraryReader::Taker {
        std::vector<GroupMember> members;
        for (const auto& item : switched) {
            const ContainerId id{item.toObject().value(QStringLiteral("id")).toInt()};
            if (const auto container = desk.library().container(id)) {
                members.push_back(memberOf(*container));
            }
        }
        return [this, on, members = std::move(members)] {
            if (members.empty()) {
                return; // the library has none of them any more
            }
            QString name = QString::fromStdString(members.front().name);
            if (members.size() > 1) {
                name = QString::fromStdString(translated("%1 font", "%1 fonts", members.size()));
            }
            const std::string text = on ? translated("activate %1") : translated("deactivate %1");
            record(new SwitchDeed(*this, on, members, undoText(text, name)));
        };
    });
}

void Deeds::startSwitch(bool on, const std::vector<GroupMember>& members) {
    startWork({}, [this, on, members](Desk& desk) -> LibraryReader::Taker {
        QStringList numbers;
        QStringList problems;
        for (const GroupMember& member : members) {
            if (const auto id = currentNumber(desk.library(), member)) {
                numbers.push_back(QString::number(static_cast<std::int32_t>(*id)));
            } else {
                problems.push_back(
                    QString::fromStdString(translated("%1 is not in the library any more"))
                        .arg(QString::fromStdString(member.folder + "/" + member.name)));
            }
        }
        return [this, on, numbers, problems] {
            if (numbers.isEmpty()) {
                done_(problems.join(QLatin1Char('\n')), problems);
            } else {
                start(QStringList{commands[on ? 1 : 0], "--json"} + numbers, {}, problems);
            }
        };
    });
}

} // namespace manager
