// SPDX-License-Identifier: MIT
#include "manager/qt/samples.h"

#include <utility>

namespace manager {

preview::SharedAnswer Samples::line(Key key, const preview::FaceLine& line) {
    Line& known = lines_[key];
    if (known.wanted == line) {
        return known.answer;
    }
    faces_.cancel(known.asked);
    preview::FaceLine other = known.wanted;
    other.axes = line.axes;
    other.features = line.features;
    if (other != line) { // else what was drawn stays while a slider moves
        known.answer = nullptr;
    }
    known.wanted = line;
    known.asked = faces_.ask(line, [this, key](const preview::SharedAnswer& answer) {
        Line& asked = lines_[key];
        asked.asked = 0;
        asked.answer = answer;
        changed_(key);
    });
    return known.answer;
}

std::string Samples::drawn(Key key) const {
    const auto line = lines_.find(key);
    return line != lines_.end() && line->second.answer != nullptr ? line->second.answer->drawn : "";
}

bool Samples::isFailed(Key key) const {
    const auto line = lines_.find(key);
    return line != lines_.end() && line->second.answer != nullptr &&
           !line->second.answer->problem.empty();
}

void Samples::keep(const std::function<bool(Key)>& isSeen) {
    // Of those that have come a good deal more is kept than a screen shows; the rest is in the
    // cache of those that draw.
    constexpr std::size_t many = 1000;
    const bool tooMany = lines_.size() > many;
    std::erase_if(lines_, [&](const auto& entry) {
        const Line& line = entry.second;
        if ((line.asked == 0 && !tooMany) || isSeen(entry.first)) {
            return false;
        }
        faces_.cancel(line.asked);
        return true;
    });
}

void Samples::forgetFailed() {
    std::erase_if(lines_, [](const auto& entry) {
        return entry.second.answer != nullptr && !entry.second.answer->problem.empty();
    });
}

void Samples::clear() {
    keep([](Key) { return false; });
    lines_.clear();
}

} // namespace manager
