// SPDX-License-Identifier: MIT
// What the conversions should do, written for reading: character by character, with ICU's idea of
// well-formed UTF-8.
#pragma once

#include "misc/text/utf.h"

#include <unicode/utf8.h>

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <vector>

namespace UTFModel {

using namespace Orvil;
using namespace Orvil::UTF;

using Units = std::vector<std::uint32_t>;

struct Outcome {
    ConversionResult result;
    std::size_t consumed;
    Units produced;

    bool operator==(const Outcome& other) const {
        return result == other.result && consumed == other.consumed && produced == other.produced;
    }
};

inline std::ostream& operator<<(std::ostream& stream, const Outcome& outcome) {
    stream << "result " << outcome.result << " after " << outcome.consumed << " units:" << std::hex;
    for (const std::uint32_t unit : outcome.produced) {
        stream << ' ' << unit;
    }
    return stream << std::dec;
}

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
    static constexpr std::uint8_t lengths[] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2, 2, 3};
    const std::uint32_t lead = source[at];
    std::size_t length = 6;
    if (lead < 0xF0) {
        length = lengths[lead >> 4U];
    } else if (lead < 0xF8) {
        length = 4;
    } else if (lead < 0xFC) {
        length = 5;
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
    if (sizeof(Unit) == 1 && value >= 0x80) {
        Units bytes;
        std::uint32_t rest = value;
        const std::size_t length = value < 0x800 ? 2 : value < 0x10000 ? 3 : 4;
        for (; bytes.size() + 1 < length; rest /= 64) {
            bytes.insert(bytes.begin(), 0x80 + rest % 64);
        }
        static constexpr std::uint32_t marks[] = {0, 0, 0xC0, 0xE0, 0xF0};
        bytes.insert(bytes.begin(), marks[length] + rest);
        return bytes;
    }
    if (sizeof(Unit) == 2 && value >= 0x10000) {
        return {0xD800 + (value - 0x10000) / 0x400, 0xDC00 + value % 0x400};
    }
    return {value};
}

template <typename Source, typename Target>
Outcome modelled(const Units& source, std::size_t capacity, ConversionFlags flags) {
    constexpr bool skipsTooGreat = sizeof(Source) == 4 && sizeof(Target) == 2;
    Outcome outcome{conversionOK, 0, {}};
    while (outcome.consumed < source.size()) {
        if (skipsTooGreat && outcome.produced.size() == capacity) {
            outcome.result = targetExhausted;
            return outcome;
        }
        if (skipsTooGreat && flags == strict && source[outcome.consumed] > 0x10FFFF) {
            outcome.result = sourceIllegal;
            ++outcome.consumed;
            continue;
        }
        const Step step = read<Source>(source, outcome.consumed, flags);
        if (step.result != conversionOK) {
            outcome.result = step.result;
            return outcome;
        }
        const Units units = written<Target>(step.value);
        if (outcome.produced.size() + units.size() > capacity) {
            outcome.result = targetExhausted;
            return outcome;
        }
        outcome.produced.insert(outcome.produced.end(), units.begin(), units.end());
        outcome.consumed += step.length;
    }
    return outcome;
}

} // namespace UTFModel
