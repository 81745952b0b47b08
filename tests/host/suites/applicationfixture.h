// SPDX-License-Identifier: MIT
// A host with fonts and a document of the test's own, and a plug-in that has acquired all suites.
#pragma once

#include "ate/itext.h"
#include "faces/stylewords.h"
#include "host/suites/application.h"
#include "suitepointers.h"
#include "tests/host/core/recordingfrontend.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace host::test {

inline InstalledFace installed(const std::string& family, const std::string& style) {
    InstalledFace face;
    face.family = family;
    face.style = style;
    face.postScriptName = conventionalPostScriptName(family, style);
    face.fullName = "The " + family + " " + style;
    const faces::Style look = faces::readStyleWords(style).style();
    face.weight = static_cast<int>(look.weight);
    face.slant = look.slant;
    face.stretch = look.width;
    face.file = "/fonts/" + face.postScriptName;
    return face;
}

inline Face named(const std::string& family, const std::string& style) {
    const faces::Style look = faces::readStyleWords(style).style();
    return {family,           style, "", static_cast<int>(look.weight), look.slant, look.width,
            FaceOrigin::Named};
}

struct MadeRun {
    Face face;
    bool visible = true;
    std::string text = {};
};

/// A document of layers of text frames of runs.
inline Document makeDocument(const std::vector<std::vector<std::vector<MadeRun>>>& layers) {
    DocumentParts parts;
    parts.name = "made.svg";
    for (const auto& frames : layers) {
        const auto group = static_cast<ArtId>(parts.arts.size());
        parts.layers.push_back({"layer", group});
        parts.arts.push_back({ArtKind::Group, noArt, noArt, noArt, 0, 0});
        for (const auto& runs : frames) {
            const auto frame = static_cast<ArtId>(parts.arts.size());
            if (parts.arts[group].firstChild == noArt) {
                parts.arts[group].firstChild = frame;
            } else {
                parts.arts[frame - 1].nextSibling = frame;
            }
            parts.arts.push_back({ArtKind::TextFrame, group, noArt, noArt,
                                  static_cast<RunId>(parts.runs.size()),
                                  static_cast<std::uint32_t>(runs.size())});
            for (const MadeRun& run : runs) {
                const auto known = std::find(parts.faces.begin(), parts.faces.end(), run.face);
                const auto face = static_cast<FaceId>(known - parts.faces.begin());
                if (known == parts.faces.end()) {
                    parts.faces.push_back(run.face);
                }
                parts.runs.push_back({static_cast<std::uint32_t>(parts.text.size()),
                                      static_cast<std::uint32_t>(run.text.size()), face,
                                      run.visible, false});
                parts.text += run.text;
            }
        }
    }
    return Document(std::move(parts));
}

class ApplicationFixture : public ::testing::Test {
protected:
    ApplicationFixture() {
        guest.startUp();
        serving.emplace(application.core(), &guest);
        sSPBasic = &Core::basicSuite();
#define GLYPHORA_ACQUIRE(type, pointer, name, version)                                             \
    {                                                                                              \
        const void* table = nullptr;                                                               \
        sSPBasic->AcquireSuite(name, version, &table);                                             \
        (pointer) = static_cast<const type*>(table);                                               \
    }
        GLYPHORA_BASIC_SUITES(GLYPHORA_ACQUIRE)
        GLYPHORA_IMPORT_SUITES(GLYPHORA_ACQUIRE)
#undef GLYPHORA_ACQUIRE
    }

    /// Gives everything back as a good plug-in does, and shuts it down.
    void leave() {
#define GLYPHORA_RELEASE(type, pointer, name, version) sSPBasic->ReleaseSuite(name, version);
        GLYPHORA_BASIC_SUITES(GLYPHORA_RELEASE)
        GLYPHORA_IMPORT_SUITES(GLYPHORA_RELEASE)
#undef GLYPHORA_RELEASE
        serving.reset();
        guest.shutDown();
    }

    OpenDocument& open(Document document) {
        return application.documents().add("made.svg", std::move(document));
    }

    static SPErr entry(const char*, const char*, void*) {
        return kNoErr;
    }

    std::vector<InstalledFace> faces{installed("Alpha", "Regular"), installed("Alpha", "Bold"),
                                     installed("Beta", "Italic")};
    RecordingFrontend frontend;
    Application application{frontend, {{}, {}, [this] { return faces; }}};
    Plugin& guest = application.core().addBuiltIn("guest", entry);
    std::optional<Core::ServeScope> serving;
};

} // namespace host::test
