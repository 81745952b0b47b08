// SPDX-License-Identifier: MIT
// What the list can be narrowed by beside what is typed, each by a value that a person chooses.
#pragma once

#include "manager/library/facequery.h"
#include "manager/view/facestates.h"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace manager {

enum class FilterKind : std::uint8_t {
    State,
    Class,
    Weight,
    Width,
    Slant,
    Format,
    Script,
    Language,
    Feature,
    Axis,
    Characters,
    Foundry,
    Licence,
    Version,
    Variable,
    Monospaced,
    Colour,
    Embeddable,
};
inline constexpr std::array allFilterKinds{
    FilterKind::State,   FilterKind::Class,     FilterKind::Weight,     FilterKind::Width,
    FilterKind::Slant,   FilterKind::Format,    FilterKind::Script,     FilterKind::Language,
    FilterKind::Feature, FilterKind::Axis,      FilterKind::Characters, FilterKind::Foundry,
    FilterKind::Licence, FilterKind::Version,   FilterKind::Variable,   FilterKind::Monospaced,
    FilterKind::Colour,  FilterKind::Embeddable};

/// What a filter's values are like.
enum class FilterForm : std::uint8_t {
    Choice, ///< the place of one of filterChoices()
    Tag,    ///< what the library has of it
    Text,   ///< written by the person
    Flag,   ///< no value but "1"
};
[[nodiscard]] FilterForm formOf(FilterKind kind);

/// What it is kept under: "weight".
[[nodiscard]] const char* keyOf(FilterKind kind);
/// Whether it can be set to `value`, as one that was kept; not if that is empty.
[[nodiscard]] bool isFilterValue(FilterKind kind, const std::string& value);

/// [main-thread] In the user's language: "Weight".
[[nodiscard]] std::string titleOf(FilterKind kind);
/// [main-thread] In the user's language, in order: "Light". Empty: it is not a choice.
[[nodiscard]] std::vector<std::string> filterChoices(FilterKind kind);

/// The filters that are set, and their values.
using FilterValues = std::map<FilterKind, std::string>;

/// What the library has of each kind that is a tag.
using FilterTags = std::map<FilterKind, std::set<std::string>>;
/// Throws Error.
[[nodiscard]] FilterTags readFilterTags(Library& library);

/// What the index is asked for; nullopt: nothing but states, which it does not know.
[[nodiscard]] std::optional<FaceQuery> queryOf(const FilterValues& values);
/// The state that is asked for.
[[nodiscard]] std::optional<FaceState> stateOf(const FilterValues& values);

} // namespace manager
