// SPDX-License-Identifier: MIT
#include "manager/view/facefilters.h"

#include "faces/remark.h"
#include "manager/view/texts.h"

#include <algorithm>
#include <charconv>
#include <iterator>

namespace manager {

namespace {

using faces::marked;

struct Kind {
    FilterForm form;
    const char* key;
    const char* title;
};

const Kind& factsOf(FilterKind kind) {
    static const std::array<Kind, allFilterKinds.size()> kinds{{
        {FilterForm::Choice, "state", marked("State")},
        {FilterForm::Choice, "class", marked("Class")},
        {FilterForm::Choice, "weight", marked("Weight")},
        {FilterForm::Choice, "width", marked("Width")},
        {FilterForm::Choice, "slant", marked("Slant")},
        {FilterForm::Choice, "format", marked("Format")},
        {FilterForm::Tag, "script", marked("Script")},
        {FilterForm::Tag, "language", marked("Language")},
        {FilterForm::Tag, "feature", marked("Feature")},
        {FilterForm::Tag, "axis", marked("Axis")},
        {FilterForm::Text, "characters", marked("Characters")},
        {FilterForm::Text, "foundry", marked("Foundry")},
        {FilterForm::Text, "licence", marked("Licence")},
        {FilterForm::Text, "version", marked("Version")},
        {FilterForm::Flag, "variable", marked("Variable")},
        {FilterForm::Flag, "monospaced", marked("Fixed width")},
        {FilterForm::Flag, "colour", marked("In colour")},
        {FilterForm::Flag, "embeddable", marked("Embeddable")},
    }};
    return kinds.at(static_cast<std::size_t>(kind));
}

/// A choice of a query's; the numbers of what the index holds are those of faces/face.h.
struct Choice {
    const char* text;
    double from;
    double to;
};

std::span<const Choice> choicesOf(FilterKind kind) {
    using faces::Classification;
    using faces::Slant;
    using faces::Technology;
    const auto one = [](auto value) { return static_cast<double>(value); };
    static const Choice states[] = {
        {marked("Active"), one(FaceState::Active), 0},
        {marked("Inactive"), one(FaceState::Inactive), 0},
        {marked("Conflicting"), one(FaceState::Conflicting), 0},
        {marked("Shown by the desktop"), one(FaceState::Shown), 0},
        {marked("Away"), one(FaceState::Away), 0},
    };
    static const Choice classes[] = {
        {marked("Serif"), one(Classification::Serif), 0},
        {marked("Slab serif"), one(Classification::SlabSerif), 0},
        {marked("Sans serif"), one(Classification::SansSerif), 0},
        {marked("Monospaced"), one(Classification::Monospaced), 0},
        {marked("Handwriting"), one(Classification::Script), 0},
        {marked("Decorative"), one(Classification::Decorative), 0},
        {marked("Symbols"), one(Classification::Symbol), 0},
    };
    static const Choice weights[] = {
        {marked("Thin, extra light"), 1, 249},
        {marked("Light"), 250, 349},
        {marked("Regular"), 350, 449},
        {marked("Medium"), 450, 549},
        {marked("Semibold"), 550, 649},
        {marked("Bold"), 650, 749},
        {marked("Extra bold, black"), 750, 1000},
    };
    static const Choice widths[] = {
        {marked("Condensed"), 1, 93},
        {marked("Normal"), 94, 106},
        {marked("Expanded"), 107, 1000},
    };
    static const Choice slants[] = {
        {marked("Upright"), one(Slant::Upright), 0},
        {marked("Italic"), one(Slant::Italic), 0},
        {marked("Oblique"), one(Slant::Oblique), 0},
    };
    static const Choice formats[] = {
        {marked("Type 1"), one(Technology::Type1), 0},
        {marked("TrueType"), one(Technology::TrueType), 0},
        {marked("OpenType, PostScript outlines"), one(Technology::OpenTypePostScript), 0},
        {marked("OpenType, TrueType outlines"), one(Technology::OpenTypeTrueType), 0},
    };
    switch (kind) {
    case FilterKind::State:
        return states;
    case FilterKind::Class:
        return classes;
    case FilterKind::Weight:
        return weights;
    case FilterKind::Width:
        return widths;
    case FilterKind::Slant:
        return slants;
    case FilterKind::Format:
        return formats;
    default:
        return {};
    }
}

const Choice& choiceOf(FilterKind kind, const std::string& value) {
    return choicesOf(kind)[static_cast<std::size_t>(std::stoi(value))];
}

void narrow(FaceQuery& query, FilterKind kind, const std::string& value) {
    const auto number = [&] { return static_cast<int>(choiceOf(kind, value).from); };
    const auto range = [&] {
        const Choice& choice = choiceOf(kind, value);
        return Range{choice.from, choice.to};
    };
    switch (kind) {
    case FilterKind::State:
        break;
    case FilterKind::Class:
        query.classifications = {static_cast<faces::Classification>(number())};
        break;
    case FilterKind::Weight:
        query.weight = range();
        break;
    case FilterKind::Width:
        query.width = range();
        break;
    case FilterKind::Slant:
        query.slants = {static_cast<faces::Slant>(number())};
        break;
    case FilterKind::Format:
        query.technologies = {static_cast<faces::Technology>(number())};
        break;
    case FilterKind::Script:
        query.scripts = {value};
        break;
    case FilterKind::Language:
        query.languages = {value};
        break;
    case FilterKind::Feature:
        query.features = {value};
        break;
    case FilterKind::Axis:
        query.axes = {value};
        break;
    case FilterKind::Characters:
        query.characters = charactersOf(value);
        break;
    case FilterKind::Foundry:
        query.foundry = value;
        break;
    case FilterKind::Licence:
        query.licence = value;
        break;
    case FilterKind::Version:
        query.version = value;
        break;
    case FilterKind::Variable:
        query.variable = true;
        break;
    case FilterKind::Monospaced:
        query.monospaced = true;
        break;
    case FilterKind::Colour:
        query.colour = true;
        break;
    case FilterKind::Embeddable:
        query.embeddable = true;
        break;
    }
}

} // namespace

FilterForm formOf(FilterKind kind) {
    return factsOf(kind).form;
}

const char* keyOf(FilterKind kind) {
    return factsOf(kind).key;
}

bool isFilterValue(FilterKind kind, const std::string& value) {
    switch (formOf(kind)) {
    case FilterForm::Choice: {
        std::size_t place = 0;
        const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), place);
        return error == std::errc() && end == value.data() + value.size() &&
               place < choicesOf(kind).size();
    }
    case FilterForm::Flag:
        return value == "1";
    default:
        return !value.empty();
    }
}

std::string titleOf(FilterKind kind) {
    return translated(factsOf(kind).title);
}

std::vector<std::string> filterChoices(FilterKind kind) {
    const auto choices = choicesOf(kind);
    std::vector<std::string> texts;
    std::transform(choices.begin(), choices.end(), std::back_inserter(texts),
                   [](const Choice& choice) { return translated(choice.text); });
    return texts;
}

FilterTags readFilterTags(Library& library) {
    return {{FilterKind::Script, library.tags(SharedKind::Scripts)},
            {FilterKind::Language, library.tags(SharedKind::Languages)},
            {FilterKind::Feature, library.tags(SharedKind::Features)},
            {FilterKind::Axis, library.tags(SharedKind::Axes)}};
}

std::optional<FaceQuery> queryOf(const FilterValues& values) {
    std::optional<FaceQuery> query;
    for (const auto& [kind, value] : values) {
        if (kind != FilterKind::State) {
            narrow(query ? *query : query.emplace(), kind, value);
        }
    }
    return query;
}

std::optional<FaceState> stateOf(const FilterValues& values) {
    const auto value = values.find(FilterKind::State);
    return value == values.end() ? std::nullopt
                                 : std::optional(static_cast<FaceState>(static_cast<int>(
                                       choiceOf(value->first, value->second).from)));
}

} // namespace manager
