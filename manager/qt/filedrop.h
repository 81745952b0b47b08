// SPDX-License-Identifier: MIT
// Takes files and folders that are dropped on a window, wherever in it.
#pragma once

#include <QObject>
#include <QStringList>

#include <functional>

class QWidget;

namespace manager {

/// Whether a file is a drawing, by its name or by how it begins; not by a font's name.
[[nodiscard]] bool isDrawing(const QString& path);

/// [main-thread] Lives as long as the window, which owns it.
class FileDrop : public QObject {
public:
    /// `dropped` is called with the paths of each drop. Taken are drags with a
    /// folder, a font file, an archive or a drawing of this machine, whatever comes with it.
    FileDrop(QWidget& window, std::function<void(const QStringList& paths)> dropped);

    bool eventFilter(QObject* window, QEvent* event) override;

private:
    bool isOfUse_ = false; ///< what is being dragged
    std::function<void(const QStringList&)> dropped_;
};

} // namespace manager
