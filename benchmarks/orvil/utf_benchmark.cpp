// SPDX-License-Identifier: MIT
// The encodings beside ICU.
#include "misc/text/utf.h"
#include "ratios.h"

#include <benchmark/benchmark.h>
#include <unicode/ustring.h>

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

void widen(benchmark::State& state, const Text& text) {
    std::vector<UTF16> target(text.utf8.size() + 1);
    for (auto _ : state) {
        const auto* from = reinterpret_cast<const UTF8*>(text.utf8.data());
        UTF16* to = target.data();
        benchmark::DoNotOptimize(
            ConvertUTF8toUTF16(&from, from + text.utf8.size(), &to, to + target.size(), strict));
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
        double narrowOverICU;
    };
    const Kind kinds[] = {
        {"ascii", asciiPiece, 1}, {"german", germanPiece, 1}, {"cjk", cjkPiece, 0.9}};
    for (const Kind& kind : kinds) {
        const Text text(kind.piece);
        const auto label = [&kind](const char* direction, const char* peer) {
            std::string joined = direction;
            joined += kind.name;
            joined += peer;
            return joined;
        };
        const std::string widening = label("utf8to16_", "");
        const std::string wideningICU = label("utf8to16_", "_icu");
        const std::string narrowing = label("utf16to8_", "");
        const std::string narrowingICU = label("utf16to8_", "_icu");
        benchmark::RegisterBenchmark(widening.c_str(), [text](auto& state) { widen(state, text); });
        benchmark::RegisterBenchmark(wideningICU.c_str(),
                                     [text](auto& state) { widenByICU(state, text); });
        benchmark::RegisterBenchmark(narrowing.c_str(),
                                     [text](auto& state) { narrow(state, text); });
        benchmark::RegisterBenchmark(narrowingICU.c_str(),
                                     [text](auto& state) { narrowByICU(state, text); });
        ratios::atLeast(widening, wideningICU, 1);
        ratios::atLeast(narrowing, narrowingICU, kind.narrowOverICU);
    }
    const Text name(namePiece, namePiece.size());
    benchmark::RegisterBenchmark("utf8to16_name", [name](auto& state) { widen(state, name); });
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
