// SPDX-License-Identifier: MIT
// The right side of the window: what the chosen faces are called, why they are there, and how they
// look.
#pragma once

#include "manager/qt/characterpane.h"
#include "manager/qt/facesource.h"
#include "manager/qt/lookpanel.h"
#include "manager/qt/pathlabel.h"
#include "manager/qt/waterfall.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>
#include <QToolButton>
#include <QWidget>

#include <functional>
#include <optional>
#include <vector>

namespace manager {

/// What is chosen in the list.
struct ChosenFaces {
    QString title;
    QString why;  ///< its state; empty: they are several
    QString path; ///< of its file; empty: likewise
    std::vector<ShownFace> faces;
};

/// [main-thread]
class FacePane : public QWidget {
public:
    /// How many faces are shown at most.
    static constexpr std::size_t most = 12;

    /// `wrote` is told what the user wants to see the faces in; `source` tells what they have, and
    /// must outlive the pane.
    FacePane(preview::Faces& faces, FaceSource& source, std::function<void(const QString&)> wrote,
             QWidget* parent);

    void show(ChosenFaces chosen);

    [[nodiscard]] QLineEdit& sampleField() { return *sample_; }
    [[nodiscard]] QComboBox& paperBox() { return *paper_; }
    [[nodiscard]] PathLabel& path() { return *path_; }
    [[nodiscard]] QTabWidget& views() { return *views_; }
    [[nodiscard]] Waterfall& waterfall() { return *waterfall_; }
    [[nodiscard]] LookPanel& look() { return *look_; }
    /// Shows and hides it.
    [[nodiscard]] QToolButton& lookButton() { return *lookButton_; }
    [[nodiscard]] CharacterPane& characters() { return *characters_; }

protected:
    void changeEvent(QEvent* event) override;

private:
    QLayout* makeTools(std::function<void(const QString&)> wrote);
    void showText();
    void showCharacters();
    void readLook();
    void applyLook();

    QLabel* title_ = nullptr;
    QLabel* why_ = nullptr;
    PathLabel* path_ = nullptr;
    QToolButton* folder_ = nullptr; ///< opens that of the file
    QLabel* cut_ = nullptr;         ///< says that the text is too long
    QLineEdit* sample_ = nullptr;
    QComboBox* paper_ = nullptr;
    QToolButton* lookButton_ = nullptr;
    LookPanel* look_ = nullptr;
    QTabWidget* views_ = nullptr;
    Waterfall* waterfall_ = nullptr;
    CharacterPane* characters_ = nullptr;
    FaceSource& source_;
    std::vector<ShownFace> shown_;
    std::optional<FaceId> dressed_;  ///< whose axes and features are offered, or read
    std::optional<FaceId> offered_;  ///< whose are by now
    std::optional<FaceId> lettered_; ///< whose characters are shown
    std::optional<FaceId> awaited_;  ///< whose are to be
};

} // namespace manager
