// SPDX-License-Identifier: MIT
// Any bytes as a font file: refused by a text that names the file, or faces with names that a
// reader's answer carries over unchanged.
#include "faces/fontfile.h"
#include "faces/namekey.h"
#include "fuzz/manager/memoryfile.h"
#include "manager/library/fontanswer.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

using namespace manager;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::MemoryFile file(data, size);
    try {
        const faces::FontFileContents contents = faces::readFontFile(file.path());
        const auto carried = decodeAnswer(encodeAnswer(ReadFont{contents}));
        REQUIRE(carried && std::get<ReadFont>(*carried).contents == contents);
        for (const faces::Face& face : contents.faces) {
            REQUIRE(!face.names.front().family.empty());
            static_cast<void>(faces::nameKey(face.names.front().family));
        }
    } catch (const faces::UnreadableFont& error) {
        REQUIRE(std::string_view(error.what()).starts_with(file.path() + ": "));
    }
    return 0;
}
