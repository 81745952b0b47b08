// SPDX-License-Identifier: MIT
// What the conversions should do, written for reading: character by character, with ICU's idea of
// well-formed UTF-8.
#pragma once

#include "misc/text/utf.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <cstddef>
#include <cstdint>
#include <tuple>
#include <vector>

namespace UTFModel {

using namespace Orvil;
using namespace Orvil::UTF;

using Units = std::vector<std::uint32_t>;

/// The result, how many units were consumed, and those that were produced.
using Outcome = std::tuple<ConversionResult, std::size_t, Units>;

struct Step {
    ConversionResult result;
    std::size_t length;
    std::uint32_t value;
};

inline bool isSurrogate(std::uint32_t value) {
    return value >= 0xD800 && value <= 0xDFFF;
}

// One source character, by the width of its units.
inline Step readUTF8(const Units& source, std::size_t at) {
    std::size_t length = 1;
    for (const std::uint32_t longer : {0xC0U, 0xE0U, 0xF0U, 0xF8U, 0xFCU}) {
        length += source[at] >= longer ? 1 : 0;
    }
    if (at + length > source.size()) {
        return {sourceExhausted, 0, 0};
    }
    std::uint8_t bytes[6] = {};
    for (std::size_t i = 0; i < length; ++i) {
        bytes[i] = static_cast<std::uint8_t>(source[at + i]);
    }
    int read = 0;
    UChar32 value = 0;
    U8_NEXT(bytes, read, static_cast<int>(length), value);
    return value < 0 ? Step{sourceIllegal, 0, 0}
                     : Step{conversionOK, length, static_cast<std::uint32_t>(value)};
}

inline Step readUTF16(const Units& source, std::size_t at, ConversionFlags flags) {
    const std::uint32_t unit = source[at];
    if (!isSurrogate(unit)) {
        return {conversionOK, 1, unit};
    }
    if (unit < 0xDC00 && at + 1 == source.size()) {
        return {sourceExhausted, 0, 0};
    }
    if (unit < 0xDC00 && source[at + 1] >= 0xDC00 && source[at + 1] <= 0xDFFF) {
        return {conversionOK, 2, 0x10000 + (unit - 0xD800) * 0x400 + source[at + 1] - 0xDC00};
    }
    return flags == strict ? Step{sourceIllegal, 0, 0} : Step{conversionOK, 1, 0xFFFD};
}

inline Step readUTF32(const Units& source, std::size_t at, ConversionFlags flags) {
    if (!isSurrogate(source[at]) && source[at] <= 0x10FFFF) {
        return {conversionOK, 1, source[at]};
    }
    return flags == strict ? Step{sourceIllegal, 0, 0} : Step{conversionOK, 1, 0xFFFD};
}

template <typename Unit>
Step read(const Units& source, std::size_t at, ConversionFlags flags) {
    if constexpr (sizeof(Unit) == 1) {
        return readUTF8(source, at);
    } else if constexpr (sizeof(Unit) == 2) {
        return readUTF16(source, at, flags);
    } else {
        return readUTF32(source, at, flags);
    }
}

template <typename Unit>
Units written(std::uint32_t value) {
    std::uint32_t units[4] = {value};
    std::ptrdiff_t count = sizeof(Unit) == 4 ? 1 : 0;
    if constexpr (sizeof(Unit) == 1) {
        U8_APPEND_UNSAFE(units, count, value);
    } else if constexpr (sizeof(Unit) == 2) {
        U16_APPEND_UNSAFE(units, count, value);
    }
    return {units, units + count};
}

template <typename Source, typename Target>
Outcome modelled(const Units& source, std::size_t capacity, ConversionFlags flags) {
    constexpr bool skipsTooGreat = sizeof(Source) == 4 && sizeof(Target) == 2;
    ConversionResult result = conversionOK;
    std::size_t consumed = 0;
    Units produced;
    while (consumed < source.size()) {
        if (skipsTooGreat && produced.size() == capacity) {
            return {targetExhausted, consumed, produced};
        }
        if (skipsTooGreat && flags == strict && source[consumed] > 0x10FFFF) {
            result = sourceIllegal;
            ++consumed;
            continue;
        }
        const Step step = read<Source>(source, consumed, flags);
        if (step.result != conversionOK) {
            return {step.result, consumed, produced};
        }
        const Units units = written<Target>(step.value);
        if (produced.size() + units.size() > capacity) {
            return {targetExhausted, consumed, produced};
        }
        produced.insert(produced.end(), units.begin(), units.end());
        consumed += step.length;
    }
    return {result, consumed, produced};
}

// The conversions themselves, told alike.
inline constexpr std::tuple conversions{&ConvertUTF8toUTF16,  &ConvertUTF16toUTF8,
                                        &ConvertUTF8toUTF32,  &ConvertUTF32toUTF8,
                                        &ConvertUTF16toUTF32, &ConvertUTF32toUTF16};

template <typename Source, typename Target>
using Conversion = ConversionResult (*)(const Source**, const Source*, Target**, Target*,
                                        ConversionFlags);

template <typename Source, typename Target>
Outcome converted(const Units& source, std::size_t capacity, ConversionFlags flags) {
    // Exact copies, so that a read or a write beyond them is seen by the sanitizers.
    const std::vector<Source> exact(source.begin(), source.end());
    std::vector<Target> buffer(capacity);
    const Source* from = exact.data();
    Target* to = buffer.data();
    const auto convert = std::get<Conversion<Source, Target>>(conversions);
    const ConversionResult result =
        convert(&from, from + exact.size(), &to, to + buffer.size(), flags);
    return {result, static_cast<std::size_t>(from - exact.data()), Units(buffer.data(), to)};
}

} // namespace UTFModel
