// SPDX-License-Identifier: MIT
// Any bytes as a drawing: read, replace every other run, write into the source again.
#include "host/documents/svg/faceeditor.h"
#include "host/documents/svg/svgreader.h"
#include "host/documents/svg/svgsource.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    try {
        host::SvgOptions options;
        options.keepGroups = size % 2 == 0;
        options.maximumSize = std::size_t{1} << 20;
        host::Document document = host::readSvg(bytes, "fuzz.svg", options);
        host::Face face;
        face.family = "New 'Face'";
        face.style = "Bold";
        face.weight = 700;
        for (host::RunId run = 0; run < document.runs().size(); run += 2) {
            document.replaceFace(run, face);
        }
        const host::svg::Source source =
            host::svg::decodeSource(bytes, "fuzz.svg", options.maximumSize);
        host::svg::editFaces(source.text, document, options, source.takesAll());
    } catch (const host::DocumentError&) {
        // What is no drawing is refused; nothing else may happen.
    }
    return 0;
}
