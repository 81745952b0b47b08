// SPDX-License-Identifier: MIT
// Checks that a font file is whole, then has its faces read.
#include "faces/fontfile.h"

#include "faces/facereader.h"
#include "faces/filecheck.h"

#include <algorithm>
#include <array>
#include <strings.h>
#include <utility>

namespace faces {

bool hasFontFileName(std::string_view name) {
    static constexpr std::array<const char*, 7> endings = {"ttf", "otf", "ttc", "otc",
                                                           "pfb", "pfa", "t1"};
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos) {
        return false;
    }
    const std::string ending(name.substr(dot + 1));
    return std::any_of(endings.begin(), endings.end(),
                       [&](const char* known) { return strcasecmp(ending.c_str(), known) == 0; });
}

FontFileContents readFontFile(const std::string& path) {
    static FaceReader reader;
    const FontBytes bytes(path);
    FontFileContents contents;
    contents.collection = checkWhole(bytes) == Wrapping::Collection;
    const std::string name = path.substr(path.rfind('/') + 1);
    auto faces = reader.read(bytes.all(), name.substr(0, name.rfind('.')));
    if (!faces || faces->empty()) {
        throw bytes.error(faces ? FontFault::NoUsableFace : FontFault::UnknownToReader);
    }
    contents.faces = std::move(*faces);
    return contents;
}

} // namespace faces
