// SPDX-License-Identifier: MIT
// The faces of one family, and which of them a style means.
#pragma once

#include "faces/face.h"
#include "faces/stylewords.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace faces {

/// What a variable font reaches: weights and widths from the one to the other.
struct Reach {
    Style from;
    Style to;
};

/// A style that is asked for.
class AskedStyle {
public:
    /// By name. An empty one means the family's upright text face.
    explicit AskedStyle(std::string_view style);
    /// By weight, width and slant. `style` counts beside them unless it is only their customary
    /// name and says less: "Light" of the weight 250.
    AskedStyle(std::string_view style, const Style& look);

    std::string text;        ///< for people
    std::string key;         ///< nameKey; empty: there is no name to look for
    Style look;              ///< as far as it is known
    bool lookIsKnown = true; ///< false: there are words in it that nobody knows
    std::uint64_t words = 0; ///< as in StyleWords
    bool isTold = true;
};

/// One family's faces, each under one or more styles. Numbers of faces are the caller's.
class Family {
public:
    struct Near {
        std::size_t face = 0;
        double distance = 0;
        std::string style; ///< by which the face is called here
    };

    /// `family` as the face spells it; `reach` when the face belongs to a variable font.
    void add(std::size_t face, std::string_view family, std::string_view style, const Style& look,
             const std::optional<Reach>& reach = {});

    [[nodiscard]] bool isEmpty() const { return members_.empty(); }
    /// Whether all are the same face, in several files.
    [[nodiscard]] bool isOneFace() const;
    /// The faces that bear the style's name.
    [[nodiscard]] std::vector<std::size_t> named(const AskedStyle& asked) const;
    /// The only face that is what the style's words mean, in each file that has it; of faces that
    /// differ in the size alone that they are drawn for, the one for text. None where the family
    /// uses one of these words for another face.
    [[nodiscard]] std::vector<std::size_t> meant(const AskedStyle& asked) const;
    /// All, each once, the nearest first.
    [[nodiscard]] std::vector<Near> nearest(const AskedStyle& asked) const;

private:
    /// What a face is under one of its names.
    struct Member {
        std::size_t face = 0;
        std::string style;
        std::string key;
        Style look;
        std::vector<Style> said; ///< what words say against the numbers, where those may be wrong
        std::optional<Reach> reach;
        std::uint64_t words = 0; ///< of all the face's names here
        std::optional<int> size; ///< that it is drawn for, in points: 12 of "12 Regular"
    };
    using Members = std::vector<const Member*>;

    [[nodiscard]] bool isFree(const AskedStyle& asked, const Member& member) const;
    static void keepTextSize(Members& members);
    [[nodiscard]] static bool areOneFace(const Members& members);

    std::vector<Member> members_;
    std::uint64_t words_ = 0;
};

} // namespace faces
