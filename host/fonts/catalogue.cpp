// SPDX-License-Identifier: MIT
// The font catalogue: keys, look-up by style and by name, refresh. Everything is a hash look-up per
// family, so that a document of any size resolves in linear time.
#include "host/fonts/catalogue.h"

#include "faces/matching.h"
#include "faces/namekey.h"
#include "faces/stylewords.h"

#include <algorithm>
#include <cstdlib>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace host {
namespace {

/// Which font of which file a face is of, whatever instance of it.
std::string fontOf(const InstalledFace& face) {
    return face.file + "\n" + std::to_string(face.index & 0xFFFF);
}

/// Everything that tells one face of the desktop from another.
std::string identityOf(const InstalledFace& face) {
    std::string identity = "+" + face.file;
    for (const std::string& part :
         {std::to_string(face.index), face.postScriptName, face.family, face.style}) {
        identity.append(1, '\n').append(part);
    }
    return identity;
}

} // namespace

Catalogue::Catalogue(Lister lister) : lister_(std::move(lister)) {
    list(lister_());
}

const FontEntry* Catalogue::entry(FontKey key) const noexcept {
    return key == noFont || key > entries_.size() ? nullptr : &entries_[key - 1];
}

FontKey Catalogue::keyFor(std::string identity) {
    const auto [place, added] =
        keys_.try_emplace(std::move(identity), static_cast<FontKey>(entries_.size() + 1));
    if (added) {
        entries_.emplace_back().key = place->second;
    }
    return place->second;
}

void Catalogue::list(std::vector<InstalledFace> faces) {
    for (FontEntry& entry : entries_) {
        entry.present = entry.present && entry.face.file.empty();
    }
    std::unordered_map<std::string, faces::Reach> reaches; // by fontOf
    std::unordered_set<std::string> withInstances;
    for (const InstalledFace& face : faces) {
        if (face.variable) {
            const auto end = [&](int weight, double width) {
                return faces::Style{static_cast<double>(weight), width, face.slant};
            };
            reaches[fontOf(face)] = {end(face.weight, face.stretch),
                                     end(face.weightTo, face.stretchTo)};
        } else if (face.index >> 16 != 0) { // of named instances alone
            withInstances.insert(fontOf(face));
        }
    }
    sorted_.clear();
    byFamily_.clear();
    byPostScriptName_.clear();
    byFullName_.clear();

    for (InstalledFace& face : faces) {
        // A variable font as a whole stands behind its named instances.
        const bool listed = !face.variable || !withInstances.contains(fontOf(face));
        const FontKey key = keyFor(identityOf(face));
        FontEntry& entry = entries_[key - 1];
        entry.present = true;
        entry.face = std::move(face);
        if (listed) {
            sorted_.push_back(key);
        }
    }
    std::sort(sorted_.begin(), sorted_.end(), [this](FontKey a, FontKey b) {
        const auto order = [this](FontKey key) {
            const InstalledFace& face = entries_[key - 1].face;
            return std::tie(face.family, face.style, face.file, face.index);
        };
        return order(a) < order(b);
    });
    // A fontconfig that lists a file twice must not show it twice.
    sorted_.erase(std::unique(sorted_.begin(), sorted_.end()), sorted_.end());
    for (const FontKey key : sorted_) {
        const FontEntry& entry = entries_[key - 1];
        const auto reach = reaches.empty() ? reaches.end() : reaches.find(fontOf(entry.face));
        index(entry, reach == reaches.end() ? std::nullopt : std::optional(reach->second));
    }
    for (const FontKey key : sorted_) { // where no face has them as the name that users read
        for (const std::string& name : entries_[key - 1].face.otherFullNames) {
            byFullName_.try_emplace(faces::nameKey(name), key);
        }
    }
}

void Catalogue::index(const FontEntry& entry, const std::optional<faces::Reach>& reach) {
    const InstalledFace& face = entry.face;
    if (!face.variable || !face.postScriptName.empty()) {
        // Faces may share a PostScript name; who reads it as a full name means the one that has it.
        const auto isFullName = [](const InstalledFace& of) {
            return of.fullName == of.postScriptName;
        };
        FontKey& named =
            byPostScriptName_.try_emplace(faces::postScriptKey(face.postScriptName), entry.key)
                .first->second;
        if (isFullName(face) && !isFullName(entries_[named - 1].face)) {
            named = entry.key;
        }
        byFullName_.try_emplace(faces::nameKey(face.fullName), entry.key);
    }
    const faces::Style look{static_cast<double>(face.weight), face.stretch, face.slant};
    const auto add = [&](const std::string& family, const std::string& style) {
        byFamily_[faces::nameKey(family)].add(entry.key, family, style, look, reach);
    };
    add(face.family, face.style);
    for (const InstalledFace::Alias& alias : face.aliases) {
        add(alias.family, alias.style);
    }
}

FontKey Catalogue::findByStyle(const Face& face) const {
    const auto family = byFamily_.find(faces::nameKey(face.family));
    if (family == byFamily_.end()) {
        return noFont;
    }
    const faces::AskedStyle asked(face.style, face.look());
    std::vector<std::size_t> found = family->second.named(asked);
    if (found.empty()) {
        found = family->second.meant(asked);
    }
    // The same face in several files: what its numbers say, then OpenType.
    const auto order = [&](std::size_t key) {
        const InstalledFace& of = entries_[key - 1].face;
        return std::make_tuple(std::abs(of.weight - face.weight), of.slant != face.slant,
                               !of.openType);
    };
    const auto best =
        std::min_element(found.begin(), found.end(),
                         [&](std::size_t a, std::size_t b) { return order(a) < order(b); });
    return best == found.end() ? noFont : static_cast<FontKey>(*best);
}

FontKey Catalogue::findByPostScriptName(std::string_view name) const {
    const auto found = byPostScriptName_.find(faces::postScriptKey(name));
    return found == byPostScriptName_.end() ? noFont : found->second;
}

FontKey Catalogue::findByFullName(const Face& face) const {
    for (const std::string& key :
         faces::keysOf({face.postScriptName, face.family, face.style}).fullNames) {
        const auto found = byFullName_.find(key);
        if (found == byFullName_.end()) {
            continue;
        }
        // A full name that is the family's is no name of a face, unless that is a plain one or the
        // only one.
        const auto family = byFamily_.find(key);
        if (family == byFamily_.end() || family->second.isOneFace() ||
            faces::isPlain(entries_[found->second - 1].face.style)) {
            return found->second;
        }
    }
    return noFont;
}

FontKey Catalogue::findByName(std::string_view name) const {
    if (const FontKey key = findByPostScriptName(name); key != noFont) {
        return key;
    }
    const auto found = byFullName_.find(faces::nameKey(name));
    return found == byFullName_.end() ? noFont : found->second;
}

FontKey Catalogue::resolve(const Face& face) {
    const FontKey key = face.origin == FaceOrigin::Named ? find(face) : noFont;
    return key == noFont ? noteUnlisted(face) : key;
}

FontKey Catalogue::find(const Face& face) const {
    if (const FontKey key = findByStyle(face); key != noFont) {
        return key;
    }
    if (!face.postScriptName.empty()) {
        if (const FontKey key = findByPostScriptName(face.postScriptName); key != noFont) {
            return key;
        }
    }
    const std::string conventional = conventionalPostScriptName(face.family, face.style);
    if (const FontKey key = findByPostScriptName(conventional); key != noFont) {
        return key;
    }
    // A family that nobody has may be a PostScript name, whatever weight is asked for beside it:
    // programs write the weight of the face that they name so.
    if (!hasFamily(face.family)) {
        if (const FontKey key = findByPostScriptName(face.family); key != noFont) {
            return key;
        }
    }
    return findByFullName(face);
}

bool Catalogue::hasFamily(std::string_view family) const {
    return byFamily_.contains(faces::nameKey(family));
}

bool Catalogue::says(const Face& face, const InstalledFace& font) const {
    // What is read of a drawing: the style in words comes from its values.
    Face read = face;
    read.style = faces::styleText(face.look());
    read.postScriptName = face.family == face.postScriptName ? face.postScriptName : std::string();
    const FontEntry* const found = entry(find(read));
    return found != nullptr &&
           std::tie(found->face.family, found->face.style, found->face.postScriptName) ==
               std::tie(font.family, font.style, font.postScriptName);
}

std::optional<Face> Catalogue::asWritten(FontKey key) const {
    const FontEntry* const of = entry(key);
    if (of == nullptr) {
        return std::nullopt;
    }
    const InstalledFace& font = of->face;
    Face face;
    face.family = font.family;
    face.style = font.style;
    face.postScriptName = font.postScriptName;
    face.slant = font.slant;
    face.stretch = font.stretch;
    face.origin = of->origin;
    if (face.origin != FaceOrigin::Named || font.file.empty()) {
        face.weight = font.weight;
        return face;
    }
    for (const int weight : {std::clamp((font.weight + 50) / 100 * 100, 100, 900), font.weight}) {
        face.weight = weight;
        if (says(face, font)) {
            return face;
        }
    }
    constexpr int regular = 400; // of names that say the weight by themselves
    for (const InstalledFace::Alias& alias : font.aliases) {
        for (const int weight : {regular, font.weight}) {
            Face other = face;
            other.family = alias.family;
            other.style = alias.style;
            other.weight = weight;
            if (says(other, font)) {
                return other;
            }
        }
    }
    face.family = font.postScriptName;
    return says(face, font) ? std::optional(face) : std::nullopt;
}

FontKey Catalogue::noteUnlisted(const Face& face) {
    std::string identity(1, static_cast<char>('a' + static_cast<int>(face.origin)));
    // One font, however it is written: a desktop that had it would find it by each of them.
    for (const std::string& part : {faces::nameKey(face.family), faces::nameKey(face.style),
                                    faces::postScriptKey(face.postScriptName)}) {
        identity.append(part).append(1, '\n');
    }
    const FontKey key = keyFor(std::move(identity));
    FontEntry& entry = entries_[key - 1];
    if (!entry.face.postScriptName.empty()) {
        return key;
    }
    entry.present = face.origin != FaceOrigin::Named;
    entry.origin = face.origin;
    entry.face.family = face.family;
    entry.face.style = face.style;
    entry.face.postScriptName = face.postScriptName.empty()
                                    ? conventionalPostScriptName(face.family, face.style)
                                    : face.postScriptName;
    entry.face.fullName = face.style.empty() || face.style == "Regular"
                              ? face.family
                              : face.family + " " + face.style;
    entry.face.weight = face.weight;
    entry.face.slant = face.slant;
    entry.face.stretch = face.stretch;
    return key;
}

bool Catalogue::refresh() {
    const auto snapshot = [this] {
        std::vector<std::pair<FontKey, InstalledFace>> result;
        result.reserve(sorted_.size());
        for (const FontKey key : sorted_) {
            result.emplace_back(key, entries_[key - 1].face);
        }
        return result;
    };
    const auto before = snapshot();
    list(lister_());
    return before != snapshot();
}

} // namespace host
