// SPDX-License-Identifier: MIT
// The rule, over whatever faces an index has found.
#include "faces/matching.h"

#include "faces/namekey.h"

#include <algorithm>
#include <utility>

namespace faces {

namespace {

void addOnce(std::vector<std::string>& keys, std::string key) {
    if (!key.empty() && std::find(keys.begin(), keys.end(), key) == keys.end()) {
        keys.push_back(std::move(key));
    }
}

/// Family and style as they conventionally stand in a PostScript name.
std::pair<std::string_view, std::string_view> splitPostScriptName(std::string_view name) {
    const std::size_t dash = name.rfind('-');
    return dash == std::string_view::npos ? std::pair(name, std::string_view())
                                          : std::pair(name.substr(0, dash), name.substr(dash + 1));
}

/// Family and style together, and the family alone where the style is plain.
std::vector<std::string> fullNameKeys(std::string_view family, std::string_view style) {
    std::vector<std::string> keys;
    if (family.empty()) {
        return keys;
    }
    const std::string key = nameKey(family);
    addOnce(keys, key + nameKey(style));
    if (isPlain(style)) {
        addOnce(keys, key);
    }
    return keys;
}

Remark sameFamily() {
    return {marked("same family")};
}

class Matching {
public:
    Matching(const Wanted& wanted, std::span<const Known> known)
        : wanted_(wanted), known_(known), keys_(keysOf(wanted)), asked_(wanted.style) {}

    std::vector<Match> run() {
        std::vector<Match> found = byPostScriptName(keys_.postScriptName);
        if (!found.empty()) {
            return found;
        }
        Family family;
        for (std::size_t i = 0; i < known_.size(); ++i) {
            for (const Name& name : known_[i].names) {
                if (!keys_.family.empty() && nameKey(name.family) == keys_.family) {
                    family.add(i, name.family, name.style, known_[i].style, known_[i].reach);
                }
            }
        }
        found = exact(family.named(asked_), Ground::FamilyAndStyle);
        if (found.empty()) {
            found = byFullName(family);
        }
        if (found.empty()) {
            found = exact(family.meant(asked_), Ground::OnlyOfThisStyle);
        }
        if (found.empty() && family.isEmpty()) {
            found = byPostScriptName(keys_.postScriptFamily);
        }
        if (found.empty()) {
            found = candidates(family);
        }
        return found;
    }

private:
    static std::vector<Match> exact(const std::vector<std::size_t>& faces, Ground ground) {
        std::vector<Match> found;
        found.reserve(faces.size());
        for (const std::size_t face : faces) {
            found.push_back({face, ground, 0, {}});
        }
        return found;
    }

    std::vector<Match> byPostScriptName(const std::string& key) const {
        std::vector<std::size_t> found;
        for (std::size_t i = 0; i < known_.size() && !key.empty(); ++i) {
            if (postScriptKey(known_[i].postScriptName) == key) {
                found.push_back(i);
            }
        }
        return exact(found, Ground::PostScriptName);
    }

    // That is no name of a face in its family, unless it is a plain one or the only one.
    bool isOnlyTheFamilys(const std::string& fullName, const Known& face,
                          const Family& family) const {
        return fullName == keys_.family && !family.isEmpty() && !family.isOneFace() &&
               (face.names.empty() || !isPlain(face.names.front().style));
    }

    std::vector<Match> byFullName(const Family& family) const {
        for (const std::string& key : keys_.fullNames) {
            std::vector<std::size_t> found;
            for (std::size_t i = 0; i < known_.size(); ++i) {
                const auto& names = known_[i].fullNames;
                if (std::any_of(names.begin(), names.end(),
                                [&](const std::string& name) { return nameKey(name) == key; }) &&
                    !isOnlyTheFamilys(key, known_[i], family)) {
                    found.push_back(i);
                }
            }
            if (!found.empty()) {
                return exact(found, Ground::FullName);
            }
        }
        return {};
    }

    std::vector<Match> candidates(const Family& family) const {
        std::vector<Match> found;
        for (const Family::Near& near : family.nearest(asked_)) {
            found.push_back(
                {near.face,
                 Ground::SameFamily,
                 near.distance,
                 {sameFamily(), Remark{marked("%1 instead of %2"), near.style, asked_.text}}});
        }
        addOtherSpellings(wanted_.family, asked_, found);
        const auto [name, style] = splitPostScriptName(wanted_.postScriptName);
        addOtherSpellings(name, AskedStyle(style), found);
        return found;
    }

    void addOtherSpellings(std::string_view name, const AskedStyle& asked,
                           std::vector<Match>& found) const {
        const std::string key = normalisedFamilyKey(name);
        Family family;
        std::vector<std::string_view> spellings(known_.size());
        for (std::size_t i = 0; i < known_.size(); ++i) {
            const bool known = std::any_of(found.begin(), found.end(),
                                           [i](const Match& match) { return match.face == i; });
            for (const Name& spelt : known_[i].names) {
                if (!known && !key.empty() && normalisedFamilyKey(spelt.family) == key) {
                    family.add(i, spelt.family, spelt.style, known_[i].style, known_[i].reach);
                    spellings[i] = spelt.family;
                }
            }
        }
        for (const Family::Near& near : family.nearest(asked)) {
            const std::string_view spelling = spellings[near.face];
            Remarks reason = {sameFamily()};
            if (postScriptKey(spelling) != postScriptKey(name)) {
                reason = {
                    {marked("family %1 instead of %2"), std::string(spelling), std::string(name)}};
            }
            if (nameKey(near.style) != asked.key) {
                reason.push_back({marked("%1 instead of %2"), near.style, asked.text});
            }
            found.push_back({near.face, Ground::OtherSpelling, near.distance, std::move(reason)});
        }
    }

    const Wanted& wanted_;
    std::span<const Known> known_;
    Keys keys_;
    AskedStyle asked_;
};

} // namespace

bool isPlain(std::string_view style) {
    const StyleWords words = readStyleWords(style);
    return words.complete && words.style() == Style();
}

Keys keysOf(const Wanted& wanted) {
    Keys keys{postScriptKey(wanted.postScriptName),
              postScriptKey(wanted.family),
              nameKey(wanted.family),
              fullNameKeys(wanted.family, wanted.style),
              {}};
    if (keys.postScriptName != wanted.postScriptName) { // it has blanks, as only full names may
        addOnce(keys.fullNames, nameKey(wanted.postScriptName));
    }
    addOnce(keys.normalisedFamilies, normalisedFamilyKey(wanted.family));
    addOnce(keys.normalisedFamilies,
            normalisedFamilyKey(splitPostScriptName(wanted.postScriptName).first));
    return keys;
}

std::vector<Match> match(const Wanted& wanted, std::span<const Known> faces) {
    return Matching(wanted, faces).run();
}

} // namespace faces
