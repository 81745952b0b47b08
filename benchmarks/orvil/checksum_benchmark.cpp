// SPDX-License-Identifier: MIT
// The checksum of 64 KiB beside zlib's.
#include "misc/checksum/crc32.h"
#include "ratios.h"

#include <benchmark/benchmark.h>
#include <zlib.h>

#include <cstdint>
#include <vector>

namespace {

const std::vector<unsigned char>& data() {
    static const std::vector<unsigned char> bytes = [] {
        std::vector<unsigned char> made(std::size_t{64} * 1024);
        std::uint32_t value = 1;
        for (unsigned char& byte : made) {
            value = value * 1664525U + 1013904223U;
            byte = static_cast<unsigned char>(value >> 24U);
        }
        return made;
    }();
    return bytes;
}

void crc32_any(benchmark::State& state) {
    Orvil::CRC32 crc(0x1EDC6F41, 0xFFFFFFFF);
    for (auto _ : state) {
        crc.addBytes(data().data(), data().size());
        benchmark::DoNotOptimize(crc.get());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(data().size()));
}
BENCHMARK(crc32_any);

void crc32_any_portable(benchmark::State& state) {
    Orvil::CRC32 crc(0x1EDC6F41, 0xFFFFFFFF);
    for (auto _ : state) {
        crc.addBytesPortably(data().data(), data().size());
        benchmark::DoNotOptimize(crc.get());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(data().size()));
}
BENCHMARK(crc32_any_portable);

void crc32_zlib(benchmark::State& state) {
    uLong crc = 0;
    for (auto _ : state) {
        crc = crc32(crc, data().data(), static_cast<uInt>(data().size()));
        benchmark::DoNotOptimize(crc);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(data().size()));
}
BENCHMARK(crc32_zlib);

const bool expected =
    ratios::atLeast("crc32_any_portable", "crc32_zlib", 0.5) &&
    (!Orvil::CRC32::usesCarrylessMultiplication() || ratios::atLeast("crc32_any", "crc32_zlib", 1));

} // namespace
