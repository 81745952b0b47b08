// SPDX-License-Identifier: MIT
// Looking for a style in a family: by its name, by what it means, by distance.
#include "faces/family.h"

#include "faces/namekey.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

namespace faces {

namespace {

/// Fonts round as they like: "Book" is 380 in many that are meant as 400, widths are whole numbers.
constexpr double weightTolerance = 50;
constexpr double widthTolerance = 4;

bool isSlanted(const Style& style) {
    return style.slant != Slant::Upright;
}

bool fits(const Style& look, const Style& wanted) {
    return std::abs(look.weight - wanted.weight) < weightTolerance &&
           std::abs(look.width - wanted.width) < widthTolerance &&
           isSlanted(look) == isSlanted(wanted);
}

bool reaches(const Reach& reach, const Style& look, const Style& wanted) {
    return wanted.weight >= reach.from.weight && wanted.weight <= reach.to.weight &&
           wanted.width > reach.from.width - widthTolerance &&
           wanted.width < reach.to.width + widthTolerance && isSlanted(look) == isSlanted(wanted);
}

/// In steps: of 100 in weight, from one named width to the next. A wrong slant is worse than bold.
double distance(const Style& a, const Style& b) {
    constexpr double widthStep = 12.5;
    constexpr double wrongSlant = 4;
    constexpr double otherSlant = 0.25;
    const double slant = isSlanted(a) != isSlanted(b) ? wrongSlant
                         : a.slant != b.slant         ? otherSlant
                                                      : 0;
    return std::abs(a.weight - b.weight) / 100 + std::abs(a.width - b.width) / widthStep + slant;
}

/// What the words of a style, in a family of this name, say against the numbers of the face.
/// Numbers that are normal, or nearly, may be there for want of better ones; others are believed,
/// unless the family's name says them: then a style is told relative to that.
std::vector<Style> readingsOf(const StyleWords& inFamily, const StyleWords& inStyle,
                              const Style& look) {
    std::vector<Style> readings;
    if (!inStyle.complete) {
        return readings;
    }
    const auto add = [&](const Style& said) {
        const bool weight =
            fits({said.weight, 100, Slant::Upright}, {look.weight, 100, Slant::Upright}) ||
            look.weight == 400 || look.weight == 500 || inFamily.weight;
        const bool width = std::abs(said.width - look.width) < widthTolerance ||
                           look.width == 100 || inFamily.width;
        const bool slant = isSlanted(said) == isSlanted(look) || !isSlanted(look) || inFamily.slant;
        if (weight && width && slant && said != look) {
            readings.push_back(said);
        }
    };
    add(inStyle.style());
    StyleWords both = inStyle;
    both.weight = both.weight ? both.weight : inFamily.weight;
    both.width = both.width ? both.width : inFamily.width;
    both.slant = both.slant ? both.slant : inFamily.slant;
    if (both.style() != inStyle.style()) {
        add(both.style());
    }
    return readings;
}

/// The number in "12 Regular".
std::optional<int> sizeIn(std::string_view style) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    const auto* const begin = std::find_if(style.begin(), style.end(), isDigit);
    int size = 0;
    const auto end = std::from_chars(begin, style.end(), size).ptr;
    const bool alone = std::none_of(end, style.end(), isDigit);
    return begin != end && alone && size < 1000 ? std::optional(size) : std::nullopt;
}

std::size_t closeness(const Style& look, const Style& wanted) {
    return static_cast<std::size_t>(distance(look, wanted) * 1000);
}

} // namespace

AskedStyle::AskedStyle(std::string_view style)
    : text(style.empty() ? "Regular" : style), key(nameKey(text)), isTold(!style.empty()) {
    const StyleWords read = readStyleWords(style);
    look = read.style();
    lookIsKnown = read.complete;
    words = read.words;
}

AskedStyle::AskedStyle(std::string_view style, const Style& asked) : AskedStyle(style) {
    if (lookIsKnown && look != asked && style == styleText(asked)) {
        key.clear();
    }
    look = asked;
}

void Family::add(std::size_t face, std::string_view family, std::string_view style,
                 const Style& look, const std::optional<Reach>& reach) {
    const StyleWords inStyle = readStyleWords(style);
    Member member{face,  std::string(style), nameKey(style), look, {},
                  reach, inStyle.words,      sizeIn(style)};
    if (!style.empty()) {
        member.said = readingsOf(readFamilyWords(family), inStyle, look);
    }
    words_ |= inStyle.words;
    for (Member& other : members_) {
        if (other.face == face) {
            member.words |= other.words;
            other.words |= inStyle.words;
            member.size = member.size ? member.size : other.size;
        }
    }
    members_.push_back(std::move(member));
}

bool Family::isOneFace() const {
    Members all;
    for (const Member& member : members_) {
        all.push_back(&member);
    }
    return areOneFace(all);
}

std::vector<std::size_t> Family::named(const AskedStyle& asked) const {
    std::vector<std::size_t> found;
    for (const Member& member : members_) {
        if (!asked.key.empty() && member.key == asked.key) {
            found.push_back(member.face);
        }
    }
    return found;
}

std::vector<std::size_t> Family::meant(const AskedStyle& asked) const {
    if (!asked.lookIsKnown) {
        return {};
    }
    const auto nearestThat = [&](auto&& lookThatFits) {
        Members found;
        std::size_t best = 0;
        for (const Member& member : members_) {
            const Style* const look = lookThatFits(member);
            if (look == nullptr || !isFree(asked, member)) {
                continue;
            }
            const std::size_t away = closeness(*look, asked.look);
            if (found.empty() || away < best) {
                found.clear();
                best = away;
            }
            if (away == best) {
                found.push_back(&member);
            }
        }
        return found;
    };
    const auto byNumbers = [&](const Member& member) {
        return fits(member.look, asked.look) ? &member.look : nullptr;
    };
    // Of several those are better whose words agree.
    Members found = nearestThat(
        [&](const Member& member) { return member.said.empty() ? byNumbers(member) : nullptr; });
    if (found.empty()) {
        found = nearestThat(byNumbers);
    }
    if (found.empty()) {
        found = nearestThat([&](const Member& member) {
            return member.reach && reaches(*member.reach, member.look, asked.look) ? &member.look
                                                                                   : nullptr;
        });
        found.resize(std::min<std::size_t>(found.size(), 1)); // any instance has the whole font
    }
    if (found.empty()) {
        found = nearestThat([&](const Member& member) {
            const auto said = std::find_if(member.said.begin(), member.said.end(),
                                           [&](const Style& one) { return fits(one, asked.look); });
            return said == member.said.end() ? nullptr : &*said;
        });
    }
    if (found.empty() && !asked.isTold && asked.look.weight == 400) {
        AskedStyle medium = asked; // the text face of families that have no regular one
        medium.look.weight = 500;
        return meant(medium);
    }
    keepTextSize(found);
    if (!areOneFace(found)) {
        return {};
    }
    std::vector<std::size_t> result;
    for (const Member* const member : found) {
        if (std::find(result.begin(), result.end(), member->face) == result.end()) {
            result.push_back(member->face);
        }
    }
    return result;
}

std::vector<Family::Near> Family::nearest(const AskedStyle& asked) const {
    std::vector<Near> found;
    for (const Member& member : members_) {
        double away = distance(member.look, asked.look);
        for (const Style& said : member.said) {
            away = std::min(away, distance(said, asked.look));
        }
        const auto same = std::find_if(found.begin(), found.end(),
                                       [&](const Near& near) { return near.face == member.face; });
        if (same == found.end()) {
            found.push_back({member.face, away, member.style});
        } else if (away < same->distance) {
            *same = {member.face, away, member.style};
        }
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const Near& a, const Near& b) { return a.distance < b.distance; });
    return found;
}

bool Family::isFree(const AskedStyle& asked, const Member& member) const {
    return (asked.words & words_ & ~member.words) == 0;
}

void Family::keepTextSize(Members& members) {
    static constexpr int text = 12;
    const auto away = [](const Member* one) { return std::abs(one->size.value_or(text) - text); };
    if (!members.empty() &&
        std::all_of(members.begin(), members.end(), [](const Member* one) { return one->size; })) {
        const int least = away(
            *std::min_element(members.begin(), members.end(),
                              [&](const Member* a, const Member* b) { return away(a) < away(b); }));
        members.erase(std::remove_if(members.begin(), members.end(),
                                     [&](const Member* one) { return away(one) != least; }),
                      members.end());
    }
}

// Faces are told apart by their styles: the same style is the same face in another file.
bool Family::areOneFace(const Members& members) {
    return std::all_of(members.begin(), members.end(), [&](const Member* one) {
        return std::any_of(members.begin(), members.end(), [&](const Member* other) {
            return other->key == members.front()->key && other->face == one->face;
        });
    });
}

} // namespace faces
