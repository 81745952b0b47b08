// SPDX-License-Identifier: MIT
// Acquiring and releasing suites.
#include "host/core/suiteregistry.h"

namespace host {

namespace {

/// What stands for a suite of which nothing is called: one address of its own per suite.
template <typename Suite>
constexpr void* emptyBlock[16] = {};

} // namespace

SuiteRegistry::SuiteRegistry() {
#define GLYPHORA_ADD_SUITE(type, pointer, name, version) provideAs(name, version, emptyBlock<type>);
    GLYPHORA_BASIC_SUITES(GLYPHORA_ADD_SUITE)
    GLYPHORA_IMPORT_SUITES(GLYPHORA_ADD_SUITE)
#undef GLYPHORA_ADD_SUITE
}

void SuiteRegistry::provideAs(std::string_view name, std::int32_t version, const void* table) {
    suites_[Key(name, version)].table = table;
}

bool SuiteRegistry::hide(std::string_view name, std::int32_t version) {
    return suites_.erase(Key(name, version)) != 0;
}

const void* SuiteRegistry::acquire(std::string_view name, std::int32_t version,
                                   PluginNumber holder) {
    const auto found = suites_.find(Key(name, version));
    if (found == suites_.end()) {
        return nullptr;
    }
    ++found->second.holders[holder];
    return found->second.table;
}

SuiteRegistry::Released SuiteRegistry::release(std::string_view name, std::int32_t version,
                                               PluginNumber holder) {
    const auto found = suites_.find(Key(name, version));
    if (found == suites_.end()) {
        return Released::Unknown;
    }
    auto& holders = found->second.holders;
    const auto held = holders.find(holder);
    if (held == holders.end()) {
        return Released::NotHeld;
    }
    if (--held->second == 0) {
        holders.erase(held);
    }
    return Released::Yes;
}

std::vector<std::string> SuiteRegistry::releaseAllOf(PluginNumber holder) {
    std::vector<std::string> held;
    for (auto& [key, suite] : suites_) {
        const auto entry = suite.holders.find(holder);
        if (entry == suite.holders.end()) {
            continue;
        }
        std::string text = key.first + " " + std::to_string(key.second);
        if (entry->second > 1) {
            text += " (" + std::to_string(entry->second) + " times)";
        }
        held.push_back(std::move(text));
        suite.holders.erase(entry);
    }
    return held;
}

} // namespace host
