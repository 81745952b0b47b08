// SPDX-License-Identifier: MIT
// Choosing words.
#include "host/suites/documentsamples.h"

#include "host/documents/textline.h"
#include "host/fonts/desktopfonts.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

namespace host {

namespace {

constexpr std::size_t mostSamples = 12;

/// A text that did not fit is shown shortened.
bool shows(const std::string& text, const std::string& name) {
    constexpr std::string_view dots = "\u2026";
    return text == name ||
           (text.size() > dots.size() && text.ends_with(dots) &&
            name.starts_with(std::string_view(text).substr(0, text.size() - dots.size())));
}

bool shows(const RowTexts& row, const std::string& name) {
    return std::any_of(row.begin(), row.end(),
                       [&](const std::string& text) { return shows(text, name); });
}

struct LackingFace {
    FaceId id;
    const FontEntry* entry;
};

std::vector<LackingFace> lackingFaces(OpenDocument& document, FontList& fonts) {
    std::vector<LackingFace> result;
    for (FaceId id = 0; id < document.document().faces().size(); ++id) {
        const FontEntry* const entry = fonts.catalogue().entry(document.fontOf(id, fonts));
        if (!entry->present) {
            result.push_back({id, entry});
        }
    }
    return result;
}

/// Rows that tell a family's faces apart mean those; a row may show less.
std::vector<LackingFace> namedBy(const std::vector<RowTexts>& rows,
                                 std::vector<LackingFace> faces) {
    const auto those = [&](auto isMeant) {
        std::vector<LackingFace> result;
        std::copy_if(faces.begin(), faces.end(), std::back_inserter(result),
                     [&](const LackingFace& face) {
                         return std::any_of(rows.begin(), rows.end(), [&](const RowTexts& row) {
                             return isMeant(row, face.entry->face);
                         });
                     });
        return result;
    };
    const auto byFamily = [](const RowTexts& row, const InstalledFace& face) {
        return shows(row, face.family);
    };
    auto meant = those([&](const RowTexts& row, const InstalledFace& face) {
        return byFamily(row, face) && shows(row, face.style);
    });
    if (meant.empty()) {
        meant = those(byFamily);
    }
    return meant.empty() ? std::move(faces) : meant;
}

std::vector<Sample> samplesOf(OpenDocument& open, const std::vector<LackingFace>& faces,
                              const DesktopFonts& desktop) {
    std::vector<Sample> samples;
    const Document& document = open.document();
    for (const TextRun& run : document.runs()) {
        const auto face = std::find_if(faces.begin(), faces.end(), [&](const LackingFace& lacking) {
            return lacking.id == run.face;
        });
        if (!run.visible || face == faces.end()) {
            continue;
        }
        Sample sample{lineOf(document.text(run)), face->entry->face.fullName, {}};
        if (std::any_of(samples.begin(), samples.end(), [&](const Sample& known) {
                return known.text == sample.text && known.lacking == sample.lacking;
            })) {
            continue;
        }
        auto standIn = desktop.standIn(document.face(run.face), sample.text);
        if (!standIn) {
            break;
        }
        sample.standIn = std::move(*standIn);
        samples.push_back(std::move(sample));
        if (samples.size() == mostSamples) {
            break;
        }
    }
    return samples;
}

} // namespace

FontSource fontSourceOf(Application& application) {
    auto desktop = std::make_shared<std::optional<DesktopFonts>>();
    FontSource source;
    source.face = [&application](const std::string& name) -> std::optional<FaceFile> {
        const FontEntry* const entry =
            application.fonts().catalogue().entry(application.fonts().find(name));
        return entry != nullptr ? std::optional(fileOf(entry->face)) : std::nullopt;
    };
    source.someCharacters = [desktop](const FaceFile& face) {
        if (!*desktop) {
            desktop->emplace();
        }
        return (*desktop)->someCharacters(face);
    };
    source.samples = [&application, desktop](const std::vector<RowTexts>& rows) {
        OpenDocument* const document = application.documents().current();
        if (document == nullptr) {
            return std::vector<Sample>();
        }
        desktop->emplace(); // fonts may have come
        return samplesOf(*document, namedBy(rows, lackingFaces(*document, application.fonts())),
                         **desktop);
    };
    return source;
}

} // namespace host
