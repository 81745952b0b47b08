// SPDX-License-Identifier: MIT
// Texts in the host's language, and the texts of the bundle themselves.
#include "GLYLanguageMgr.h"

#include "host/core/stringlists.h"
#include "tests/support/plugin/startedplugin.h"
#include "tests/support/temporaryfolder.h"

#include <algorithm>
#include <map>
#include <set>

namespace {

class TheTexts : public AStartedPlugin {
protected:
    TheTexts() {
        host.strings = {{17000, {{3, "launch"}, {4, std::string(2000, 'x')}}},
                        {18000, {{3, "Start"}}}};
    }
};

TEST_F(TheTexts, AreGermanForOneLocaleOnly) {
    const std::pair<const char*, const char*> cases[] = {
        {"de_DE", "Start"}, {"en_US", "launch"}, {"de_AT", "launch"}, {"fr_FR", "launch"},
        {"", "launch"},     {"de", "launch"},    {"de_de", "launch"}, {"de_DE.UTF-8", "launch"},
    };
    for (const auto& [locale, text] : cases) {
        host.locale = locale;
        EXPECT_EQ(GLYLanguageMgr().getString(3), text) << locale;
    }
    host.locale = "de_DE";
    host.fail("GetAppLocale", 1);
    EXPECT_EQ(GLYLanguageMgr().getString(3), "launch");
}

TEST_F(TheTexts, AreCutAtTheBuffersEndAndSayThatOneIsMissing) {
    const GLYLanguageMgr manager;
    EXPECT_EQ(manager.getString(4), std::string(1023, 'x'));
    for (const std::int32_t index : {-1, 0, 5, 19}) {
        EXPECT_EQ(manager.getString(index), "strtable error");
    }
    host.strings.erase(17000);
    EXPECT_EQ(manager.getString(3), "strtable error");
}

TEST_F(TheTexts, AreEmptyWithoutAPlugin) {
    const GLYLanguageMgr manager;
    host.calls.clear();
    Plugin* const plugin = gPlugin;
    gPlugin = nullptr;
    EXPECT_EQ(manager.getString(3), "");
    gPlugin = plugin;
    EXPECT_TRUE(host.calls.empty());
}

TEST_F(TheTexts, KeepTheLanguageOfTheirFirstUse) {
    const GLYLanguageMgr* const manager = GLYLanguageMgr::getLanguageMgr();
    const std::string before = manager->getString(3);
    host.locale = before == "Start" ? "en_US" : "de_DE";
    EXPECT_EQ(GLYLanguageMgr::getLanguageMgr(), manager);
    EXPECT_EQ(manager->getString(3), before);
}

/// The entries of one of the bundle's lists, as the host reads them.
std::map<std::int32_t, std::string> bundled(const std::string& list) {
    const std::string content = testsupport::contentOf(GLYPHORA_RESOURCES "/" + list + ".strings");
    const auto entries = host::readStringList(
        content, list, [](std::string_view problem) { ADD_FAILURE() << problem; });
    return {entries.begin(), entries.end()};
}

TEST(TheBundle, HasEveryTextInBothLanguages) {
    auto english = bundled("17000");
    auto german = bundled("18000");
    int differing = 0;
    for (std::int32_t index = 1; index <= 18; ++index) {
        EXPECT_FALSE(english[index].empty() || german[index].empty()) << index;
        EXPECT_LT(std::max(english[index].size(), german[index].size()), 1024U) << index;
        differing += english[index] != german[index] ? 1 : 0;
    }
    EXPECT_EQ(english.size() + german.size(), 36U);
    EXPECT_GE(differing, 16); // "OK" and "Status" are both
}

TEST(TheBundle, HasAMessageForEveryErrorThatFits) {
    const auto errors = bundled("16050");
    ASSERT_FALSE(errors.empty());
    ASSERT_EQ(errors.size() % 2, 0U);
    EXPECT_EQ(errors.rbegin()->first, static_cast<std::int32_t>(errors.size())); // no gaps
    std::set<std::string> codes;
    for (const auto& [index, text] : errors) {
        if (index % 2 == 1) {
            EXPECT_TRUE(codes.insert(text).second) << text;
            EXPECT_LT(text.size(), 10U) << text;
        } else {
            EXPECT_LT(text.size(), 120U) << text;
            EXPECT_NE(text.find("%s"), std::string::npos) << text;
        }
    }
    for (const char* code : {"!MEM", "PARM", "THRD", "SHUT", "FNT?", "STR?"}) {
        EXPECT_TRUE(codes.contains(code)) << code;
    }
    for (const auto& [index, text] : bundled("16600")) {
        EXPECT_FALSE(text.empty() || text.size() >= 256) << index;
    }
    EXPECT_EQ(bundled("16600").size(), 2U);
}

} // namespace
