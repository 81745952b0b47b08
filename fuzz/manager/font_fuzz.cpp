// SPDX-License-Identifier: MIT
// Any bytes as a font file: refused by a text that names the file, or faces with names that a
// reader's answer carries over unchanged.
#include "fuzz/manager/memoryfile.h"
#include "manager/library/fontanswer.h"
#include "manager/library/fontfile.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

using namespace manager;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::MemoryFile file(data, size);
    try {
        const FontFileContents contents = readFontFile(file.path());
        const auto carried = decodeAnswer(encodeAnswer(contents));
        REQUIRE(carried && std::get<FontFileContents>(*carried) == contents);
        for (const FaceRecord& face : contents.faces) {
            REQUIRE(!face.names.front().family.empty());
            static_cast<void>(nameKey(face.names.front().family));
        }
    } catch (const Error& error) {
        REQUIRE(std::string_view(error.what()).starts_with(file.path() + ": "));
    }
    return 0;
}
