// SPDX-License-Identifier: MIT
#include "manager/qt/waterfall.h"

#include "manager/view/texts.h"

#include <QEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace manager {

namespace {

constexpr int margin = 12;
constexpr double lineHeights = 1.45; ///< of a line of text
constexpr double baselines = 1.05;   ///< from its top

} // namespace

Waterfall::Waterfall(preview::Faces& faces, QWidget* parent)
    : QAbstractScrollArea(parent), samples_(faces, [this](Samples::Key) {
          describe();
          viewport()->update();
      }) {
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::StrongFocus);
}

void Waterfall::setFaces(std::vector<ShownFace> faces) {
    const auto isSame = [](const ShownFace& a, const ShownFace& b) {
        return a.file == b.file && a.index == b.index;
    };
    const bool areOthers = !std::ranges::equal(faces, shown_, isSame);
    shown_ = std::move(faces);
    if (areOthers) { // else news came of those that are looked at
        verticalScrollBar()->setValue(0);
    }
    layOut();
}

void Waterfall::setLook(const ShownFace& face) {
    shown_ = {face};
    viewport()->update();
}

void Waterfall::setText(const std::string& text) {
    text_ = text;
    others_.clear();
    isOwn_ = true;
    layOut();
}

void Waterfall::setSampleTexts(std::vector<std::string> texts) {
    text_ = texts.front();
    texts.erase(texts.begin());
    others_ = std::move(texts);
    isOwn_ = false;
    layOut();
}

void Waterfall::setSizes(std::vector<unsigned> sizes) {
    sizes_ = std::move(sizes);
    layOut();
}

void Waterfall::setPaper(Paper paper) {
    paper_ = paper;
    viewport()->update();
}

void Waterfall::layOut() {
    lines_.clear();
    samples_.clear();
    int top = margin;
    // Each size of all faces together, so that they can be compared.
    for (const unsigned pixels : sizes_) {
        for (std::size_t face = 0; face < shown_.size(); ++face) {
            const int label = fontMetrics().height();
            const int height = label + static_cast<int>(pixels * lineHeights);
            lines_.push_back({face, pixels, top, height});
            top += height + margin / 2;
        }
    }
    const int page = viewport()->height();
    verticalScrollBar()->setPageStep(page);
    verticalScrollBar()->setSingleStep(fontMetrics().height());
    verticalScrollBar()->setRange(0, std::max(0, top + margin - page));
    describe();
    viewport()->update();
}

// A screen reader hears what is shown, and of what.
void Waterfall::describe() {
    std::string names;
    for (const ShownFace& face : shown_) {
        names += (names.empty() ? "" : ", ") + face.name;
    }
    std::string outcome;
    std::string drawn = text_;
    for (std::size_t i = 0; i < lines_.size() && outcome.empty(); ++i) {
        outcome = samples_.isFailed(i) ? ", " + translated("cannot be drawn") : "";
        if (const std::string come = samples_.drawn(i); drawn == text_ && !come.empty()) {
            drawn = come;
        }
    }
    setAccessibleName(QString::fromStdString(translated("Preview")));
    setAccessibleDescription(QString::fromStdString(names + ": " + drawn + outcome));
}

void Waterfall::resizeEvent(QResizeEvent* /*event*/) {
    layOut();
}

void Waterfall::changeEvent(QEvent* event) {
    if (event->type() == QEvent::FontChange) {
        layOut();
    }
    QAbstractScrollArea::changeEvent(event);
}

void Waterfall::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(viewport());
    const auto [paper, ink, label] = coloursOf(paper_, palette());
    painter.fillRect(viewport()->rect(), paper);
    if (shown_.empty()) {
        painter.setPen(label);
        painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap, emptyNote_);
        return;
    }
    const int offset = verticalScrollBar()->value();
    const double scale = viewport()->devicePixelRatioF();
    const int width = viewport()->width() - 2 * margin;
    const auto seen = [&](const Line& line) {
        return line.top + line.height >= offset && line.top <= offset + viewport()->height();
    };
    samples_.keep([&](Samples::Key key) { return seen(lines_[key]); });
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        const Line& line = lines_[i];
        if (!seen(line)) {
            continue;
        }
        const ShownFace& face = shown_[line.face];
        const int top = line.top - offset;
        const int labelHeight = fontMetrics().height();
        QString name = QString::number(line.pixels);
        if (shown_.size() > 1) {
            name += QStringLiteral("  ") + QString::fromStdString(face.name);
        }
        painter.setPen(label);
        painter.drawText(QRect(margin, top, width, labelHeight), Qt::AlignLeft,
                         fontMetrics().elidedText(name, Qt::ElideMiddle, width));
        const preview::SharedAnswer answer =
            samples_.line(i, {face.file, face.index, text_, line.pixels, scale, face.axes,
                              face.features, others_, !isOwn_});
        const QRectF area(margin, top + labelHeight, width, line.height - labelHeight);
        if (answer == nullptr) {
            continue;
        }
        if (!answer->problem.empty()) {
            painter.drawText(area, Qt::AlignLeft | Qt::AlignTop,
                             QString::fromStdString(translated("cannot be drawn")));
            continue;
        }
        preview::drawFace(painter, answer->picture, scale,
                          {area, baselines * line.pixels, preview::runsFromTheRight(answer->drawn)},
                          ink);
    }
}

} // namespace manager
