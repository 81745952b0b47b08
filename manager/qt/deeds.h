// SPDX-License-Identifier: MIT
// What the window does to the library: everything goes through the program's own commands, each in
// a process of its own. They tell others, keep the history and leave a window that is closed
// meanwhile nothing to break.
#pragma once

#include <QJsonObject>
#include <QObject>
#include <QStringList>
#include <QUndoStack>

#include <functional>
#include <queue>
#include <string>
#include <vector>

class QProcess;

namespace manager {

/// [main-thread]
class Deeds : public QObject {
public:
    /// What a command printed as JSON.
    using Taker = std::function<void(const QJsonObject& done)>;

    /// `done` is called after each command, before its Taker, with what went wrong.
    Deeds(std::string program, std::function<void(const QStringList& problems)> done);
    /// Brings to its end what was begun, and what follows it.
    ~Deeds() override;

    // All of these follow one another: each begins when those before it have ended.

    /// Activates or deactivates containers; what has come of it can be undone.
    void activate(const std::vector<std::int32_t>& containers);
    void deactivate(const std::vector<std::int32_t>& containers);
    void undo();
    void redo();
    /// Runs a command, without undo.
    void run(const QStringList& arguments, Taker take = {});
    /// Keeps what was done otherwise, to be undone in its turn. Takes it over.
    void record(QUndoCommand* command) { undo_.push(command); }
    /// What has been done, to show it; it is gone through by `undo` and `redo`.
    [[nodiscard]] const QUndoStack& undoStack() const { return undo_; }

private:
    friend class SwitchDeed;

    void change(bool on, const QStringList& containers);
    void inTurn(std::function<void()> deed);
    void goOn();
    void start(const QStringList& arguments, Taker take = {});

    std::string program_;
    std::function<void(const QStringList&)> done_;
    QUndoStack undo_;
    QProcess* running_ = nullptr;
    std::queue<std::function<void()>> waiting_;
};

} // namespace manager
