// SPDX-License-Identifier: MIT
// Asking for faces as rows are painted.
#include "host/qt/fontdelegate.h"

#include <QAbstractItemView>
#include <QFontInfo>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>

#include <algorithm>
#include <set>

namespace host {

unsigned facePixels(const QFont& font) {
    constexpr int largest = 96;
    return static_cast<unsigned>(std::clamp(QFontInfo(font).pixelSize() * 3 / 2, 1, largest));
}

FontDelegate::FontDelegate(Dialogs& dialogs, RowModel& model, QAbstractItemView& view,
                           FaceServices services)
    : RowDelegate(dialogs, model), model_(model), view_(view), services_(services) {
    connect(view.verticalScrollBar(), &QScrollBar::valueChanged, this, [this] { dropHidden(); });
}

FontDelegate::~FontDelegate() {
    forget();
}

void FontDelegate::forget() const {
    for (const auto& [name, look] : looks_) {
        services_.faces.cancel(look.asked);
    }
    looks_.clear();
}

void FontDelegate::dropHidden() {
    constexpr std::size_t mostKept = 500;
    const QRect page = view_.viewport()->rect();
    const int first = std::max(0, view_.indexAt(page.topLeft()).row());
    const QModelIndex last = view_.indexAt(page.bottomLeft());
    const int end = last.isValid() ? last.row() + 1 : model_.rowCount({});
    std::set<std::string> seen;
    for (int at = first; at < end; ++at) {
        seen.insert(model_.row(model_.index(at, 0, {}))->text);
    }
    const bool tooMany = looks_.size() > mostKept;
    std::erase_if(looks_, [&](const auto& entry) {
        const auto& [name, look] = entry;
        if ((look.asked == 0 && !tooMany) || seen.contains(name)) {
            return false;
        }
        services_.faces.cancel(look.asked);
        return true;
    });
}

preview::FaceLine FontDelegate::line(const FaceFile& face, const std::string& text) const {
    return {face.file, face.index, text, pixels_, scale_};
}

void FontDelegate::askForName(const std::string& name, const FaceFile& face) const {
    looks_[name].asked = services_.faces.ask(
        line(face, name), [this, name, face](const preview::SharedAnswer& answer) {
            Look& look = looks_[name];
            look.asked = 0;
            if (answer->problem.empty() && answer->missing.empty()) {
                look.picture = answer;
            } else if (answer->problem.empty()) {
                askForSigns(name, face);
            }
            view_.viewport()->update();
        });
}

void FontDelegate::askForSigns(const std::string& name, const FaceFile& face) const {
    const std::string signs = services_.source.someCharacters(face);
    if (signs.empty()) {
        return;
    }
    looks_[name].asked =
        services_.faces.ask(line(face, signs), [this, name](const preview::SharedAnswer& answer) {
            looks_[name] = {0, answer->problem.empty() ? answer : nullptr, false};
            view_.viewport()->update();
        });
}

const FontDelegate::Look& FontDelegate::lookOf(const std::string& name, unsigned pixels,
                                               double scale) const {
    if (pixels_ != pixels || scale_ != scale) {
        forget();
        pixels_ = pixels;
        scale_ = scale;
    }
    const auto [look, isNew] = looks_.try_emplace(name);
    const auto face = isNew && services_.source.face ? services_.source.face(name) : std::nullopt;
    if (face && face->symbol) {
        askForSigns(name, *face);
    } else if (face) {
        askForName(name, *face);
    }
    return look->second;
}

void FontDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    const Row* const row = model_.row(index);
    if (row == nullptr || model_.tree().draw != nullptr) {
        RowDelegate::paint(painter, option, index);
        return;
    }
    const unsigned pixels = facePixels(option.font);
    const double scale = painter->device()->devicePixelRatioF();
    const Look& look = lookOf(row->text, pixels, scale);
    QStyleOptionViewItem shown = option;
    initStyleOption(&shown, index);
    const QStyle& style = *option.widget->style();
    const int margin = style.pixelMetric(QStyle::PM_FocusFrameHMargin, &shown, option.widget) + 1;
    QRect area = option.rect.adjusted(margin, 0, -margin, 0);
    if (look.picture != nullptr && look.ofName) {
        shown.text.clear();
    } else {
        area.setLeft(area.left() + shown.fontMetrics.horizontalAdvance(shown.text) +
                     static_cast<int>(pixels));
    }
    style.drawControl(QStyle::CE_ItemViewItem, &shown, painter, option.widget);
    if (look.picture == nullptr || area.width() <= 0) {
        return;
    }
    const auto group =
        (option.state & QStyle::State_Active) != 0 ? QPalette::Active : QPalette::Inactive;
    const auto role =
        (option.state & QStyle::State_Selected) != 0 ? QPalette::HighlightedText : QPalette::Text;
    constexpr double capitals = 0.35; // half of their height
    preview::drawFace(*painter, look.picture->picture, scale,
                      {area, area.height() / 2.0 + capitals * pixels,
                       look.ofName && preview::runsFromTheRight(row->text)},
                      option.palette.color(group, role));
}

QSize FontDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    constexpr double lines = 1.6;
    return RowDelegate::sizeHint(option, index)
        .expandedTo({0, static_cast<int>(facePixels(option.font) * lines)});
}

} // namespace host
