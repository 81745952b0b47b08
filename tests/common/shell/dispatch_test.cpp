// SPDX-License-Identifier: MIT
// Which operation each message reaches, and what the base class answers to it.
#include "tests/support/plugin/recordingplugin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

struct MessageCase {
    const char* caller;
    const char* selector;
    const char* operation;
    AIErr baseAnswer;
};

constexpr AIErr unhandled = kUnhandledMsgErr;

const MessageCase cases[] = {
    {"SP Access", "Unload", "UnloadPlugin", 0},
    {"SP Access", "Reload", "ReloadPlugin", 0},
    {"SP Interface", "About", "About", 0},
    {"SP Properties", "Acquire", "AcquireProperty", unhandled},
    {"SP Properties", "Release", "ReleaseProperty", unhandled},
    {"Action Manager", "Do Action", "GoAction", 0},
    {"AI Menu", "AI Go", "GoMenuItem", unhandled},
    {"AI Menu", "AI Update", "UpdateMenuItem", unhandled},
    {"AI Filter", "AI Get Parameters", "GetFilterParameters", unhandled},
    {"AI Filter", "AI Go", "GoFilter", unhandled},
    {"AI Plugin Group", "AI Notify Edits", "PluginGroupNotify", unhandled},
    {"AI Plugin Group", "AI Update", "PluginGroupUpdate", unhandled},
    {"AI File Format", "AI Get Parameters", "GetFileFormatParameters", unhandled},
    {"AI File Format", "AI Go", "GoFileFormat", unhandled},
    {"AI File Format", "AI Check", "CheckFileFormat", unhandled},
    {"AI File Format", "AI Update AI140", "FileFormatUpdate", unhandled},
    {"AI File Format", "Do Action", "SetFileFormatParameters", unhandled},
    {"AI Tool", "AI Edit Options", "EditTool", unhandled},
    {"AI Tool", "AI Track Cursor", "TrackToolCursor", unhandled},
    {"AI Tool", "AI Mouse Down", "ToolMouseDown", unhandled},
    {"AI Tool", "AI Mouse Drag", "ToolMouseDrag", unhandled},
    {"AI Tool", "AI Mouse Up", "ToolMouseUp", unhandled},
    {"AI Tool", "AI Select", "SelectTool", unhandled},
    {"AI Tool", "AI Deselect", "DeselectTool", unhandled},
    {"AI Tool", "AI Reselect", "ReselectTool", 0},
    {"AI Tool", "AI Decrease Diameter", "DecreaseDiameter", 0},
    {"AI Tool", "AI Increase Diameter", "IncreaseDiameter", 0},
    {"AI Live Effect", "AI Live Effect Edit Parameters", "EditLiveEffectParameters", unhandled},
    {"AI Live Effect", "AI Live Effect Go Live", "GoLiveEffect", unhandled},
    {"AI Live Effect", "AI Live Effect Interpolate Parameters", "LiveEffectInterpolate", unhandled},
    {"AI Live Effect", "AI Live Effect Input Type", "LiveEffectGetInputType", unhandled},
    {"AI Live Effect", "AI Live Effect Scale Parameters", "LiveEffectScaleParameters", unhandled},
    {"AI Live Effect", "AI Live Effect Convert Color Space", "LiveEffectConvertColorSpace",
     unhandled},
    {"AI Live Effect", "AI Live Effect Adjust Colors", "LiveEffectAdjustColors", unhandled},
    {"AI Live Effect", "AI Live Effect Handle Merge", "LiveEffectHandleMerge", unhandled},
    {"AI Timer", "AI Go", "GoTimer", unhandled},
    {"AI Clipboard", "AI Go", "GoClipboard", unhandled},
    {"AI Clipboard", "AI Can Copy", "CanCopyClipboard", unhandled},
    {"AI Clipboard", "AI Clone", "CloneClipboard", unhandled},
    {"AI Clipboard", "AI Dispose", "DisposeClipboard", unhandled},
    {"Workspace Manager", "Write Woskspace", "WorkspaceWrite", unhandled},
    {"Workspace Manager", "Restore Woskspace", "WorkspaceRestore", unhandled},
    {"Workspace Manager", "Default Woskspace", "WorkspaceDefault", unhandled},
};

class AMessage : public testing::Test {
protected:
    scripted::Host host;
    RecordingPlugin plugin{host};
};

TEST_F(AMessage, ReachesTheOperationOfItsCallerAndSelector) {
    for (const MessageCase& c : cases) {
        SCOPED_TRACE(std::string(c.caller) + " / " + c.selector);
        auto record = host.message<SPInterfaceMessage>();
        plugin.calls.clear();
        plugin.result = 4711;
        EXPECT_EQ(plugin.Message(c.caller, c.selector, &record), 4711);
        EXPECT_THAT(plugin.calls, ElementsAre(Pair(c.operation, static_cast<void*>(&record))));
    }
}

TEST_F(AMessage, OfAKnownPairIsAnsweredByTheBaseClass) {
    for (const MessageCase& c : cases) {
        SCOPED_TRACE(std::string(c.caller) + " / " + c.selector);
        Plugin base(&host.plugin);
        auto start = host.message<SPInterfaceMessage>();
        ASSERT_EQ(base.StartupPlugin(&start), kNoErr);
        auto record = host.message<SPInterfaceMessage>();
        EXPECT_EQ(base.Message(c.caller, c.selector, &record), c.baseAnswer);
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
        EXPECT_EQ(plugin.Message(caller, selector, &record), unhandled) << caller << selector;
    }
    EXPECT_THAT(plugin.calls, IsEmpty());
}

TEST_F(AMessage, OfStartUpIsTakenWithoutAnOperation) {
    auto record = host.message<SPInterfaceMessage>();
    EXPECT_EQ(plugin.Message("SP Interface", "Startup", &record), kNoErr);
    EXPECT_THAT(plugin.calls, IsEmpty());
}

TEST_F(AMessage, ToPurgeIsRefusedWithACodeWhenSomethingWasFreed) {
    auto record = host.message<SPInterfaceMessage>();
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
    std::vector<std::string> operations() const {
        std::vector<std::string> names;
        for (const auto& call : plugin.calls) {
            names.push_back(call.first);
        }
        return names;
    }
};

TEST_F(ANotification, TellsFirstOfTheApplicationsStart) {
    plugin.result = 12;
    EXPECT_EQ(send("AI Application Started Notifier", "AI Notify"), 12);
    EXPECT_THAT(operations(), ElementsAre("PostStartupPlugin", "Notify"));
}

TEST_F(ANotification, EndsWithAFailedPostStartUp) {
    plugin.postStartupResult = 13;
    EXPECT_EQ(send("AI Application Started Notifier", "AI Notify"), 13);
    EXPECT_THAT(operations(), ElementsAre("PostStartupPlugin"));
}

TEST_F(ANotification, GoesOnAfterAPostStartUpThatIsNotHandled) {
    plugin.postStartupResult = unhandled;
    EXPECT_EQ(send("AI Application Started Notifier", "AI Notify"), kNoErr);
    EXPECT_THAT(operations(), ElementsAre("PostStartupPlugin", "Notify"));
}

TEST_F(ANotification, WithAnotherSelectorIsNotHandled) {
    EXPECT_EQ(send("AI Document Opened Notifier", "AI Go"), unhandled);
    EXPECT_THAT(operations(), IsEmpty());
    EXPECT_EQ(send("AI Application Started Notifier", "AI Go"), unhandled);
    EXPECT_THAT(operations(), ElementsAre("PostStartupPlugin"));
}

TEST_F(ANotification, RunsInsideAnApplicationContext) {
    struct Looking : RecordingPlugin {
        using RecordingPlugin::RecordingPlugin;
        AIErr Notify(AINotifierMessage* /*message*/) override {
            open = scripted::Host::current().contexts.size();
            return kNoErr;
        }
        std::size_t open = 0;
    } looking(host);
    looking.acquire();
    auto record = host.message<AINotifierMessage>();
    record.d.self = &host.otherPlugin; // the message's plug-in, not the object's
    record.type = "any";
    EXPECT_EQ(looking.Message("AI Notifier", "AI Notify", &record), kNoErr);
    EXPECT_EQ(looking.open, 1U);
    EXPECT_THAT(host.contexts, IsEmpty());
    EXPECT_THAT(host.contextOwners, ElementsAre(&host.otherPlugin));
}

TEST_F(ANotification, GoesOnWithoutAContextThatTheHostRefuses) {
    plugin.acquire();
    host.fail("PushAppContext", kBadParameterErr);
    EXPECT_EQ(send("any", "AI Notify"), kNoErr);
    EXPECT_THAT(host.misuse, IsEmpty());
}

} // namespace
