// SPDX-License-Identifier: MIT
// Between the process that draws and the windows' loop.
#include "preview/qt/faces.h"

#include "system/cuttext.h"

#include <cmath>

#include <QColor>
#include <QLinearGradient>
#include <QPainter>
#include <QRectF>
#include <QSocketNotifier>
#include <QString>

#include <poll.h>

#include <algorithm>
#include <system_error>
#include <utility>

namespace preview {

bool Faces::start() {
    try {
        previewer_.emplace(settings_);
    } catch (const std::system_error&) {
        return false;
    }
    auto* const notifier =
        new QSocketNotifier(previewer_->descriptor(), QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] { take(); });
    return true;
}

Faces::Id Faces::ask(const FaceLine& line, Arrived arrived) {
    if (!previewer_ && !start()) {
        return 0;
    }
    Request request;
    request.file = line.file;
    request.face = line.index;
    request.axes = line.axes;
    request.features = line.features;
    request.text = sys::cutText(line.text, maximumText);
    for (const std::string& other : line.others) {
        request.others.emplace_back(sys::cutText(other, maximumText));
    }
    request.orOwn = line.orOwn;
    request.pixels = line.pixels;
    request.scale = std::clamp(line.scale, minimumScale, maximumScale);
    const Id id = previewer_->request(std::move(request));
    asked_.emplace(id, std::move(arrived));
    return id;
}

void Faces::cancel(Id id) {
    if (asked_.erase(id) != 0) {
        previewer_->cancel(id);
    }
}

void Faces::take() {
    for (const Finished& finished : previewer_->take()) {
        // One of the others may have cancelled it just now.
        if (auto asked = asked_.extract(finished.id)) {
            asked.mapped()(finished.answer);
        }
    }
}

bool Faces::finish() {
    const bool waited = !asked_.empty();
    while (!asked_.empty()) {
        pollfd event{previewer_->descriptor(), POLLIN, 0};
        poll(&event, 1, -1);
        take();
    }
    return waited;
}

namespace {

QImage imageOf(const Picture& picture, const QColor& color) {
    const auto* const pixels = reinterpret_cast<const uchar*>(picture.pixels.data());
    const auto width = static_cast<int>(picture.width);
    const auto height = static_cast<int>(picture.height);
    if (picture.form == PixelForm::Colour) {
        return QImage(pixels, width, height, qsizetype{4} * width,
                      QImage::Format_RGBA8888_Premultiplied)
            .copy();
    }
    const QImage coverage(pixels, width, height, width, QImage::Format_Alpha8);
    QImage image(coverage.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(color);
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.drawImage(0, 0, coverage);
    return image;
}

/// Takes the ink away towards one end of `width` pixels.
void fade(QImage& image, int width, bool atTheLeft) {
    const int from = atTheLeft ? image.width() - width : width;
    const int reach = std::min(width, image.height());
    QLinearGradient gradient(from, 0, atTheLeft ? from + reach : from - reach, 0);
    gradient.setColorAt(0, Qt::transparent);
    gradient.setColorAt(1, Qt::black);
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.fillRect(image.rect(), gradient);
}

} // namespace

double drawFace(QPainter& painter, const Picture& picture, double scale, const FacePlace& place,
                const QColor& color) {
    const double width = picture.width / scale;
    const QPointF corner{place.fromTheRight ? place.area.right() - width : place.area.left(),
                         place.area.top() + place.baseline - picture.baseline / scale};
    QImage image = imageOf(picture, color);
    if (width > place.area.width()) {
        fade(image, static_cast<int>(place.area.width() * scale), place.fromTheRight);
    }
    painter.save();
    painter.setClipRect(place.area, Qt::IntersectClip);
    constexpr int darkest = 128;
    if (picture.form == PixelForm::Colour && color.lightness() > darkest) {
        // Outlines between the pictures are black.
        painter.fillRect(QRectF(corner, QSizeF(width, picture.height / scale)), Qt::white);
    }
    // Whole pixels of the screen, as it was drawn for.
    const QTransform& screen = painter.deviceTransform();
    const QPointF onScreen = screen.map(corner);
    const QPointF whole{std::round(onScreen.x()), std::round(onScreen.y())};
    painter.drawImage(QRectF(screen.inverted().map(whole), QSizeF(image.size()) / scale), image);
    painter.restore();
    return std::min(width, place.area.width());
}

bool runsFromTheRight(const std::string& text) {
    return QString::fromStdString(text).isRightToLeft();
}

} // namespace preview
