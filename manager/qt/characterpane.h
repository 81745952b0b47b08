// SPDX-License-Identifier: MIT
// All characters of a face, found by name, copied by a click or a key.
#pragma once

#include "manager/qt/charactergrid.h"
#include "manager/view/characters.h"

#include <QLabel>
#include <QLineEdit>
#include <QStackedWidget>
#include <QWidget>

#include <memory>

namespace manager {

/// [main-thread]
class CharacterPane : public QWidget {
public:
    CharacterPane(preview::Faces& faces, QWidget* parent);

    /// Shows the characters of a face; null: none is chosen.
    void show(const ShownFace& face, std::shared_ptr<const Characters> characters);
    /// Draws the same characters otherwise.
    void setLook(const ShownFace& face) { grid_->setFace(face); }
    void setPaper(Paper paper);

    [[nodiscard]] QLineEdit& searchField() { return *search_; }
    [[nodiscard]] CharacterGrid& grid() { return *grid_; }
    /// Below the grid: the character that the keyboard is at, and whether it was copied.
    [[nodiscard]] QString told() const { return told_->text(); }

private:
    void filter();
    void tell(bool copied);

    std::shared_ptr<const Characters> characters_ = std::make_shared<const Characters>();
    QString name_; ///< the face's
    QLineEdit* search_ = nullptr;
    QStackedWidget* pages_ = nullptr; ///< the grid, or what to do while it is empty
    CharacterGrid* grid_ = nullptr;
    QLabel* empty_ = nullptr;
    QLabel* told_ = nullptr;
    QLabel* count_ = nullptr;
};

} // namespace manager
