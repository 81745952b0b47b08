// SPDX-License-Identifier: MIT
// Any bytes as the answer of a font reader compromised by a font: taken only when every face has a
// name, and the same when written again.
#include "fuzz/require.h"
#include "manager/library/fontanswer.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

using namespace manager;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto outcome = decodeAnswer({reinterpret_cast<const char*>(data), size});
    if (!outcome) {
        return 0;
    }
    const auto again = decodeAnswer(encodeAnswer(*outcome));
    REQUIRE(again && again->index() == outcome->index());
    if (const auto* problem = std::get_if<FontFileProblem>(&*outcome)) {
        const auto& same = std::get<FontFileProblem>(*again);
        REQUIRE(same.text == problem->text && same.lasting == problem->lasting);
        return 0;
    }
    const auto& contents = std::get<ReadFont>(*outcome).contents;
    REQUIRE(!contents.faces.empty());
    REQUIRE(std::none_of(contents.faces.begin(), contents.faces.end(),
                         [](const faces::Face& face) { return face.names.empty(); }));
    REQUIRE(std::get<ReadFont>(*again) == std::get<ReadFont>(*outcome));
    return 0;
}
