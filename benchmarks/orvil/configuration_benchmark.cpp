// SPDX-License-Identifier: MIT
// Look-ups of dotted keys beside a standard map of whole keys, and of keys made to collide.
#include "misc/configuration/configuration.h"
#include "ratios.h"

#include <benchmark/benchmark.h>

#include <string>
#include <unordered_map>
#include <vector>

namespace {

std::vector<std::string> ordinaryKeys() {
    std::vector<std::string> keys;
    keys.reserve(2000);
    for (int i = 0; i < 2000; ++i) {
        keys.push_back("section" + std::to_string(i % 20) + ".group" + std::to_string(i % 50) +
                       ".key" + std::to_string(i));
    }
    return keys;
}

std::vector<std::string> collidingKeys() {
    std::vector<std::string> keys;
    for (unsigned number = 0; number < 2048; ++number) {
        std::string key = "section.";
        for (unsigned bit = 0; bit < 11; ++bit) {
            key += ((number >> bit) & 1U) != 0 ? "Aa" : "BB";
        }
        keys.push_back(key);
    }
    return keys;
}

void lookUp(benchmark::State& state, const std::vector<std::string>& keys) {
    Orvil::Configuration store;
    for (const std::string& key : keys) {
        store.setValue(key, "value", true);
    }
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(store.getString(keys[i], ""));
        i = i + 1 == keys.size() ? 0 : i + 1;
    }
}

void configuration_lookup(benchmark::State& state) {
    lookUp(state, ordinaryKeys());
}
BENCHMARK(configuration_lookup);

void configuration_lookup_colliding(benchmark::State& state) {
    lookUp(state, collidingKeys());
}
BENCHMARK(configuration_lookup_colliding);

void configuration_lookup_unordered_map(benchmark::State& state) {
    const std::vector<std::string> keys = ordinaryKeys();
    std::unordered_map<std::string, std::string> map;
    for (const std::string& key : keys) {
        map[key] = "value";
    }
    std::size_t i = 0;
    for (auto _ : state) {
        const auto found = map.find(keys[i]);
        benchmark::DoNotOptimize(found == map.end() ? std::string() : std::string(found->second));
        i = i + 1 == keys.size() ? 0 : i + 1;
    }
}
BENCHMARK(configuration_lookup_unordered_map);

const bool expected =
    ratios::atMost("configuration_lookup", "configuration_lookup_unordered_map", 3) &&
    ratios::atMost("configuration_lookup_colliding", "configuration_lookup", 20);

} // namespace
