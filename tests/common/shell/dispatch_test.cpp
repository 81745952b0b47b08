// SPDX-License-Identifier: MIT
// Which operation each message reaches, and what the base class answers to it.
#include "tests/support/plugin/recordingplugin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <tuple>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

const std::tuple<const char*, const char*, std::string> messages[] = {
#define ROW(caller, selector, operation) {caller, selector, #operation},
    GLYPHORA_MESSAGES(ROW)
#undef ROW
};

// The operations in which the base class succeeds; it leaves the others unhandled.
const std::set<std::string> answered{"UnloadPlugin",    "ReloadPlugin", "About",
                                     "GoAction",        "ReselectTool", "DecreaseDiameter",
                                     "IncreaseDiameter"};

class AMessage : public testing::Test {
protected:
    scripted::Host host;
    RecordingPlugin plugin{host};
};

TEST_F(AMessage, ReachesItsOperationWhichTheBaseClassAnswers) {
    for (const auto& [caller, selector, operation] : messages) {
        SCOPED_TRACE(std::string(caller) + " / " + selector);
        auto record = host.message<SPInterfaceMessage>();
        plugin.calls.clear();
        plugin.result = 4711;
        EXPECT_EQ(plugin.Message(caller, selector, &record), 4711);
        EXPECT_THAT(plugin.calls, ElementsAre(Pair(operation, static_cast<void*>(&record))));
        Plugin base(&host.plugin);
        auto start = host.message<SPInterfaceMessage>();
        ASSERT_EQ(base.StartupPlugin(&start), kNoErr);
        EXPECT_EQ(base.Message(caller, selector, &record),
                  answered.contains(operation) ? kNoErr : kUnhandledMsgErr);
    }
}

TEST_F(AMessage, OfAnUnknownPairIsNotHandled) {
    const std::pair<const char*, const char*> pairs[] = {
        {"AI Tool", "AI Go"},
        {"AI Menu", "ai go"},
        {"AI MenuAI", " Go"},
        {"", ""},
        {"SP Interface", "Shutdown"},
        {"SP Cache", "Acquire"},
        {"AI Go", "AI Menu"},
        // Spelled correctly, and so unknown.
        {"Workspace Manager", "Write Workspace"},
        {"Workspace Manager", "Restore Workspace"},
        {"Workspace Manager", "Default Workspace"},
    };
    for (const auto& [caller, selector] : pairs) {
        auto record = host.message<SPInterfaceMessage>();
        EXPECT_EQ(plugin.Message(caller, selector, &record), kUnhandledMsgErr)
            << caller << selector;
    }
    EXPECT_THAT(plugin.calls, IsEmpty());
}

TEST_F(AMessage, OfStartUpOrPurgeHasNoOperation) {
    auto record = host.message<SPInterfaceMessage>();
    EXPECT_EQ(plugin.Message("SP Interface", "Startup", &record), kNoErr);
    EXPECT_THAT(plugin.calls, IsEmpty());
    EXPECT_EQ(plugin.Message("SP Cache", "Plug-in Purge", &record), kNoErr);
    plugin.purges = true;
    EXPECT_EQ(plugin.Message("SP Cache", "Plug-in Purge", &record), FourChars("pFls"));
}

class ANotification : public AMessage {
protected:
    AIErr send(const char* type, const char* selector) {
        auto record = host.message<AINotifierMessage>();
        record.type = type;
        return plugin.Message("AI Notifier", selector, &record);
    }
    /// What was called since the last look.
    std::vector<std::string> operations() {
        std::vector<std::string> names;
        for (const auto& call : std::exchange(plugin.calls, {})) {
            names.push_back(call.first);
        }
        return names;
    }
};

TEST_F(ANotification, TellsFirstOfTheApplicationsStart) {
    plugin.result = 12;
    EXPECT_EQ(send("AI Application Started Notifier", "AI Notify"), 12);
    EXPECT_THAT(operations(), ElementsAre("PostStartupPlugin", "Notify"));
    plugin.postStartupResult = 13;
    EXPECT_EQ(send("AI Application Started Notifier", "AI Notify"), 13);
    EXPECT_THAT(operations(), ElementsAre("PostStartupPlugin"));
    plugin.postStartupResult = kUnhandledMsgErr;
    EXPECT_EQ(send("AI Application Started Notifier", "AI Notify"), 12);
    EXPECT_THAT(operations(), ElementsAre("PostStartupPlugin", "Notify"));
}

TEST_F(ANotification, WithAnotherSelectorIsNotHandled) {
    EXPECT_EQ(send("AI Document Opened Notifier", "AI Go"), kUnhandledMsgErr);
    EXPECT_THAT(operations(), IsEmpty());
    EXPECT_EQ(send("AI Application Started Notifier", "AI Go"), kUnhandledMsgErr);
    EXPECT_THAT(operations(), ElementsAre("PostStartupPlugin"));
}

TEST_F(ANotification, RunsInsideAnApplicationContext) {
    struct Looking : RecordingPlugin {
        using RecordingPlugin::RecordingPlugin;
        AIErr Notify(AINotifierMessage* /*message*/) override {
            owner = scripted::Host::current().contexts.at(0)->plugin;
            return kNoErr;
        }
        SPPluginRef owner = nullptr;
    } looking(host);
    looking.acquire();
    auto record = host.message<AINotifierMessage>();
    record.d.self = &host.otherPlugin; // the message's plug-in, not the object's
    record.type = "any";
    EXPECT_EQ(looking.Message("AI Notifier", "AI Notify", &record), kNoErr);
    EXPECT_EQ(looking.owner, &host.otherPlugin);
    EXPECT_THAT(host.contexts, IsEmpty());
}

TEST_F(ANotification, GoesOnWithoutAContextThatTheHostRefuses) {
    plugin.acquire();
    host.fail("PushAppContext", kBadParameterErr);
    EXPECT_EQ(send("any", "AI Notify"), kNoErr);
    EXPECT_THAT(host.misuse, IsEmpty());
}

} // namespace
