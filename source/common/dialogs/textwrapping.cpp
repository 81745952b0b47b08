// SPDX-License-Identifier: MIT
// Breaking and shortening texts: both look for the longest beginning that fits.
#include "textwrapping.h"

#include "misc/text/utf.h"

#include <algorithm>

namespace {

constexpr std::string_view ellipsis = "…";
constexpr std::size_t firstGuess = 64; ///< bytes

/// The character boundary at `position` or before it.
std::size_t boundaryBefore(std::string_view text, std::size_t position) {
    if (position >= text.size()) {
        return text.size();
    }
    const std::size_t first = position - std::min<std::size_t>(position, 3);
    while (position > first && (static_cast<unsigned char>(text[position]) & 0xC0U) == 0x80U) {
        --position;
    }
    return position;
}

std::size_t boundaryAfter(std::string_view text, std::size_t position) {
    do {
        ++position;
    } while (boundaryBefore(text, position) != std::min(position, text.size()));
    return std::min(position, text.size());
}

/// How many bytes of whole characters fit. What is far beyond is not measured: the rest of a long
/// text is asked about line by line.
std::size_t fittingSize(std::string_view text, float width, const TextMeasure& measure) {
    const auto fits = [&](std::size_t size) {
        return static_cast<float>(measure(text.substr(0, size))) <= width;
    };
    std::size_t fitting = 0;
    std::size_t tooWide = boundaryBefore(text, firstGuess);
    while (fits(tooWide)) {
        if (tooWide == text.size()) {
            return tooWide;
        }
        fitting = tooWide;
        tooWide = boundaryBefore(text, 2 * tooWide);
    }
    while (boundaryAfter(text, fitting) < tooWide) {
        const std::size_t half = boundaryBefore(text, fitting + (tooWide - fitting) / 2);
        const std::size_t middle = half > fitting ? half : boundaryAfter(text, fitting);
        (fits(middle) ? fitting : tooWide) = middle;
    }
    return fitting;
}

void wrapParagraph(std::string_view rest, float width, const TextMeasure& measure,
                   std::vector<std::string>& lines) {
    for (;;) {
        std::size_t end = fittingSize(rest, width, measure);
        if (end == rest.size()) {
            lines.emplace_back(rest);
            return;
        }
        end = std::max(end, boundaryAfter(rest, 0));
        // The blank after a line's last word need not fit.
        const std::string_view words = rest.substr(0, rest.substr(0, end + 1).rfind(' ') + 1);
        if (const std::size_t last = words.find_last_not_of(' '); last != std::string_view::npos) {
            end = last + 1;
        }
        lines.emplace_back(rest.substr(0, end));
        rest.remove_prefix(end);
        rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
        if (rest.empty()) {
            return;
        }
    }
}

} // namespace

std::vector<std::string> wrapText(std::string_view text, float width, const TextMeasure& measure) {
    std::vector<std::string> lines;
    for (;;) {
        const std::size_t end = text.find('\n');
        wrapParagraph(text.substr(0, end), width, measure, lines);
        if (end == std::string_view::npos) {
            return lines;
        }
        text.remove_prefix(end + 1);
    }
}

std::string shortenText(std::string_view text, float width, const TextMeasure& measure) {
    if (fittingSize(text, width, measure) == text.size()) {
        return std::string(text);
    }
    const float room = width - static_cast<float>(measure(ellipsis));
    return std::string(text.substr(0, fittingSize(text, room, measure))).append(ellipsis);
}

std::string withoutCutCharacter(std::string text) {
    const std::size_t last = boundaryBefore(text, text.empty() ? 0 : text.size() - 1);
    const auto* const bytes = reinterpret_cast<const Orvil::UTF::UTF8*>(text.data());
    if (last < text.size() && !Orvil::isLegalUTF8Sequence(bytes + last, bytes + text.size())) {
        text.resize(last);
    }
    return text;
}
