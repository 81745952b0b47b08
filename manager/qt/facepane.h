// SPDX-License-Identifier: MIT
// The right side of the window: what the chosen faces are called, why they are there, and how they
// look.
#pragma once

#include "manager/qt/waterfall.h"

#include <QLabel>
#include <QLineEdit>
#include <QWidget>

#include <functional>
#include <vector>

namespace manager {

/// What is chosen in the list.
struct ChosenFaces {
    QString title;
    QString why; ///< its state, its file; empty: they are several
    std::vector<ShownFace> faces;
};

/// [main-thread]
class FacePane : public QWidget {
public:
    /// How many faces are shown at most.
    static constexpr std::size_t most = 12;

    /// `wrote` is told what the user wants to see the faces in.
    FacePane(preview::Faces& faces, std::function<void(const QString&)> wrote, QWidget* parent);

    void show(ChosenFaces chosen);

    [[nodiscard]] Waterfall& waterfall() { return *waterfall_; }

private:
    void showText();

    QLabel* title_ = nullptr;
    QLabel* why_ = nullptr;
    QLineEdit* sample_ = nullptr;
    Waterfall* waterfall_ = nullptr;
    std::size_t shown_ = 0; ///< faces
};

} // namespace manager
