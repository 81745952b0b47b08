// SPDX-License-Identifier: MIT
// Blobs hold numbers as this machine has them: an index stays on its machine.
#include "manager/library/packing.h"

#include "manager/library/fields.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>

namespace manager {

namespace {

constexpr std::array measureMembers{
    &faces::Measures::xHeight,        &faces::Measures::capitalHeight,
    &faces::Measures::ascender,       &faces::Measures::descender,
    &faces::Measures::letterWidth,    &faces::Measures::capitalWidth,
    &faces::Measures::digitWidth,     &faces::Measures::stem,
    &faces::Measures::contrast,       &faces::Measures::serif,
    &faces::Measures::slant,          &faces::Measures::roundness,
    &faces::Measures::serifThickness,
};

std::string toText(double number) {
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

double toReal(std::string_view text) {
    return toNumber<double>(text).value_or(0);
}

template <class Value>
void append(std::string& blob, Value value) {
    blob.append(reinterpret_cast<const char*>(&value), sizeof value);
}

/// The values of a blob; what is left over at its end is no value.
template <class Value>
std::vector<Value> valuesOf(std::string_view blob) {
    std::vector<Value> values(blob.size() / sizeof(Value));
    if (!values.empty()) {
        std::memcpy(values.data(), blob.data(), values.size() * sizeof(Value));
    }
    return values;
}

} // namespace

std::string packTags(const std::vector<std::string>& tags) {
    std::string text;
    for (const std::string& tag : tags) {
        text.append(" ").append(tag);
    }
    return text.empty() ? text : text + " ";
}

std::vector<std::string> unpackTags(std::string_view text) {
    std::vector<std::string> tags;
    while (text.size() > 1) {
        text.remove_prefix(1);
        tags.emplace_back(text.substr(0, text.find(' ')));
        text.remove_prefix(tags.back().size());
    }
    return tags;
}

std::string packAxes(const std::vector<faces::Axis>& axes) {
    std::string text;
    for (const faces::Axis& axis : axes) {
        text += joinFields({axis.tag, toText(axis.minimum), toText(axis.initial),
                            toText(axis.maximum), axis.hidden ? "1" : "0", axis.name});
    }
    return text;
}

std::vector<faces::Axis> unpackAxes(std::string_view text) {
    std::vector<faces::Axis> axes;
    for (const std::string_view line : splitLines(text)) {
        if (const auto fields = splitFields(line); fields && fields->size() == 6) {
            const auto& of = *fields;
            axes.push_back(
                {of[0], of[5], toReal(of[1]), toReal(of[2]), toReal(of[3]), of[4] == "1"});
        }
    }
    return axes;
}

std::string packPosition(const Position& position) {
    std::string text;
    for (const auto& [tag, value] : position) {
        text += joinFields({tag, toText(value)});
    }
    return text;
}

Position unpackPosition(std::string_view text) {
    Position position;
    for (const std::string_view line : splitLines(text)) {
        if (const auto fields = splitFields(line); fields && fields->size() == 2) {
            position.emplace_back((*fields)[0], toReal((*fields)[1]));
        }
    }
    return position;
}

std::string packCoverage(const faces::Coverage& coverage) {
    std::string blob;
    for (const auto& [first, last] : coverage) {
        append(blob, static_cast<std::uint32_t>(first));
        append(blob, static_cast<std::uint32_t>(last));
    }
    return blob;
}

faces::Coverage unpackCoverage(std::string_view blob) {
    faces::Coverage coverage;
    const auto values = valuesOf<std::uint32_t>(blob);
    for (std::size_t i = 0; i + 1 < values.size(); i += 2) {
        coverage.emplace_back(values[i], values[i + 1]);
    }
    return coverage;
}

std::string packMeasures(const faces::Measures& measures) {
    std::string blob;
    for (const auto member : measureMembers) {
        append(blob, static_cast<float>(measures.*member));
    }
    return blob;
}

faces::Measures unpackMeasures(std::string_view blob) {
    faces::Measures measures;
    const auto values = valuesOf<float>(blob);
    for (std::size_t i = 0; i < measureMembers.size() && i < values.size(); ++i) {
        measures.*measureMembers.at(i) = double{values[i]};
    }
    return measures;
}

} // namespace manager
