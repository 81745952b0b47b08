// SPDX-License-Identifier: MIT
// Where a file is, on one line.
#pragma once

#include <QLabel>

namespace manager {

/// [main-thread] Shows of a path what there is room for: its beginning and its end. A tooltip and a
/// screen reader tell all of it, and its menu copies it.
class PathLabel : public QLabel {
public:
    explicit PathLabel(QWidget* parent);
    void setPath(const QString& path);
    /// What can be seen of it.
    [[nodiscard]] QString shown() const;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace manager
