// SPDX-License-Identifier: MIT
// Measuring without fonts, and drawing without a screen.
#include "host/adm/drawing.h"

#include <algorithm>
#include <tuple>

namespace host {

std::int32_t FixedMetrics::width(std::string_view utf8) const {
    constexpr std::int32_t characterWidth = 7;
    const auto characters = std::count_if(utf8.begin(), utf8.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; // the first of a character
    });
    return static_cast<std::int32_t>(characters) * characterWidth;
}

bool operator==(const Drawn& left, const Drawn& right) {
    const auto all = [](const Drawn& drawn) {
        return std::tuple(drawn.kind, drawn.color, drawn.area.left, drawn.area.top,
                          drawn.area.right, drawn.area.bottom, std::string_view(drawn.text),
                          drawn.pictureID);
    };
    return all(left) == all(right);
}

void RecordingCanvas::fill(const Color& color, const ADMRect& rect) {
    drawn_.push_back({Drawn::Kind::Fill, color, rect, {}, 0});
}

void RecordingCanvas::line(const Color& color, const ADMPoint& from, const ADMPoint& to) {
    drawn_.push_back({Drawn::Kind::Line, color, {from.h, from.v, to.h, to.v}, {}, 0});
}

void RecordingCanvas::text(const Color& color, std::string_view utf8, const ADMPoint& point) {
    drawn_.push_back(
        {Drawn::Kind::Text, color, {point.h, point.v, point.h, point.v}, std::string(utf8), 0});
}

bool RecordingCanvas::picture(std::int32_t pictureID, const ADMPoint& point) {
    const bool known = pictureID == kADMExpandedPicture || pictureID == kADMCollapsedPicture;
    if (known) {
        drawn_.push_back({Drawn::Kind::Picture,
                          kADMTextColor,
                          {point.h, point.v, point.h, point.v},
                          {},
                          pictureID});
    }
    return known;
}

std::string RecordingCanvas::words() const {
    std::vector<const Drawn*> texts;
    for (const Drawn& each : drawn_) {
        if (!each.text.empty()) {
            texts.push_back(&each);
        }
    }
    std::stable_sort(texts.begin(), texts.end(), [](const Drawn* left, const Drawn* right) {
        return std::tie(left->area.top, left->area.left) <
               std::tie(right->area.top, right->area.left);
    });
    std::string result;
    const Drawn* before = nullptr;
    for (const Drawn* const each : texts) {
        if (before != nullptr) {
            result += before->area.top == each->area.top ? ", " : " ";
        }
        result += each->text;
        before = each;
    }
    return result;
}

} // namespace host
