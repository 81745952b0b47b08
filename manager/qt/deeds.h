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
#include <string>
#include <vector>

namespace manager {

/// [main-thread]
class Deeds : public QObject {
public:
    /// What a command printed as JSON.
    using Taker = std::function<void(const QJsonObject& done)>;

    /// `done` is called after each command, with what went wrong.
    Deeds(std::string program, std::function<void(const QStringList& problems)> done);
    ~Deeds() override;

    /// Activates or deactivates containers; what has come of it can be undone.
    void activate(const std::vector<std::int32_t>& containers);
    void deactivate(const std::vector<std::int32_t>& containers);
    /// Runs a command, without undo.
    void run(const QStringList& arguments, Taker take = {});
    [[nodiscard]] bool isBusy() const { return running_ != 0; }
    [[nodiscard]] QUndoStack& undoStack() { return undo_; }

private:
    void change(bool on, const QStringList& containers);
    friend class SwitchDeed;

    std::string program_;
    std::function<void(const QStringList&)> done_;
    QUndoStack undo_;
    int running_ = 0;
};

} // namespace manager
