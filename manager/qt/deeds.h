// SPDX-License-Identifier: MIT
// What the window does to the library, one thing after the other: the program's own commands, each
// in a process of its own, which tell others and keep the history; and what the reader's thread
// does.
#pragma once

#include "manager/cli/groups.h"
#include "manager/qt/libraryreader.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QObject>
#include <QStringList>
#include <QUndoStack>

#include <functional>
#include <optional>
#include <queue>
#include <string>
#include <vector>

class QProcess;

namespace manager {

/// How far a command is.
struct DeedProgress {
    QString work; ///< as its lines of progress have it; at first the command
    std::size_t done = 0;
    std::size_t total = 0; ///< 0: not known
};

/// [main-thread]
class Deeds : public QObject {
public:
    /// What a command printed as JSON.
    using Taker = std::function<void(const QJsonObject& done)>;
    /// `deed` is the same for the same deed.
    using Done = std::function<void(const QString& deed, const QStringList& problems)>;

    /// `done` is called after each command, before its Taker, and after work that threw, with what
    /// went wrong.
    Deeds(std::string program, LibraryReader& reader, Done done);
    /// Brings to its end what was begun, and what follows it; to be called before the rest of the
    /// window goes.
    void finish();

    /// `follow` is told how far commands are that can be cancelled, and nullopt when one has ended.
    void follow(std::function<void(const std::optional<DeedProgress>&)> follow) {
        follow_ = std::move(follow);
    }
    /// Asks such a command that runs to end at a safe point; what it did stays, and can be undone.
    void cancel();

    // All of these follow one another: each begins when those before it have ended, so that they
    // are undone in the order in which the user wanted them.

    /// Activates or deactivates containers, by what the commands call them; what has come of it can
    /// be undone.
    void change(bool on, const QStringList& containers);
    /// The same for containers and for single files of containers: `{id, active}` each, or `{id,
    /// reasons, files}`.
    void change(bool on, const QJsonArray& sets);
    /// Takes a folder out of the library, which can be undone.
    void removeFolder(const QString& folder);
    void undo();
    void redo();
    /// Runs a command, without undo.
    void run(const QStringList& arguments, Taker take = {}, const QByteArray& input = {});
    /// Has the reader's thread do something; `deed` is its name.
    void work(const QString& deed, LibraryReader::Work work);
    /// Keeps what such work did, to be undone in its turn; to be called by what it gives. Takes it
    /// over.
    void record(QUndoCommand* command) { undo_.push(command); }
    /// What has been done, to show it; it is gone through by `undo` and `redo`.
    [[nodiscard]] const QUndoStack& undoStack() const { return undo_; }

private:
    friend class SwitchDeed;
    friend class FolderDeed;
    friend class GroupDeed;

    void inTurn(std::function<void()> deed);
    void goOn();
    /// What became of a container's set, in the words of the commands.
    struct Change {
        GroupMember container; ///< a new index may give numbers anew
        QJsonObject reasons;
        QJsonObject files;
    };

    // At once: it is their turn. What a Taker starts belongs to the same turn.
    /// `input`: on its standard input.
    void start(const QStringList& arguments, Taker take = {}, const QStringList& problems = {},
               const QByteArray& input = {});
    /// Makes changes, or takes them `back`.
    void startChanges(bool back, const std::vector<Change>& changes);
    /// Takes what was switched, to be undone in its turn.
    [[nodiscard]] Taker recordSwitch(bool on);
    void startWork(const QString& deed, LibraryReader::Work work);
    void readProgress();

    std::string program_;
    LibraryReader& reader_;
    Done done_;
    std::function<void(const std::optional<DeedProgress>&)> follow_;
    QUndoStack undo_;
    bool isBusy_ = false;
    QProcess* running_ = nullptr; ///< null: the reader is, if anybody
    std::queue<std::function<void()>> waiting_;
};

} // namespace manager
