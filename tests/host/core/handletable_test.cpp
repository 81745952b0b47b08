// SPDX-License-Identifier: MIT
// Handles that are live, dead, or never were.
#include "host/core/handletable.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace host {
namespace {

using Handle = struct Opaque*;
using Table = HandleTable<std::string, Handle>;

Handle fromBits(std::uintptr_t bits) {
    return reinterpret_cast<Handle>(bits);
}

TEST(AHandle, FindsItsValueUntilThatIsRemoved) {
    Table table;
    const Handle first = table.add("first");
    const Handle second = table.add("second");
    ASSERT_NE(first, nullptr);
    ASSERT_NE(first, second);
    EXPECT_EQ(*table.find(first), "first");
    EXPECT_TRUE(table.remove(first));
    EXPECT_FALSE(table.remove(first));
    EXPECT_EQ(table.find(first), nullptr);
    EXPECT_EQ(*table.find(second), "second");
    EXPECT_EQ(table.state(first), HandleState::Dead);
    EXPECT_EQ(table.state(second), HandleState::Live);
    EXPECT_EQ(table.size(), 1U);
}

TEST(AHandle, StaysDeadWhenItsPlaceIsUsedAgain) {
    Table table;
    const Handle old = table.add("old");
    std::set<Handle> handedOut{old};
    for (int i = 0; i < 1000; ++i) {
        table.forEach([&](Handle handle, const std::string&) { table.remove(handle); });
        const Handle next = table.add("new");
        EXPECT_TRUE(handedOut.insert(next).second) << "handed out twice";
        EXPECT_EQ(table.state(old), HandleState::Dead);
    }
}

TEST(AHandle, ThatNeverWasIsUnknown) {
    Table table;
    const Handle live = table.add("live");
    const auto bits = reinterpret_cast<std::uintptr_t>(live);
    const std::uintptr_t wrong[] = {0, bits + 1, ~std::uintptr_t{0},
                                    bits | (~HandleBits::indexMask), HandleBits::indexMask + 1};
    for (const std::uintptr_t each : wrong) {
        EXPECT_EQ(table.find(fromBits(each)), nullptr) << each;
        EXPECT_EQ(table.state(fromBits(each)), HandleState::Unknown) << each;
        EXPECT_FALSE(table.remove(fromBits(each))) << each;
    }
    EXPECT_EQ(*table.find(live), "live");
}

} // namespace
} // namespace host
