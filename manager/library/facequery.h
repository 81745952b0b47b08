// SPDX-License-Identifier: MIT
// What a person filters a library by.
#pragma once

#include "faces/face.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace manager {

enum class FaceId : std::int64_t;

/// A range of numbers, both ends in it.
struct Range {
    double from = 0;
    double to = 0;
};

enum class FaceOrder : std::uint8_t {
    ByName, ///< family, then weight, width and slant
    ByFolder,
};

/// Conditions that all have to hold. What is empty or not set is no condition.
struct FaceQuery {
    std::string text;   ///< words, each of which some name of the face holds; case does not count
    std::string folder; ///< at or under it
    std::optional<std::int32_t> container;
    std::optional<std::vector<FaceId>> among; ///< one of these

    std::optional<Range> weight; ///< of a variable font without instances what its axis reaches
    std::optional<Range> width;
    std::vector<faces::Slant> slants; ///< one of these; and so for the next two
    std::vector<faces::Technology> technologies;
    std::vector<faces::Classification> classifications;
    std::optional<bool> monospaced;
    std::optional<bool> symbolic;
    std::optional<bool> colour;
    std::optional<bool> variable;
    std::optional<bool> away;

    std::string version; ///< begins with this
    std::string foundry; ///< holds this; case of ASCII letters does not count; and so for the next
    std::string licence; ///< in its text, its link or the copyright
    /// May be embedded in documents that others can edit (OS/2 fsType 0 or 8).
    std::optional<bool> embeddable;

    std::vector<std::string> scripts;   ///< ISO 15924; all of these; and so for the next ones
    std::vector<std::string> languages; ///< "de", "pt-br"
    std::vector<std::string> features;  ///< OpenType tags
    std::vector<std::string> axes;      ///< tags
    std::u32string characters;          ///< that are covered

    bool spares = false; ///< also files that another one of their container stands for
    FaceOrder order = FaceOrder::ByName;
    std::size_t offset = 0;
    std::size_t limit = 100;
};

/// [any-thread] What FaceQuery::characters is for a text in UTF-8: line ends and their like are not
/// asked for. Throws Error: it is none.
[[nodiscard]] std::u32string charactersOf(const std::string& text);

} // namespace manager
