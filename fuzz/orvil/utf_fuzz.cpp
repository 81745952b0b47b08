// SPDX-License-Identifier: MIT
// The conversions against the plain model of their tests. The first byte chooses source, flags and
// how small the target is.
#include "fuzz/require.h"
#include "misc/text/utf.h"
#include "tests/orvil/utfmodel.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

using namespace UTFModel;

namespace {

template <typename Source, typename... Targets>
void check(std::string_view bytes, std::size_t capacity, ConversionFlags flags) {
    std::vector<Source> exact(bytes.size() / sizeof(Source));
    if (!exact.empty()) {
        std::memcpy(exact.data(), bytes.data(), exact.size() * sizeof(Source));
    }
    const Units source(exact.begin(), exact.end());
    (REQUIRE((converted<Source, Targets>(source, capacity, flags) ==
              modelled<Source, Targets>(source, capacity, flags))),
     ...);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const unsigned choice = data[0];
    const ConversionFlags flags = (choice & 4U) != 0 ? lenient : strict;
    const std::size_t capacity = size * (choice >> 3U) / 8;
    const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (choice & 3U) {
    case 0:
        check<UTF8, UTF16, UTF32>(text, capacity, flags);
        break;
    case 1:
        check<UTF16, UTF8, UTF32>(text, capacity, flags);
        break;
    case 2:
        check<UTF32, UTF8, UTF16>(text, capacity, flags);
        break;
    default: {
        const auto [result, consumed, units] =
            modelled<UTF8, UTF16>(Units(data + 1, data + size), size, strict);
        const std::u16string wide = UTF8toUTF16(text);
        REQUIRE(Units(wide.begin(), wide.end()) == (result == conversionOK ? units : Units{}));
        REQUIRE(wide.empty() || UTF16toUTF8(wide) == text);
    }
    }
    return 0;
}
