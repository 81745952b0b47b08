// SPDX-License-Identifier: MIT
// Any bytes as a drawing: read, replace every other run, write into the source again, which then
// reads as the same text with the new face where it was put.
#include "fuzz/require.h"
#include "host/documents/svg/faceeditor.h"
#include "host/documents/svg/svgreader.h"
#include "host/documents/svg/svgsource.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace {

constexpr const char* newFamily = "New 'Face'";

struct FacedCharacters {
    std::string text;           ///< of all runs, without blanks
    std::vector<bool> replaced; ///< by byte
};

template <typename IsReplaced>
FacedCharacters charactersOf(const host::Document& document, const IsReplaced& isReplaced) {
    FacedCharacters characters;
    for (const host::TextRun& run : document.runs()) {
        for (const char c : document.text(run)) {
            if (c != ' ') {
                characters.text += c;
                characters.replaced.push_back(isReplaced(run));
            }
        }
    }
    return characters;
}

void checkAgain(const host::Document& document, const std::string& written,
                const host::SvgOptions& options) {
    try {
        const host::Document again = host::readSvg(written, "again.svg", options);
        const auto wanted =
            charactersOf(document, [](const host::TextRun& run) { return run.replaced; });
        const auto found = charactersOf(
            again, [&](const host::TextRun& run) { return again.faceOf(run).family == newFamily; });
        REQUIRE(found.text == wanted.text);
        for (std::size_t i = 0; i < found.text.size(); ++i) {
            REQUIRE(found.replaced[i] || !wanted.replaced[i]);
        }
    } catch (const host::DocumentError& error) {
        REQUIRE(error.what() == nullptr);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    try {
        host::SvgOptions options;
        options.keepGroups = size % 2 == 0;
        options.maximumSize = std::size_t{1} << 20;
        host::Document document = host::readSvg(bytes, "fuzz.svg", options);
        host::Face face;
        face.family = newFamily;
        face.style = "Bold";
        face.weight = 700;
        for (host::RunId run = 0; run < document.runs().size(); run += 2) {
            document.replaceFace(run, face);
        }
        const host::svg::Source source =
            host::svg::decodeSource(bytes, "fuzz.svg", options.maximumSize);
        const std::string edited =
            host::svg::editFaces(source.text, document, options, source.takesAll());
        const std::string written = host::svg::encodeText(edited, source, false, "fuzz.svg");
        options.maximumSize *= 16; // the new names take room
        checkAgain(document, written, options);
    } catch (const host::DocumentError&) {
        // What is no drawing is refused; nothing else may happen.
    }
    return 0;
}
