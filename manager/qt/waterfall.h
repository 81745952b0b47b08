// SPDX-License-Identifier: MIT
// A text at several sizes, in one face or in several side by side, on light or dark paper.
#pragma once

#include "manager/qt/paper.h"
#include "manager/qt/samples.h"
#include "manager/qt/shownface.h"

#include <QAbstractScrollArea>

#include <string>
#include <vector>

namespace manager {

/// [main-thread]
class Waterfall : public QAbstractScrollArea {
public:
    explicit Waterfall(preview::Faces& faces, QWidget* parent = nullptr);

    void setFaces(std::vector<ShownFace> faces);
    /// Draws the one face that is shown otherwise, at the place that is looked at.
    void setLook(const ShownFace& face);
    /// The user's own, which is drawn letter by letter as it is.
    void setText(const std::string& text);
    /// The first of these that a face has whole, else characters that it has; at least one.
    void setSampleTexts(std::vector<std::string> texts);
    /// What stands there while there are no faces.
    void setEmptyNote(const QString& note) { emptyNote_ = note; }
    void setSizes(std::vector<unsigned> sizes);
    void setPaper(Paper paper);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    struct Line {
        std::size_t face;
        unsigned pixels;
        int top; ///< from the beginning
        int height;
    };
    void layOut();
    void describe();

    std::vector<ShownFace> shown_;
    std::string text_;
    std::vector<std::string> others_;
    bool isOwn_ = false;
    QString emptyNote_;
    std::vector<unsigned> sizes_{12, 16, 20, 24, 32, 48, 72, 96};
    Paper paper_ = Paper::AsTheWindow;
    std::vector<Line> lines_;
    Samples samples_;
};

} // namespace manager
