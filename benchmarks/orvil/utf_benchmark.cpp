// SPDX-License-Identifier: MIT
// The encodings beside ICU and beside the plain loop that goes sequence by sequence.
#include "misc/text/utf.h"
#include "ratios.h"

#include <benchmark/benchmark.h>
#include <unicode/ustring.h>

#include <cstdint>
#include <string>
#include <vector>

using namespace Orvil;
using namespace Orvil::UTF;

namespace {

std::string repeated(std::string_view piece, std::size_t size) {
    std::string text(size / piece.size() * piece.size(), ' ');
    for (std::size_t i = 0; i < text.size(); ++i) {
        text[i] = piece[i % piece.size()];
    }
    return text;
}

constexpr std::size_t textSize = std::size_t{64} * 1024;
constexpr std::string_view asciiPiece = "The quick brown fox jumps over the lazy dog. ";
constexpr std::string_view germanPiece = "F\xC3\xBCr die Stra\xC3\x9F"
                                         "e nach K\xC3\xB6ln braucht man \xC3\xBC"
                                         "ber vierzig Minuten, sagt der B\xC3\xA4"
                                         "cker. ";
constexpr std::string_view cjkPiece =
    "\xE5\xAD\x97\xE4\xBD\x93\xE7\xAE\xA1\xE7\x90\x86\xE5\x99\xA8\xE3\x80\x82\xE6\x97\xA5\xE6\x9C"
    "\xAC\xE8\xAA\x9E\xE3\x81\xAE\xE3\x83\x95\xE3\x82\xA9\xE3\x83\xB3\xE3\x83\x88\xE3\x80\x81";
constexpr std::string_view namePiece = "Frutiger-CondensedBold-1";

struct Text {
    explicit Text(std::string_view piece, std::size_t size = textSize)
        : utf8(repeated(piece, size)), utf16(UTF8toUTF16(utf8)) {}
    std::string utf8;
    std::u16string utf16;
};

// The plain loop, as the peer to beat: one sequence at a time, checked, without short cuts.
constexpr std::uint8_t trailing(std::uint8_t lead) {
    if (lead < 0xC0) {
        return 0;
    }
    if (lead < 0xE0) {
        return 1;
    }
    if (lead < 0xF0) {
        return 2;
    }
    return lead < 0xF8 ? 3 : lead < 0xFC ? 4 : 5;
}
struct TrailTable {
    std::uint8_t extra[256] = {};
    constexpr TrailTable() {
        for (unsigned lead = 0; lead < 256; ++lead) {
            extra[lead] = trailing(static_cast<std::uint8_t>(lead));
        }
    }
};
constexpr TrailTable trailTable;
constexpr UTF32 offsets[6] = {0, 0x3080, 0xE2080, 0x3C82080, 0xFA082080, 0x82082080};

ConversionResult plainUTF8toUTF16(const UTF8** sourceStart, const UTF8* sourceEnd,
                                  UTF16** targetStart, UTF16* targetEnd, ConversionFlags flags) {
    ConversionResult result = conversionOK;
    const UTF8* source = *sourceStart;
    UTF16* target = *targetStart;
    while (source < sourceEnd) {
        UTF32 value = 0;
        const int extra = trailTable.extra[*source];
        if (source + extra >= sourceEnd) {
            result = sourceExhausted;
            break;
        }
        if (!isLegalUTF8(source, extra + 1)) {
            result = sourceIllegal;
            break;
        }
        for (int i = extra; i > 0; --i) {
            value += *source++;
            value <<= 6U;
        }
        value += *source++;
        value -= offsets[extra];
        if (target >= targetEnd) {
            source -= extra + 1;
            result = targetExhausted;
            break;
        }
        if (value <= 0xFFFF) {
            if (value >= 0xD800 && value <= 0xDFFF) {
                if (flags == strict) {
                    source -= extra + 1;
                    result = sourceIllegal;
                    break;
                }
                value = replacementCharacter;
            }
            *target++ = static_cast<UTF16>(value);
        } else {
            if (target + 1 >= targetEnd) {
                source -= extra + 1;
                result = targetExhausted;
                break;
            }
            value -= 0x10000;
            *target++ = static_cast<UTF16>((value >> 10U) + 0xD800);
            *target++ = static_cast<UTF16>((value & 0x3FFU) + 0xDC00);
        }
    }
    *sourceStart = source;
    *targetStart = target;
    return result;
}

template <typename Convert>
void widen(benchmark::State& state, const Text& text, Convert convert) {
    std::vector<UTF16> target(text.utf8.size() + 1);
    for (auto _ : state) {
        const auto* from = reinterpret_cast<const UTF8*>(text.utf8.data());
        UTF16* to = target.data();
        benchmark::DoNotOptimize(
            convert(&from, from + text.utf8.size(), &to, to + target.size(), strict));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.utf8.size()));
}

void widenByICU(benchmark::State& state, const Text& text) {
    std::vector<UTF16> target(text.utf8.size() + 1);
    for (auto _ : state) {
        UErrorCode error = U_ZERO_ERROR;
        int32_t length = 0;
        u_strFromUTF8(target.data(), static_cast<int32_t>(target.size()), &length, text.utf8.data(),
                      static_cast<int32_t>(text.utf8.size()), &error);
        benchmark::DoNotOptimize(length);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.utf8.size()));
}

void narrow(benchmark::State& state, const Text& text) {
    std::vector<UTF8> target(text.utf16.size() * 3 + 1);
    for (auto _ : state) {
        const UTF16* from = text.utf16.data();
        UTF8* to = target.data();
        benchmark::DoNotOptimize(
            ConvertUTF16toUTF8(&from, from + text.utf16.size(), &to, to + target.size(), strict));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.utf8.size()));
}

void narrowByICU(benchmark::State& state, const Text& text) {
    std::vector<char> target(text.utf16.size() * 3 + 1);
    for (auto _ : state) {
        UErrorCode error = U_ZERO_ERROR;
        int32_t length = 0;
        u_strToUTF8(target.data(), static_cast<int32_t>(target.size()), &length, text.utf16.data(),
                    static_cast<int32_t>(text.utf16.size()), &error);
        benchmark::DoNotOptimize(length);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.utf8.size()));
}

bool registerAll() {
    struct Kind {
        const char* name;
        std::string_view piece;
        double overPlain;
        double narrowOverICU;
    };
    const Kind kinds[] = {
        {"ascii", asciiPiece, 15, 1}, {"german", germanPiece, 5, 1}, {"cjk", cjkPiece, 1.7, 0.9}};
    for (const Kind& kind : kinds) {
        const Text text(kind.piece);
        const auto label = [&kind](const char* direction, const char* peer) {
            std::string joined = direction;
            joined += kind.name;
            joined += peer;
            return joined;
        };
        const std::string widening = label("utf8to16_", "");
        const std::string wideningPlain = label("utf8to16_", "_plain");
        const std::string wideningICU = label("utf8to16_", "_icu");
        const std::string narrowing = label("utf16to8_", "");
        const std::string narrowingICU = label("utf16to8_", "_icu");
        benchmark::RegisterBenchmark(
            widening.c_str(), [text](auto& state) { widen(state, text, ConvertUTF8toUTF16); });
        benchmark::RegisterBenchmark(wideningPlain.c_str(),
                                     [text](auto& state) { widen(state, text, plainUTF8toUTF16); });
        benchmark::RegisterBenchmark(wideningICU.c_str(),
                                     [text](auto& state) { widenByICU(state, text); });
        benchmark::RegisterBenchmark(narrowing.c_str(),
                                     [text](auto& state) { narrow(state, text); });
        benchmark::RegisterBenchmark(narrowingICU.c_str(),
                                     [text](auto& state) { narrowByICU(state, text); });
        ratios::atLeast(widening, wideningPlain, kind.overPlain);
        ratios::atLeast(widening, wideningICU, 1);
        ratios::atLeast(narrowing, narrowingICU, kind.narrowOverICU);
    }
    const Text name(namePiece, namePiece.size());
    benchmark::RegisterBenchmark("utf8to16_name",
                                 [name](auto& state) { widen(state, name, ConvertUTF8toUTF16); });
    benchmark::RegisterBenchmark("utf8to16_name_icu",
                                 [name](auto& state) { widenByICU(state, name); });
    benchmark::RegisterBenchmark("utf16to8_name", [name](auto& state) { narrow(state, name); });
    benchmark::RegisterBenchmark("utf16to8_name_icu",
                                 [name](auto& state) { narrowByICU(state, name); });
    ratios::atMost("utf8to16_name", "utf8to16_name_icu", 0.5);
    ratios::atMost("utf16to8_name", "utf16to8_name_icu", 0.5);
    return true;
}

const bool registered = registerAll();

} // namespace
