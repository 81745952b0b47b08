// SPDX-License-Identifier: MIT
// Characters in a grid, each as the face draws it. Only what is seen is drawn.
#pragma once

#include "manager/qt/paper.h"
#include "manager/qt/samples.h"
#include "manager/qt/shownface.h"

#include <QAbstractListModel>
#include <QListView>
#include <QStyledItemDelegate>

#include <functional>
#include <optional>
#include <vector>

namespace manager {

/// What a screen reader says of a character, and a label shows.
[[nodiscard]] QString describeCharacter(char32_t character);

/// [main-thread]
class CharacterModel : public QAbstractListModel {
public:
    using QAbstractListModel::QAbstractListModel;

    void show(std::vector<char32_t> characters);
    [[nodiscard]] char32_t at(int row) const { return shown_[static_cast<std::size_t>(row)]; }
    [[nodiscard]] int rowOf(char32_t character) const; ///< -1: it is not shown
    /// Told of its row from now on.
    void setCopied(int row);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    std::vector<char32_t> shown_;
    int copied_ = -1; ///< row
};

/// [main-thread]
class CharacterGrid : public QListView {
public:
    /// `copied` is called with what a click or a key has put on the clipboard.
    CharacterGrid(preview::Faces& faces, std::function<void(char32_t)> copied, QWidget* parent);

    void setFace(const ShownFace& face);
    /// Draws what could not be drawn, as news has come: the file may be back.
    void tryAgain();
    void setPaper(Paper paper);
    /// The keyboard is at `current` then, where it is one of them.
    void show(std::vector<char32_t> characters, std::optional<char32_t> current);
    [[nodiscard]] CharacterModel& characters() { return model_; }
    /// The one that the keyboard is at.
    [[nodiscard]] std::optional<char32_t> current() const;
    void copyCurrent();

    void paintCharacter(QPainter& painter, const QStyleOptionViewItem& option, int row);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;

private:
    void layOut();
    void colour();
    void forgetUnseen();

    CharacterModel model_;
    Samples samples_;
    std::function<void(char32_t)> copied_;
    ShownFace face_;
    Paper paper_ = Paper::AsTheWindow;
    int columns_ = 1;
};

} // namespace manager
