// SPDX-License-Identifier: MIT
// The list of suites. Host and plug-in are made from it alike, so neither tells when it changes.
#include "suitepointers.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string_view>

namespace {

TEST(TheSuiteList, IsTheOneThatBuiltPluginsKnow) {
#define LINE(type, pointer, name, version) name " " #version "\n"
    constexpr std::string_view list = GLYPHORA_BASIC_SUITES(LINE) GLYPHORA_IMPORT_SUITES(LINE);
#undef LINE
    std::uint32_t hash = 2166136261U; // FNV-1a
    for (const char byte : list) {
        hash = (hash ^ static_cast<std::uint8_t>(byte)) * 16777619U;
    }
    EXPECT_EQ(hash, 1675070892U) << list;
}

} // namespace
