// SPDX-License-Identifier: MIT
// Small drawings for the tests of the document model, and short ways to say what is in them.
#pragma once

#include "host/documents/svg/svgreader.h"
#include "tests/support/temporaryfolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <ostream>
#include <string>
#include <string_view>

namespace host::test {

/// A drawing around `body`, with the namespaces that bodies here use.
inline std::string drawing(std::string_view body) {
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" "
           "xmlns:xlink=\"http://www.w3.org/1999/xlink\" "
           "xmlns:ink=\"http://www.inkscape.org/namespaces/inkscape\" "
           "xmlns:sodi=\"http://sodipodi.sourceforge.net/DTD/sodipodi-0.dtd\">" +
           std::string(body) + "</svg>";
}

inline Document read(std::string_view body, const SvgOptions& options = {}) {
    return readSvg(drawing(body), "test.svg", options);
}

/// "family/style:text" of each visible run, joined by "|"; generic families in angle brackets,
/// embedded ones in square ones.
inline std::string visibleRuns(const Document& document) {
    std::string result;
    for (const TextRun& run : document.runs()) {
        if (!run.visible) {
            continue;
        }
        const Face& face = document.faceOf(run);
        std::string family = face.family;
        if (face.origin != FaceOrigin::Named) {
            family = face.origin == FaceOrigin::Generic ? "<" + family + ">" : "[" + family + "]";
        }
        result += (result.empty() ? "" : "|") + family + "/" + face.style + ":" +
                  std::string(document.text(run));
    }
    return result;
}

using Folder = testsupport::TemporaryFolder;
using testsupport::contentOf;

/// A row of a table of drawings, and what visibleRuns() says of it.
struct DrawingCase {
    const char* about;
    const char* body;
    const char* runs;
};
inline void PrintTo(const DrawingCase& test, std::ostream* stream) {
    *stream << test.about;
}

class ADrawingOfATable : public testing::TestWithParam<DrawingCase> {
protected:
    static void expectItsRuns() { EXPECT_EQ(visibleRuns(read(GetParam().body)), GetParam().runs); }
};

/// Names tests by their rows.
constexpr auto nameOfCase = [](const auto& test) { return std::string(test.param.about); };

/// What saving a document writes.
inline std::string saved(const Document& document) {
    const Folder folder;
    document.save(folder / "out.svg");
    return contentOf(folder / "out.svg");
}

inline void write(const std::filesystem::path& file, std::string_view bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

} // namespace host::test
