// SPDX-License-Identifier: MIT
// Takes files and folders that are dropped on a window, wherever in it.
#pragma once

#include <QObject>
#include <QStringList>

#include <functional>

class QWidget;

namespace manager {

/// [main-thread] Lives as long as the window, which owns it.
class FileDrop : public QObject {
public:
    /// `dropped` is called with the paths of each drop. Taken are drags with a
    /// folder, a font file or an archive of this machine, by their names, whatever comes with it.
    FileDrop(QWidget& window, std::function<void(const QStringList& paths)> dropped);

    bool eventFilter(QObject* window, QEvent* event) override;

private:
    std::function<void(const QStringList&)> dropped_;
};

} // namespace manager
