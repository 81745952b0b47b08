// SPDX-License-Identifier: MIT
// The fonts of the host: every face that the desktop offers, the faces that a document names and
// the desktop lacks, and the way from the one to the other.
#pragma once

#include "faces/family.h"
#include "host/documents/face.h"
#include "host/documents/textmap.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// Opaque; 0 is no font. A key keeps its meaning for the catalogue's lifetime.
using FontKey = std::uint32_t;
inline constexpr FontKey noFont = 0;

enum class FontTechnology : std::uint8_t { PostScript = 0, TrueType = 1 };

/// One face of the desktop, as the font library reports it. Texts are UTF-8.
struct InstalledFace {
    std::string postScriptName;
    std::string family;                      ///< typographic family
    std::string style;                       ///< typographic style, the pair of `family`
    std::string fullName;                    ///< what users read
    std::vector<std::string> otherFullNames; ///< in other languages, or of the family alone
    std::string file;
    int index = 0; ///< face in the file, named instance in the upper 16 bits
    FontTechnology technology = FontTechnology::TrueType;
    bool openType = false;
    bool symbol = false; ///< it has signs in the places of letters
    int weight = 400;
    Slant slant = Slant::Upright;
    double stretch = 100.0;

    /// Further (family, style) pairs under which the face is known, legacy and translated ones.
    struct Alias {
        std::string family;
        std::string style;
        bool operator==(const Alias&) const = default;
    };
    std::vector<Alias> aliases;

    /// A variable font as a whole stands for every weight and width between these.
    bool variable = false;
    int weightTo = 400; ///< with `weight` as the lower end
    double stretchTo = 100.0;

    bool operator==(const InstalledFace&) const = default;
};

/// An entry of the catalogue: a face of the desktop, or one that only a document names.
struct FontEntry {
    FontKey key = noFont;
    bool present = false;
    FaceOrigin origin = FaceOrigin::Named;
    InstalledFace face; ///< of a face that only a document names: the document's names
};

/// Lists the faces of the desktop through fontconfig, noticing what changed since the last call.
/// Bitmap fonts are left out. In no particular order.
[[nodiscard]] std::vector<InstalledFace> listInstalledFaces();

/// [one-thread]
class Catalogue {
public:
    /// [one-thread] The faces of the desktop, as of the call.
    using Lister = std::function<std::vector<InstalledFace>()>;

    /// `lister` is asked now and at every refresh.
    explicit Catalogue(Lister lister = listInstalledFaces);

    /// All present faces of the desktop, sorted by family, style, file and index.
    std::span<const FontKey> faces() const noexcept { return sorted_; }

    /// The entry of a key, nullptr for one that was never handed out. Valid until the next refresh.
    const FontEntry* entry(FontKey key) const noexcept;

    /// The entry for a face that a document names. Generic and embedded faces are always present.
    /// Others are judged by the rule of faces/matching.h, but sought by family and style first, by
    /// which they are drawn: then by PostScript name, which some programs write in place of the
    /// family, with or without the style beside it, then by full name. What is not found gets an
    /// entry with the document's names and the conventional PostScript name, present = false; the
    /// same names always give the same key.
    [[nodiscard]] FontKey resolve(const Face& face);

    /// As resolve() finds it among the desktop's fonts, else noFont.
    [[nodiscard]] FontKey find(const Face& face) const;
    [[nodiscard]] bool hasFamily(std::string_view family) const;

    /// The names and values by which a drawing says this font, and no other: those that resolve to
    /// it, or to the same face in another file, when they are read again. Weights that every
    /// program knows come first, then the font's own, its further names, and its PostScript name in
    /// the family's place. Nothing when none of them says it.
    [[nodiscard]] std::optional<Face> asWritten(FontKey key) const;

    /// The face of the desktop with exactly this PostScript name, else with this full name.
    [[nodiscard]] FontKey findByName(std::string_view name) const;

    /// Lists the desktop's faces again. Keys of faces that are still there stay theirs; those of
    /// faces that went stay known, as not present. True when anything came, went or changed.
    bool refresh();

private:
    FontKey keyFor(std::string identity);
    FontKey noteUnlisted(const Face& face);
    bool says(const Face& face, const InstalledFace& font) const;
    FontKey findByStyle(const Face& face) const;
    FontKey findByPostScriptName(std::string_view name) const;
    FontKey findByFullName(const Face& face) const;
    void list(std::vector<InstalledFace> faces);
    void index(const FontEntry& entry, const std::optional<faces::Reach>& reach);

    Lister lister_;
    std::deque<FontEntry> entries_; ///< by key - 1; references stay valid while it grows
    TextMap<FontKey> keys_;         ///< identity to key
    std::vector<FontKey> sorted_;
    // By the keys of faces/namekey.h.
    TextMap<faces::Family> byFamily_;
    TextMap<FontKey> byPostScriptName_;
    TextMap<FontKey> byFullName_;
};

} // namespace host
