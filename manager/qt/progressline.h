// SPDX-License-Identifier: MIT
// How far a command is that takes long, and a way to cancel it, in the window's status bar.
#pragma once

#include "manager/qt/deeds.h"

#include <QTimer>
#include <QWidget>

class QLabel;
class QProgressBar;
class QPushButton;

namespace manager {

/// [main-thread] Comes into view only after a second: most commands take less.
class ProgressLine : public QWidget {
public:
    /// `cancel` asks the command to end.
    ProgressLine(std::function<void()> cancel, QWidget* parent);

    /// nullopt: the command has ended.
    void show(const std::optional<DeedProgress>& progress);

private:
    QLabel* text_;
    QProgressBar* bar_;
    QPushButton* button_;
    QTimer patience_;
};

} // namespace manager
