// SPDX-License-Identifier: MIT
// The hash map against a sorted one, with keys that collide too.
#include "misc/hash/hashmap.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

using namespace Orvil;

// Characters count as signed ones on every machine.
static_assert(Hash::hashString("a\xFF") == 97 * 31 - 1);

namespace {

/// Texts of eleven pairs, all with one hash.
std::vector<std::string> collidingKeys() {
    std::vector<std::string> keys;
    for (unsigned number = 0; number < 2048; ++number) {
        std::string key;
        for (unsigned bit = 0; bit < 11; ++bit) {
            key += ((number >> bit) & 1U) != 0 ? "Aa" : "BB";
        }
        keys.push_back(key);
    }
    return keys;
}

} // namespace

TEST(AHashMap, AgreesWithASortedMap) {
    std::mt19937 random(9);
    std::vector<std::string> keys = collidingKeys();
    for (int i = 0; i < 3000; ++i) {
        keys.push_back("key" + std::to_string(i));
    }
    hash_map<std::string, int> map(1);
    std::map<std::string, int> expected;
    const auto compare = [&] {
        std::map<std::string, int> all;
        std::as_const(map).forEach([&](const std::string& key, int value) { all[key] = value; });
        EXPECT_EQ(all, expected);
        EXPECT_EQ(map.size(), expected.size());
    };
    for (int round = 0; round < 30000; ++round) {
        const std::string& key = keys[random() % keys.size()];
        if (random() % 3 == 0) {
            ASSERT_EQ(map.erase(key), expected.erase(key) == 1);
        } else {
            ASSERT_EQ(map.insert(key, round), expected.emplace(key, round).first->second);
        }
        const std::string& sought = keys[random() % keys.size()];
        const auto found = expected.find(sought);
        const int* value = map.find(sought);
        ASSERT_EQ(value != nullptr, found != expected.end());
        ASSERT_TRUE(value == nullptr || *value == found->second);
    }
    compare();
    for (const std::string& key : keys) {
        ASSERT_EQ(map.erase(key), expected.erase(key) == 1);
    }
    compare();
}
