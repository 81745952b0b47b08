// SPDX-License-Identifier: MIT
// The font catalogue: keys, look-up by style and by name, refresh. Everything is a hash look-up per
// family, so that a document of any size resolves in linear time.
#include "host/fonts/catalogue.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <unordered_set>
#include <utility>

namespace host {
namespace {

constexpr double normalStretch = 100.0;

/// Weights that users take for the same: "Book" is 380 in many fonts that are meant as 400.
int weightClass(int weight) {
    return (weight + 50) / 100;
}

bool isSlanted(Slant slant) {
    return slant != Slant::Upright;
}

bool sameStretch(double a, double b) {
    return std::abs(a - b) < 4.0;
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

Face FontEntry::asFace() const {
    Face result;
    result.family = face.family;
    result.style = face.style;
    result.postScriptName = face.postScriptName;
    result.weight = std::clamp(weightClass(face.weight) * 100, 100, 900);
    result.slant = face.slant;
    result.stretch = face.stretch;
    result.origin = origin;
    return result;
}

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
    std::unordered_set<std::string> filesWithInstances;
    for (const InstalledFace& face : faces) {
        // Named instances alone have something in the upper half of the index.
        if (!face.variable && face.index >> 16 != 0) {
            filesWithInstances.insert(face.file);
        }
    }
    sorted_.clear();
    byFamily_.clear();
    byPostScriptName_.clear();
    byFullName_.clear();

    std::vector<FontKey> whole; // variable fonts that their named instances stand for
    for (InstalledFace& face : faces) {
        const bool listed = !face.variable || !filesWithInstances.contains(face.file);
        const FontKey key = keyFor(identityOf(face));
        FontEntry& entry = entries_[key - 1];
        entry.present = true;
        entry.face = std::move(face);
        (listed ? sorted_ : whole).push_back(key);
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
        index(entries_[key - 1]);
    }
    for (const FontKey key : whole) {
        index(entries_[key - 1]);
    }
}

void Catalogue::index(const FontEntry& entry) {
    const InstalledFace& face = entry.face;
    if (!face.variable || !face.postScriptName.empty()) {
        // Faces may share a PostScript name; who reads it as a full name means the one that has it.
        const auto isFullName = [](const InstalledFace& of) {
            return of.fullName == of.postScriptName;
        };
        FontKey& named =
            byPostScriptName_.try_emplace(face.postScriptName, entry.key).first->second;
        if (isFullName(face) && !isFullName(entries_[named - 1].face)) {
            named = entry.key;
        }
        byFullName_.try_emplace(foldName(face.fullName), entry.key);
    }
    const auto add = [&](const std::string& family, const std::string& style, bool asMeasured) {
        Candidate candidate{entry.key,    face.weight,     face.slant,
                            face.stretch, foldName(style), false};
        std::vector<Candidate>& candidates = byFamily_[foldName(family)];
        if (asMeasured) {
            candidates.push_back(candidate);
        }
        // A legacy family holds what its style leaves out: "Foo Condensed", "Bold". And the words
        // of a style are what users go by when a font's numbers disagree.
        const StyleWords words = readStyleWords(style);
        if (words.complete && !style.empty() && !face.variable) {
            candidate.weight = words.weight;
            candidate.slant = words.slant;
            candidate.stretch = words.stretch;
            candidate.byWords = true;
            candidates.push_back(candidate);
        } else if (!asMeasured) {
            candidates.push_back(candidate);
        }
    };
    add(face.family, face.style, true);
    for (const InstalledFace::Alias& alias : face.aliases) {
        add(alias.family, alias.style, alias.family == face.family);
    }
}

FontKey Catalogue::findByStyle(const Face& face) const {
    const auto family = byFamily_.find(foldName(face.family));
    if (family == byFamily_.end()) {
        return noFont;
    }
    const std::string style = foldName(face.style);
    // Smaller is better: style by name, slant as wanted, weight, numbers before words, technology.
    using Rank = std::tuple<bool, bool, int, bool, bool>;
    const Candidate* best = nullptr;
    Rank bestRank{};
    for (const Candidate& candidate : family->second) {
        const FontEntry& entry = entries_[candidate.key - 1];
        const bool named = candidate.style == style;
        bool fits = isSlanted(candidate.slant) == isSlanted(face.slant);
        if (entry.face.variable) {
            fits = fits && face.weight >= entry.face.weight && face.weight <= entry.face.weightTo &&
                   face.stretch >= entry.face.stretch - 4.0 &&
                   face.stretch <= entry.face.stretchTo + 4.0;
        } else {
            fits = fits && weightClass(candidate.weight) == weightClass(face.weight) &&
                   sameStretch(candidate.stretch, face.stretch);
        }
        if (!named && !fits) {
            continue;
        }
        const Rank rank{!named, candidate.slant != face.slant,
                        std::abs(candidate.weight - face.weight),
                        candidate.byWords || entry.face.variable, !entry.face.openType};
        if (best == nullptr || rank < bestRank) {
            best = &candidate;
            bestRank = rank;
        }
    }
    if (best == nullptr) {
        return noFont;
    }
    const FontEntry& entry = entries_[best->key - 1];
    return entry.face.variable ? instanceOf(entry, face, family->second) : best->key;
}

FontKey Catalogue::instanceOf(const FontEntry& variable, const Face& face,
                              std::span<const Candidate> family) const {
    FontKey nearest = variable.key;
    int distance = 0;
    for (const Candidate& candidate : family) {
        const InstalledFace& instance = entries_[candidate.key - 1].face;
        if (instance.variable || instance.file != variable.face.file ||
            isSlanted(instance.slant) != isSlanted(face.slant)) {
            continue;
        }
        const int away = std::abs(instance.weight - face.weight);
        if (nearest == variable.key || away < distance) {
            nearest = candidate.key;
            distance = away;
        }
    }
    return nearest;
}

FontKey Catalogue::findByName(std::string_view name) const {
    if (const auto found = byPostScriptName_.find(name); found != byPostScriptName_.end()) {
        return found->second;
    }
    const auto found = byFullName_.find(foldName(name));
    return found == byFullName_.end() ? noFont : found->second;
}

FontKey Catalogue::resolve(const Face& face) {
    if (face.origin != FaceOrigin::Named) {
        return noteUnlisted(face);
    }
    if (const FontKey key = findByStyle(face); key != noFont) {
        return key;
    }
    const auto byPostScriptName = [this](std::string_view name) {
        const auto found = byPostScriptName_.find(name);
        return found == byPostScriptName_.end() ? noFont : found->second;
    };
    if (!face.postScriptName.empty()) {
        if (const FontKey key = byPostScriptName(face.postScriptName); key != noFont) {
            return key;
        }
    }
    const std::string conventional = conventionalPostScriptName(face.family, face.style);
    if (const FontKey key = byPostScriptName(conventional); key != noFont) {
        return key;
    }
    // A family that nobody has may be a PostScript name, whatever weight is asked for beside it:
    // programs write the weight of the face that they name so.
    if (!byFamily_.contains(foldName(face.family))) {
        if (const FontKey key = byPostScriptName(face.family); key != noFont) {
            return key;
        }
    }
    // The whole name of a face in the family's place says nothing of a style beside it.
    if (face.weight == 400 && face.slant == Slant::Upright &&
        sameStretch(face.stretch, normalStretch)) {
        if (const FontKey key = findByName(face.family); key != noFont) {
            return key;
        }
    }
    return noteUnlisted(face);
}

FontKey Catalogue::noteUnlisted(const Face& face) {
    std::string identity(1, static_cast<char>('a' + static_cast<int>(face.origin)));
    for (const std::string& part : {face.family, face.style, face.postScriptName}) {
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
