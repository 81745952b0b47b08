// SPDX-License-Identifier: MIT
// The configuration tree: paths, inheritance, editing, typed values, views and copies.
#include "misc/configuration/configuration.h"
#include "tests/support/repeated.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

using namespace Orvil;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

TEST(AConfiguration, MakesWhatAValueNeeds) {
    Configuration store;
    EXPECT_THAT(store.getSubCategories(""), IsEmpty());
    EXPECT_FALSE(store.setValues("a.b.c", {"1"}, false));
    EXPECT_TRUE(store.setValues("a.b.c", {"1"}, true));
    EXPECT_THAT(store.getSubCategories(""), ElementsAre("a"));
    EXPECT_THAT(store.getSubCategories("a"), ElementsAre("b"));
    EXPECT_THAT(store.getSubProperties("a.b"), ElementsAre("c"));
    EXPECT_THAT(store.getSubProperties("a.b.c"), IsEmpty());
    EXPECT_EQ(store.getString("a.b.c", ""), "1");
    // a.b inherits and a does not, so what a has is seen below b and what the root has is not.
    EXPECT_TRUE(store.setValue("a.x", "of a", false));
    EXPECT_TRUE(store.setValue("y", "of the root", false));
    EXPECT_EQ(store.getString("a.b.x", "none"), "of a");
    EXPECT_EQ(store.getString("a.b.y", "none"), "none");
    EXPECT_EQ(store.getString("a.y", "none"), "none");
}

TEST(AConfiguration, InheritsOnlyThroughInheritingCategories) {
    Configuration store;
    EXPECT_TRUE(store.addCategory("", true, false));
    EXPECT_TRUE(store.addCategory("a", true, false));
    EXPECT_TRUE(store.addCategory("a.b", true, false));
    EXPECT_TRUE(store.addCategory("a.b.c", false, false));
    EXPECT_TRUE(store.addCategory("a.b", false, false)) << "the flag of b stays";
    store.setValue("x", "root", false);
    store.setValue("other.z", "elsewhere", true);
    EXPECT_EQ(store.getString("a.b.x", "none"), "root");
    EXPECT_EQ(store.getString("a.b.c.x", "none"), "none");
    EXPECT_EQ(store.getString("a.b.other.z", "none"), "elsewhere") << "whole categories too";
    store.setValue("a.x", "a", false);
    EXPECT_EQ(store.getString("a.b.x", "none"), "a");
    EXPECT_EQ(store.getString("a.b.x.more", "none"), "none") << "a property has nothing below";
    EXPECT_EQ(store.getCategory("a.b.other", false)->getValueCount("z"), 0U)
        << "categories are found exactly";
    EXPECT_THAT(store.getSubProperties("a.b"), IsEmpty());
}

TEST(AConfiguration, TellsCategoriesFromProperties) {
    Configuration store;
    EXPECT_FALSE(store.addCategory("a", false, false)) << "there is no root yet";
    EXPECT_TRUE(store.setValue("p", "1", true));
    EXPECT_FALSE(store.addCategory("p", false, true));
    EXPECT_FALSE(store.addCategory("p.q", false, true));
    EXPECT_FALSE(store.setValue("p.q", "1", true));
    EXPECT_FALSE(store.setValueAt("p.q", 0, "1"));
    EXPECT_TRUE(store.addCategory("c", false, true));
    EXPECT_FALSE(store.addCategory("d.e", false, false));
    EXPECT_FALSE(store.setValue("c", "1", true));
    EXPECT_FALSE(store.setValueAt("c", 0, "1"));
    EXPECT_EQ(store.getValueCount("c"), 0U);
    EXPECT_THAT(store.getSubCategories("p"), IsEmpty());
}

TEST(AConfiguration, MakesButDoesNotFindWhatFollowsALeadingDot) {
    Configuration store;
    EXPECT_TRUE(store.addCategory(".in", false, true));
    EXPECT_THAT(store.getSubCategories(""), ElementsAre("in"));
    EXPECT_FALSE(store.addCategory(".in.more", false, true));
    EXPECT_FALSE(store.setValue(".in.x", "1", true));
    EXPECT_FALSE(store.setValueAt(".in.x", 0, "1"));
    EXPECT_TRUE(store.setValue(".x", "1", true)) << "nothing is before the dot but the root";
    EXPECT_EQ(store.getString("x", ""), "1");
    EXPECT_TRUE(store.addCategory(".", false, true)) << "a category without a name";
    EXPECT_FALSE(store.setValue(".in.x", "1", true));
}

TEST(AConfiguration, RemovesAPropertyThatIsGivenNoValues) {
    Configuration store;
    EXPECT_TRUE(store.setValues("a.p", {}, true));
    EXPECT_THAT(store.getSubProperties("a"), ElementsAre("p"));
    EXPECT_TRUE(store.setValues("a.p", {"1", "2"}, false));
    EXPECT_THAT(store.getValueList("a.p"), ElementsAre("1", "2"));
    EXPECT_TRUE(store.setValues("a.p", {}, false));
    EXPECT_THAT(store.getSubProperties("a"), IsEmpty());
}

TEST(AConfiguration, RemovesNothingDirectlyUnderItsRoot) {
    Configuration store;
    store.setValue("top", "1", true);
    store.setValue("a.b.c.d", "2", true);
    for (const char* kept : {"", "top", "a", "a.", ".a", "a.none", "none.b"}) {
        store.removeNode(kept);
    }
    EXPECT_EQ(store.getString("top", ""), "1");
    EXPECT_EQ(store.getString("a.b.c.d", ""), "2");
    store.removeNode("a.b");
    EXPECT_THAT(store.getSubCategories("a"), IsEmpty());
    EXPECT_EQ(store.getString("a.b.c.d", "gone"), "gone");
    EXPECT_THAT(store.getSubCategories(""), ElementsAre("a"));
}

TEST(AConfiguration, ReadsTypedValuesOrTheirDefaults) {
    Configuration store;
    store.setValues("v", {"12", "x", " yes ", "f", "9000000000", "1.5e3", "", "On"}, true);
    EXPECT_EQ(store.getInteger("v", 7), 12);
    EXPECT_EQ(store.getIntegerAt("v", 1, 7), 7);
    EXPECT_EQ(store.getIntegerAt("v", 4, 7), 7) << "too great for the type";
    EXPECT_EQ(store.getInteger("missing", 7), 7);
    EXPECT_EQ(store.getLargeIntegerAt("v", 4, 7), 9000000000);
    EXPECT_EQ(store.getLargeInteger("v", 7), 12);
    EXPECT_EQ(store.getLargeInteger("missing", 7), 7);
    EXPECT_EQ(store.getRealAt("v", 5, 0.5), 1500.0);
    EXPECT_EQ(store.getReal("missing", 0.5), 0.5);
    EXPECT_TRUE(store.getBooleanAt("v", 2, false));
    EXPECT_TRUE(store.getBooleanAt("v", 7, false));
    EXPECT_FALSE(store.getBooleanAt("v", 3, true));
    EXPECT_TRUE(store.getBoolean("v", true)) << "12 is no truth value";
    EXPECT_EQ(store.getStringAt("v", 6, "default"), "");
    EXPECT_EQ(store.getStringAt("v", 8, "default"), "default");
    EXPECT_EQ(store.getValueCount("v"), 8U);
    EXPECT_EQ(&store.getValueList("missing"), &store.getValueList("missing.too"));
}

TEST(AConfiguration, StartsAnIndexedValueFromTheInheritedList) {
    Configuration store;
    store.setValues("a.x", {"0", "1"}, true);
    EXPECT_TRUE(store.addCategory("a.b", true, false));
    EXPECT_TRUE(store.setValueAt("a.b.x", 3, "3"));
    EXPECT_THAT(store.getValueList("a.b.x"), ElementsAre("0", "1", "", "3"));
    EXPECT_THAT(store.getValueList("a.x"), ElementsAre("0", "1"));
    EXPECT_TRUE(store.setValueAt("a.b.x", 0, "new"));
    EXPECT_THAT(store.getValueList("a.b.x"), ElementsAre("new", "1", "", "3"));
    EXPECT_TRUE(store.setValueAt("c.d", 1, "z"));
    EXPECT_THAT(store.getValueList("c.d"), ElementsAre("", "z"));
    // The value may stand in the list that has to move.
    const std::string tooLongToStandInPlace(100, 'l');
    store.setValue("l", tooLongToStandInPlace, true);
    EXPECT_TRUE(store.setValueAt("l", 9, store.getValueList("l")[0]));
    EXPECT_EQ(store.getStringAt("l", 9, ""), tooLongToStandInPlace);
}

TEST(AView, SharesNodesAndACopyDoesNot) {
    Configuration store;
    store.setValue("a.b.c", "1", true);
    store.addCategory("a.empty", true, false);
    const auto view = store.getCategory("a", false);
    const auto copy = store.getCategory("a", true);
    EXPECT_TRUE(view->setValue("b.c", "changed", false));
    EXPECT_EQ(store.getString("a.b.c", ""), "changed");
    EXPECT_EQ(copy->getString("b.c", ""), "1");
    EXPECT_THAT(copy->getSubCategories(""), UnorderedElementsAre("b", "empty"));
    EXPECT_TRUE(copy->setValue("new.d", "2", true));
    copy->setValue("x", "of the copy's root", false);
    EXPECT_EQ(copy->getString("empty.x", "none"), "of the copy's root") << "it still inherits";
    EXPECT_EQ(copy->getString("new.x", "none"), "of the copy's root") << "made for a property";
    EXPECT_EQ(store.getString("a.x", "none"), "none");
    EXPECT_EQ(store.getString("a.new.d", "none"), "none");

    for (const bool copied : {false, true}) {
        const auto missing = store.getCategory("a.b.c", copied);
        EXPECT_EQ(missing->getString("x", "none"), "none");
        EXPECT_EQ(missing->setValue("x", "1", true), copied) << "a view makes no root";
        EXPECT_EQ(missing->addCategory("", true, true), copied);
    }
}

TEST(AConfiguration, CopiesAndFreesADeepTree) {
    Configuration store;
    const std::string path = "a" + repeated(".a", 50000);
    EXPECT_TRUE(store.setValue(path, "deep", true));
    const auto copy = store.getCategory("a", true);
    EXPECT_EQ(copy->getString(path.substr(2), ""), "deep");
}

TEST(AConfiguration, IsSafeForManyThreads) {
    Configuration store;
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&store, i] {
            const std::string own = "t" + std::to_string(i) + ".v";
            for (int round = 0; round < 500; ++round) {
                store.setValue(own, std::to_string(round), true);
                EXPECT_EQ(store.getInteger(own, -1), round);
                store.setValueAt("shared.v", 0, own);
                EXPECT_NE(store.getString("shared.v", ""), "");
            }
        });
    }
    threads.clear();
    EXPECT_EQ(store.getSubCategories("").size(), 5U);
}

TEST(AConfiguration, IsNeverCopied) {
    const char* message = "^source/externals/orvil/source/misc/configuration/configuration:[0-9]+: "
                          "failed assertion `false'\n$";
    Configuration store;
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the copy is what is tried
    EXPECT_EXIT(const Configuration copy(store), testing::KilledBySignal(SIGABRT), message);
    Configuration other;
    EXPECT_EXIT(other = store, testing::KilledBySignal(SIGABRT), message);
}
