// SPDX-License-Identifier: MIT
// Choosing new faces and giving them to runs.
#include "host/replace/replacing.h"

#include "faces/namekey.h"
#include "faces/stylewords.h"

#include <optional>
#include <unordered_map>

namespace host {

namespace {

std::string nameOf(const Face& face) {
    return face.style.empty() ? face.family : face.family + " " + face.style;
}

/// "Family Style" where that is no full name: by each place at which it may part.
FontKey findInParts(const std::string& name, const Catalogue& catalogue) {
    for (std::size_t blank = name.rfind(' '); blank != std::string::npos && blank != 0;
         blank = name.rfind(' ', blank - 1)) {
        Face face;
        face.family = name.substr(0, blank);
        face.style = name.substr(blank + 1);
        const faces::Style look = faces::readStyleWords(face.style).style();
        face.weight = static_cast<int>(look.weight);
        face.stretch = look.width;
        face.slant = look.slant;
        if (const FontKey key = catalogue.find(face); key != noFont) {
            return key;
        }
    }
    return noFont;
}

/// The new face for `old`, as a document writes it.
class Choice {
public:
    Choice(const Document& document, const Catalogue& catalogue)
        : document_(document), catalogue_(catalogue) {}

    Face of(const Face& old, const ReplacementTable::Rule& rule) const {
        const FontKey key = fontFor(old, rule);
        const FontEntry& entry = *catalogue_.entry(key);
        const std::optional<Face> face = catalogue_.asWritten(key);
        if (!face) {
            fail(rule, "no names of a drawing say " + entry.face.fullName + " and no other font");
        }
        if (document_.embeds(face->family)) {
            fail(rule, "the drawing brings a family " + face->family +
                           " along, which would be "
                           "shown in its place");
        }
        return *face;
    }

private:
    FontKey fontFor(const Face& old, const ReplacementTable::Rule& rule) const {
        const bool family = catalogue_.hasFamily(rule.name);
        if (family) {
            if (const FontKey key = inFamily(old, rule.name, old.weight); key != noFont) {
                return key;
            }
        }
        // Also a family, by names that older programs read: "Roboto Black".
        const FontKey named = catalogue_.findByName(rule.name);
        if (named != noFont &&
            faces::nameKey(catalogue_.entry(named)->face.family) != faces::nameKey(rule.name)) {
            const FontKey key = family ? inFamily(old, rule.name, Face().weight) : noFont;
            return key == noFont ? named : key;
        }
        if (family) {
            fail(rule, "the desktop has " + rule.name + ", but not in " + old.style + " for " +
                           nameOf(old));
        }
        const FontKey key = findInParts(rule.name, catalogue_);
        if (key == noFont) {
            fail(rule, "the desktop has no font " + rule.name);
        }
        return key;
    }

    /// The family's face in another one's width and slant.
    FontKey inFamily(const Face& like, const std::string& family, int weight) const {
        Face wanted = like;
        wanted.family = family;
        wanted.weight = weight;
        wanted.style = weight == like.weight ? like.style : faces::styleText(wanted.look());
        wanted.postScriptName.clear();
        wanted.origin = FaceOrigin::Named;
        return catalogue_.find(wanted);
    }

    [[noreturn]] void fail(const ReplacementTable::Rule& rule, const std::string& reason) const {
        throw DocumentError(document_.name(), reason + " (" + rule.place + ")");
    }

    const Document& document_;
    const Catalogue& catalogue_;
};

} // namespace

std::vector<ReplacedFace> replaceFaces(Document& document, const ReplacementTable& table,
                                       Catalogue& catalogue) {
    const Choice choice(document, catalogue);
    std::vector<std::optional<Face>> newFaces; // by the faces that there are now
    for (const Face& old : document.faces()) {
        const ReplacementTable::Rule* const rule =
            old.origin == FaceOrigin::Embedded ? nullptr : table.ruleFor(old);
        std::optional<Face>& face = newFaces.emplace_back();
        if (rule != nullptr) {
            face = choice.of(old, *rule);
            if (catalogue.find(old) == catalogue.find(*face)) {
                face.reset();
            }
        }
    }
    std::vector<ReplacedFace> replaced;
    std::unordered_map<FaceId, std::size_t> rows;
    for (RunId run = 0; run < document.runs().size(); ++run) {
        const FaceId old = document.run(run).face;
        if (!newFaces[old]) {
            continue;
        }
        const auto [row, added] = rows.try_emplace(old, replaced.size());
        if (added) {
            replaced.push_back({nameOf(document.face(old)), nameOf(*newFaces[old]), 0});
        }
        ++replaced[row->second].runs;
        document.replaceFace(run, *newFaces[old]);
    }
    document.endStep();
    return replaced;
}

} // namespace host
