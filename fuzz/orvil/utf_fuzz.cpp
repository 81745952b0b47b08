// SPDX-License-Identifier: MIT
// The conversions against ICU. The first byte chooses source, flags and how small the target is.
#include "fuzz/require.h"
#include "misc/text/utf.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

using namespace Orvil;
using namespace Orvil::UTF;

namespace {

/// What ICU reads of a source before the first error, and whether it came to its end.
struct Judgement {
    std::vector<UTF32> values;
    std::vector<std::size_t> ends; // source position behind each value
    bool whole = true;
};

Judgement judge(const std::vector<UTF8>& source, ConversionFlags /*flags*/) {
    Judgement judgement;
    const int length = static_cast<int>(source.size());
    for (int at = 0; at < length;) {
        UChar32 value = 0;
        U8_NEXT(source.data(), at, length, value);
        if (value < 0) {
            judgement.whole = false;
            break;
        }
        judgement.values.push_back(static_cast<UTF32>(value));
        judgement.ends.push_back(static_cast<std::size_t>(at));
    }
    return judgement;
}

Judgement judge(const std::vector<UTF16>& source, ConversionFlags flags) {
    Judgement judgement;
    const std::size_t length = source.size();
    for (std::size_t at = 0; at < length;) {
        const bool endsInHigh = at + 1 == length && U16_IS_LEAD(source[at]);
        UChar32 value = 0;
        U16_NEXT(source.data(), at, length, value);
        if (endsInHigh || (U_IS_SURROGATE(value) && flags == strict)) {
            judgement.whole = false;
            break;
        }
        judgement.values.push_back(U_IS_SURROGATE(value) ? replacementCharacter
                                                         : static_cast<UTF32>(value));
        judgement.ends.push_back(at);
    }
    return judgement;
}

Judgement judge(const std::vector<UTF32>& source, ConversionFlags flags) {
    Judgement judgement;
    for (std::size_t at = 0; at < source.size(); ++at) {
        const bool isValue = source[at] <= 0x10FFFF && !U_IS_SURROGATE(source[at]);
        if (!isValue && flags == strict) {
            judgement.whole = false;
            break;
        }
        judgement.values.push_back(isValue ? source[at] : replacementCharacter);
        judgement.ends.push_back(at + 1);
    }
    return judgement;
}

std::size_t unitsOf(UTF32 value, const UTF8* /*tag*/) {
    return static_cast<std::size_t>(U8_LENGTH(value));
}
std::size_t unitsOf(UTF32 value, const UTF16* /*tag*/) {
    return static_cast<std::size_t>(U16_LENGTH(value));
}
std::size_t unitsOf(UTF32 /*value*/, const UTF32* /*tag*/) {
    return 1;
}

void append(UTF32 value, std::vector<UTF8>& units) {
    UTF8 bytes[4];
    int length = 0;
    U8_APPEND_UNSAFE(bytes, length, value);
    units.insert(units.end(), bytes, bytes + length);
}
void append(UTF32 value, std::vector<UTF16>& units) {
    UTF16 pair[2];
    int length = 0;
    U16_APPEND_UNSAFE(pair, length, value);
    units.insert(units.end(), pair, pair + length);
}
void append(UTF32 value, std::vector<UTF32>& units) {
    units.push_back(value);
}

template <typename Source, typename Target, typename Convert>
void check(const std::vector<Source>& source, std::size_t capacity, ConversionFlags flags,
           Convert convert) {
    std::vector<Target> target(capacity);
    const Source* from = source.data();
    Target* to = target.data();
    const ConversionResult result = convert(&from, from + source.size(), &to, to + capacity, flags);
    const auto consumed = static_cast<std::size_t>(from - source.data());
    target.resize(static_cast<std::size_t>(to - target.data()));

    // The values that fit, as ICU writes them.
    const Judgement judgement = judge(source, flags);
    std::vector<Target> expected;
    std::size_t taken = 0;
    while (taken < judgement.values.size() &&
           expected.size() + unitsOf(judgement.values[taken], to) <= capacity) {
        append(judgement.values[taken++], expected);
    }
    const bool all = taken == judgement.values.size();
    if (!judgement.whole && sizeof(Source) == 4 && sizeof(Target) == 2) {
        // This conversion alone may leave values out and go on.
        REQUIRE(result != conversionOK);
        REQUIRE(target.size() >= expected.size());
        REQUIRE(std::equal(expected.begin(), expected.end(), target.begin()));
        return;
    }
    REQUIRE(target == expected);
    REQUIRE(consumed == (taken == 0 ? 0 : judgement.ends[taken - 1]));
    REQUIRE((result == conversionOK) == (all && judgement.whole));
    REQUIRE((result == targetExhausted) == !all);
}

template <typename Unit>
std::vector<Unit> unitsFrom(const std::uint8_t* data, std::size_t size) {
    std::vector<Unit> units(size / sizeof(Unit));
    if (!units.empty()) {
        std::memcpy(units.data(), data, units.size() * sizeof(Unit));
    }
    return units;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const unsigned choice = data[0];
    const ConversionFlags flags = (choice & 4U) != 0 ? lenient : strict;
    const std::size_t capacity = size * (choice >> 3U) / 8;
    const auto utf8 = unitsFrom<UTF8>(data + 1, size - 1);
    const auto utf16 = unitsFrom<UTF16>(data + 1, size - 1);
    const auto utf32 = unitsFrom<UTF32>(data + 1, size - 1);
    switch (choice & 3U) {
    case 0:
        check<UTF8, UTF16>(utf8, capacity, flags, ConvertUTF8toUTF16);
        check<UTF8, UTF32>(utf8, capacity, flags, ConvertUTF8toUTF32);
        break;
    case 1:
        check<UTF16, UTF8>(utf16, capacity, flags, ConvertUTF16toUTF8);
        check<UTF16, UTF32>(utf16, capacity, flags, ConvertUTF16toUTF32);
        break;
    case 2:
        check<UTF32, UTF8>(utf32, capacity, flags, ConvertUTF32toUTF8);
        check<UTF32, UTF16>(utf32, capacity, flags, ConvertUTF32toUTF16);
        break;
    default: {
        const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
        const std::u16string wide = UTF8toUTF16(text);
        REQUIRE(wide.empty() ? text.empty() || !judge(utf8, strict).whole
                             : UTF16toUTF8(wide) == text);
    }
    }
    return 0;
}
