// SPDX-License-Identifier: MIT
// What has gone wrong in the window: it stays until it is read and closed, or has come right.
#pragma once

#include <QStringList>
#include <QWidget>

#include <vector>

class QPlainTextEdit;

namespace manager {

/// Hidden while it has nothing to tell. Escape closes it, wherever in its window the focus is.
/// [main-thread]
class ProblemList : public QWidget {
public:
    explicit ProblemList(QWidget* parent);

    /// `problems` replace what `deed`, by whatever name, has told before, and are announced to
    /// screen readers; none: it has succeeded.
    void show(const QString& deed, const QStringList& problems);
    /// A line each, the newest last.
    [[nodiscard]] QString text() const;

protected:
    void changeEvent(QEvent* event) override;

private:
    void showAll();
    void announce(const QStringList& problems);
    void fitHeight();
    void colour();

    struct Told {
        QString deed;
        QStringList problems;
    };
    std::vector<Told> told_;
    QPlainTextEdit* text_;
};

} // namespace manager
