// SPDX-License-Identifier: MIT
// Lines of text in faces, drawn in a process apart while the windows go on.
#pragma once

#include "preview/previewer.h"

#include <QImage>
#include <QObject>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

class QColor;
class QPainter;
class QPalette;
class QRectF;

namespace preview {

/// A line to be drawn. Equal ones look alike.
struct FaceLine {
    std::string file;
    std::uint32_t index = 0;
    std::string text;
    unsigned pixels = 0; ///< the em's height on a screen of scale 1
    double scale = 1;    ///< of the screen
    std::vector<AxisValue> axes = {};
    std::vector<std::string> features = {};
    std::vector<std::string> others = {}; ///< as in Request, and so the next
    bool orOwn = false;
    bool operator==(const FaceLine&) const = default;
};

/// [main-thread] Starts the process when the first line is asked for.
class Faces : public QObject {
public:
    /// Called once, from the loop, with an answer that is never null.
    using Arrived = std::function<void(const SharedAnswer&)>;
    using Id = RequestId;

    explicit Faces(PreviewSettings settings = {}) : settings_(std::move(settings)) {}

    /// Of a text longer than `maximumText` the beginning is drawn. What was asked last comes first.
    /// Whatever `arrived` uses lives until then, or until it is cancelled. 0: there will be no
    /// answer, as the system has nothing left to draw with.
    [[nodiscard]] Id ask(const FaceLine& line, Arrived arrived);
    void cancel(Id id);
    /// Waits until everything is answered; false when it was.
    bool finish();

private:
    bool start();
    void take();

    PreviewSettings settings_;
    std::optional<Previewer> previewer_;
    std::map<Id, Arrived> asked_;
};

/// Where a line stands.
struct FacePlace {
    QRectF area;       ///< what is outside is not drawn
    double baseline;   ///< from the area's top
    bool fromTheRight; ///< as its text runs
};

/// Draws `picture`, of a line of `scale`, in `color` where it has no colours of its own, and lets
/// it fade where it is cut. Gives what of the area's width it takes.
double drawFace(QPainter& painter, const Picture& picture, double scale, const FacePlace& place,
                const QColor& color);

/// Whether text runs from the right to the left.
[[nodiscard]] bool runsFromTheRight(const std::string& text);

} // namespace preview
