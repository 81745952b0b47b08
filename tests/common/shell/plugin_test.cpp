// SPDX-License-Identifier: MIT
// The base class beyond dispatch: its name, its lock, its about box, its start, and the two small
// helpers that go with it.
#include "AppContext.h"
#include "SDKAboutPluginsHelper.h"
#include "tests/support/plugin/failingnew.h"
#include "tests/support/plugin/recordingplugin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <tuple>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

class APlugin : public testing::Test {
protected:
    scripted::Host host;
    RecordingPlugin plugin{host};
};

TEST_F(APlugin, GivesItsNameWithinTheBuffer) {
    // The name, its greatest length, then the buffer, of one byte more, and the result.
    const std::tuple<std::string, std::int32_t, std::string, std::int32_t> cases[] = {
        {"Plugin", 8, std::string("Plugin\0\0x", 9), 6},
        {"Plugin", 6, "Pluginx", 6},
        {"Plugin", 5, std::string("Plugi\0", 6), 6},
        {"Plugin", 0, std::string("\0", 1), 6},
        {"", 2, std::string("\0\0x", 3), 0},
        {std::string(300, 'n'), 2, std::string("nn\0", 3), 256},
    };
    for (const auto& [name, length, expected, result] : cases) {
        plugin.SetPluginName(name.c_str());
        std::string buffer(static_cast<std::size_t>(length) + 1, 'x');
        EXPECT_EQ(plugin.GetPluginName(buffer.data(), length), result);
        EXPECT_EQ(buffer, expected);
    }
}

TEST_F(APlugin, IsHeldInMemoryFromTheFirstLockToTheLastUnlock) {
    plugin.acquire();
    const std::pair<bool, std::size_t> steps[] = {{false, 0}, {true, 1},  {true, 1},
                                                  {false, 1}, {false, 0}, {false, 0},
                                                  {false, 0}, {true, 1},  {false, 0}};
    for (const auto& [lock, held] : steps) {
        EXPECT_EQ(plugin.LockPlugin(lock), kNoErr);
        EXPECT_EQ(host.accesses.size(), held);
    }
    EXPECT_EQ(host.callsOf("ReleasePlugin"), 2);
    host.fail("AcquirePlugin", 77);
    EXPECT_EQ(plugin.LockPlugin(true), 77);
}

TEST_F(APlugin, ShowsItsAboutBox) {
    plugin.acquire();
    auto record = host.message<SPInterfaceMessage>();
    host.strings[16600] = {{1, "title"}, {2, std::string(300, 't')}};
    EXPECT_EQ(plugin.Plugin::About(&record), kNoErr);
    EXPECT_THAT(host.aboutBoxes, ElementsAre(Pair("title", std::string(255, 't'))));
}

TEST_F(APlugin, StopsItsStartAtTheFirstError) {
    for (const char* call : {"SetPluginName", "AddNotifier"}) {
        host.fail(call, 21);
        RecordingPlugin failing(host);
        auto record = host.message<SPInterfaceMessage>();
        EXPECT_EQ(failing.StartupPlugin(&record), 21);
        EXPECT_TRUE(failing.HasSuites());
        host.fail(call, kNoErr);
    }
}

TEST_F(APlugin, FillsItsTablesLastAndEmptiesThemFirst) {
    struct Filling : RecordingPlugin {
        using RecordingPlugin::RecordingPlugin;
        AIErr AllocateSuiteTables() override { return allocated; }
        AIErr FillSuiteTables() override { return filled; }
        AIErr EmptySuiteTables() override {
            emptiedWithSuites = sAIArt != nullptr;
            return kNoErr;
        }
        bool emptiedWithSuites = false;
        AIErr allocated = kNoErr;
        AIErr filled = kNoErr;
    };
    for (const auto& [allocated, filled, expected] :
         {std::array{0, 0, 0}, std::array{31, 32, 31}, std::array{0, 32, 32}}) {
        Filling filling(host);
        filling.allocated = allocated;
        filling.filled = filled;
        auto record = host.message<SPInterfaceMessage>();
        EXPECT_EQ(filling.StartupPlugin(&record), expected);
        EXPECT_EQ(host.notifiers.back()->name, "Plugin App Started Notifier");
        EXPECT_EQ(host.notifiers.back()->type, "AI Application Started Notifier");
        filling.Plugin::UnloadPlugin(nullptr);
        EXPECT_TRUE(filling.emptiedWithSuites);
    }
}

TEST_F(APlugin, TakesItsSuitesAgainWhenItIsReloaded) {
    plugin.acquire();
    auto record = host.message<SPAccessMessage>();
    EXPECT_EQ(plugin.Plugin::UnloadPlugin(&record), kNoErr);
    EXPECT_FALSE(plugin.HasSuites());
    EXPECT_THAT(host.acquired, IsEmpty());

    host.missingAcquisition = static_cast<int>(host.acquisitions.size()) + 50;
    EXPECT_EQ(plugin.Plugin::ReloadPlugin(&record), kSuiteNotFoundErr);
    EXPECT_FALSE(plugin.HasSuites());
    EXPECT_THAT(host.acquired, IsEmpty());

    EXPECT_EQ(plugin.Plugin::ReloadPlugin(&record), kNoErr);
    EXPECT_TRUE(plugin.HasSuites());
    const std::size_t acquisitions = host.acquisitions.size();
    EXPECT_EQ(plugin.Plugin::ReloadPlugin(&record), kNoErr); // a second time changes nothing
    EXPECT_EQ(host.acquisitions.size(), acquisitions);
    const FailingNew failing(1);
    EXPECT_EQ(plugin.Plugin::UnloadPlugin(&record), kNoErr);
    EXPECT_EQ(plugin.Plugin::ReloadPlugin(&record), kOutOfMemoryErr);
}

TEST_F(APlugin, OpensNoContextWithoutTheSuite) {
    const AppContext context(&host.plugin);
    EXPECT_THAT(host.calls, IsEmpty());
}

class AnAboutEntry : public APlugin {
protected:
    AnAboutEntry() {
        plugin.acquire();
        host.menuGroups.push_back(
            std::make_unique<AIMenuGroupRecord>(AIMenuGroupRecord{"About Plug-ins"}));
    }
    AIErr add() {
        auto record = host.message<SPInterfaceMessage>();
        return helper.AddAboutPluginsMenuItem(&record, "Makers", "Makers...", "Glyphora", &item);
    }

    SDKAboutPluginsHelper helper;
    AIMenuItemHandle item = nullptr;
};

TEST_F(AnAboutEntry, MakesItsGroupOnlyOnce) {
    ASSERT_EQ(add(), kNoErr);
    EXPECT_EQ(item->group, "Makers");
    EXPECT_EQ(item->text, "Glyphora");
    ASSERT_EQ(host.menuItems.size(), 2U);
    EXPECT_EQ(host.menuItems[0]->group, "About Plug-ins");
    EXPECT_EQ(host.menuItems[0]->text, "Makers...");
    ASSERT_EQ(add(), kNoErr);
    EXPECT_EQ(host.menuItems.size(), 3U);
    EXPECT_EQ(host.menuGroups.size(), 2U);
}

TEST_F(AnAboutEntry, ReportsTheCallThatFailed) {
    for (const char* call : {"CountMenuGroups", "GetNthMenuGroup", "GetMenuGroupName",
                             "AddMenuItem", "AddMenuGroupAsSubMenu"}) {
        host.fail(call, 41, 1);
        EXPECT_EQ(add(), 41) << call;
    }
}

TEST_F(AnAboutEntry, ShowsTheBoxOfTheMessagesPlugin) {
    auto record = host.message<AIMenuMessage>();
    helper.PopAboutBox(&record, "title", "text");
    EXPECT_THAT(host.aboutBoxes, ElementsAre(Pair("title", "text")));
}

} // namespace
