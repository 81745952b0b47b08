// SPDX-License-Identifier: MIT
// Holds drawings' faces against the desktop's fonts.
#pragma once

#include "host/check/drawingfaces.h"
#include "host/fonts/facestate.h"
#include "host/fonts/substitutes.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace host {

/// A face of a drawing. Faces that are the same font share a row.
struct CheckedFace {
    FaceUse use; ///< of the first of them, with the runs of all
    FaceState state = FaceState::Missing;
    std::string postScriptName;   ///< the font's; of a missing one what the document says, else
                                  ///< the conventional one
    std::optional<FaceFile> font; ///< of an installed face
    std::optional<Substitute> drawnIn; ///< of a missing face
    std::u32string lackingCharacters; ///< that no font of the desktop has, of what the drawing does
                                      ///< not bring along
};

struct CheckedDrawing {
    std::string file;
    std::string error; ///< see DrawingFaces
    std::vector<CheckedFace> faces;

    [[nodiscard]] bool missesFonts() const;
    [[nodiscard]] bool lacksCharacters() const;
};

struct CheckSummary {
    struct MissingFace {
        Face face;
        std::size_t drawings = 0;
        std::size_t runs = 0;
        std::optional<Substitute> drawnIn; ///< in the first of the drawings
    };
    std::size_t drawings = 0;
    std::size_t unreadable = 0;
    std::size_t complete = 0;                          ///< readable, and no face is missing
    std::vector<MissingFace> missing;                  ///< those in most drawings first
    std::map<char32_t, std::size_t> lackingCharacters; ///< with the drawings that have them
};

/// [one-thread]
class Checker {
public:
    /// `lister` gives the desktop's faces; it is asked once.
    explicit Checker(Catalogue::Lister lister = listInstalledFaces);

    [[nodiscard]] CheckedDrawing check(DrawingFaces drawing);
    /// Of all that were checked.
    [[nodiscard]] CheckSummary summary() const;

private:
    CheckedFace judge(FaceUse use, FontKey font);
    void count(const CheckedDrawing& drawing, const std::vector<FontKey>& fonts);
    std::optional<Substitute> substituteFor(const FaceUse& use, FontKey font);
    std::u32string undrawable(const std::u32string& characters);

    Catalogue catalogue_;
    std::optional<Substitutes> substitutes_; ///< made when it is first needed
    std::map<std::pair<FontKey, std::vector<std::string>>, std::optional<Substitute>> known_;
    std::map<FontKey, CheckSummary::MissingFace> missing_;
    CheckSummary counts_; ///< without the missing faces
};

} // namespace host
