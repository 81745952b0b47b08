// SPDX-License-Identifier: MIT
// The plug-in's own start, end and reload, and who is told of a notification.
#include "suitepointers.h"
#include "tests/support/plugin/startedplugin.h"

#include <cstring>
#include <tuple>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

class GlyphoraAtWork : public AStartedPlugin {
protected:
    GlyphoraPlugin& plugin() { return *static_cast<GlyphoraPlugin*>(host.globals); }
    std::string printedBy(AINotifier& notifier) {
        CaptureStdout();
        EXPECT_EQ(host.notify(notifier), kNoErr);
        return GetCapturedStdout();
    }
    bool opensDocuments(AINotifier& notifier) {
        const int before = host.callsOf("GetFirstLayer");
        EXPECT_EQ(printedBy(notifier), "");
        return host.callsOf("GetFirstLayer") == before + 1;
    }
};

TEST_F(GlyphoraAtWork, HasRegisteredWhatItNeeds) {
    EXPECT_EQ(host.plugin.name, "Glyphora for Illustrator CS4");
    EXPECT_EQ(gPlugin, host.globals);
    std::vector<std::string> registered;
    for (const auto& notifier : host.notifiers) {
        EXPECT_EQ(notifier->owner, &host.plugin);
        registered.push_back(notifier->name + ": " + notifier->type);
    }
    EXPECT_THAT(registered,
                ElementsAre("Glyphora for Illustrator CS4 App Started Notifier: AI Application "
                            "Started Notifier",
                            "GlyphoraPlugin: AI Document Opened Notifier",
                            "GlyphoraPlugin: AI Application Started Notifier",
                            "GlyphoraPlugin: AI Document Changed Notifier"));
    ASSERT_EQ(host.timers.size(), 1U);
    EXPECT_EQ(host.timers[0]->name, "CloseTheDoc");
    EXPECT_EQ(host.timers[0]->period, 300);
    EXPECT_FALSE(host.timers[0]->active);
}

TEST_F(GlyphoraAtWork, TellsNotificationsApartByTheirHandles) {
    EXPECT_TRUE(opensDocuments(host.notifierOf("AI Document Opened Notifier")));
    EXPECT_EQ(printedBy(host.notifierOf("AI Document Changed Notifier")), "doc changed notifier\n");
    EXPECT_EQ(printedBy(host.notifierOf("AI Application Started Notifier")), "");
    // The base class's registration has the type, but not the handle.
    EXPECT_EQ(printedBy(*host.notifiers[0]), "other notifier\n");
    AINotifier foreign{&host.otherPlugin, "x", "AI Document Opened Notifier"};
    EXPECT_EQ(printedBy(foreign), "other notifier\n");
}

TEST_F(GlyphoraAtWork, TakesMenuMessagesAndClosesTheDocumentByItsTimer) {
    EXPECT_EQ(plugin().GoMenuItem(nullptr), kNoErr);
    EXPECT_EQ(plugin().UpdateMenuItem(nullptr), kNoErr);
    EXPECT_EQ(plugin().GoTimer(nullptr), kUnhandledMsgErr);
    host.timers[0]->active = true;
    AITimerMessage message;
    EXPECT_EQ(plugin().Timer(&message), kNoErr);
    EXPECT_TRUE(host.document.closed);
    EXPECT_FALSE(host.timers[0]->active);
}

TEST_F(GlyphoraAtWork, DoesNothingWhileItIsUnloaded) {
    ASSERT_EQ(host.send("SP Access", "Unload"), kNoErr);
    EXPECT_THAT(host.acquired, IsEmpty());
    EXPECT_EQ(gPlugin, nullptr);
    EXPECT_NE(host.globals, nullptr);
    host.calls.clear();
    EXPECT_EQ(host.notify(host.notifierOf("AI Document Opened Notifier")), kNoErr);
    EXPECT_THAT(host.calls, IsEmpty());
}

TEST_F(GlyphoraAtWork, FindsItsHandlesAgainAfterAReload) {
    ASSERT_EQ(host.send("SP Access", "Unload"), kNoErr);
    // The host gives its handles anew, and knows of other plug-ins too.
    AINotifier& oldChanged = host.notifierOf("AI Document Changed Notifier");
    std::vector<std::unique_ptr<AINotifier>> old;
    old.swap(host.notifiers);
    // Of one type and owner there may be several: the last one counts.
    const auto addNotifier = [this](SPPlugin& owner, const char* type) {
        AINotifier notifier{&owner, "GlyphoraPlugin", type};
        host.notifiers.push_back(std::make_unique<AINotifier>(std::move(notifier)));
    };
    addNotifier(host.plugin, "AI Application Started Notifier");
    AINotifier& first = *host.notifiers.front();
    for (const char* type : {"AI Document Opened Notifier", "AI Document Changed Notifier",
                             "AI Application Started Notifier"}) {
        addNotifier(host.plugin, type);
        addNotifier(host.otherPlugin, type);
    }
    std::vector<std::unique_ptr<AITimer>> oldTimers;
    oldTimers.swap(host.timers);
    for (const AITimer& timer :
         {AITimer{&host.otherPlugin, "CloseTheDoc"}, AITimer{&host.plugin, "CloseTheDoc"},
          AITimer{&host.plugin, "another"}, AITimer{&host.otherPlugin, "CloseTheDoc"}}) {
        host.timers.push_back(std::make_unique<AITimer>(timer));
    }
    host.missingAcquisition = static_cast<int>(host.acquisitions.size()) + 30;
    EXPECT_EQ(host.send("SP Access", "Reload"), kSuiteNotFoundErr);
    ASSERT_EQ(host.send("SP Access", "Reload"), kNoErr);

    EXPECT_TRUE(opensDocuments(host.notifierOf("AI Document Opened Notifier")));
    EXPECT_EQ(printedBy(first), "other notifier\n");
    EXPECT_EQ(printedBy(*host.notifiers[2]), "other notifier\n");
    EXPECT_EQ(printedBy(*host.notifiers[5]), "");
    // The handle of changed documents stays the old one.
    EXPECT_EQ(printedBy(host.notifierOf("AI Document Changed Notifier")), "other notifier\n");
    EXPECT_EQ(printedBy(oldChanged), "doc changed notifier\n");
    AITimerMessage message;
    plugin().Timer(&message);
    EXPECT_TRUE(host.timers[0]->active);
    EXPECT_FALSE(host.timers[1]->active);
    EXPECT_TRUE(host.timers[2]->active);
    EXPECT_TRUE(host.timers[3]->active);
}

TEST(AStart, ThrowsTheErrorOfTheRegistrationsThatAreChecked) {
    // The first notifier is the base class's; the second and third are not looked at.
    const std::tuple<const char*, int, bool> cases[] = {{"AddNotifier", 2, false},
                                                        {"AddNotifier", 3, false},
                                                        {"AddNotifier", 4, true},
                                                        {"AddTimer", 1, true},
                                                        {"SetTimerActive", 1, false}};
    for (const auto& [call, nth, isThrown] : cases) {
        SCOPED_TRACE(std::string(call) + std::to_string(nth));
        scripted::Host host(PluginMain);
        host.fail(call, 51, nth);
        std::int32_t thrown = 0;
        auto record = host.message<SPInterfaceMessage>();
        try {
            EXPECT_EQ(PluginMain("SP Interface", "Startup", &record), kNoErr);
        } catch (std::int32_t error) {
            thrown = error;
        }
        EXPECT_EQ(thrown, isThrown ? 51 : 0);
        // The object stays in its slot for the host to shut down.
        host.globals = record.d.globals;
        ASSERT_NE(host.globals, nullptr);
        EXPECT_EQ(host.send("SP Interface", "Shutdown"), kNoErr);
        EXPECT_THAT(host.acquired, IsEmpty());
        EXPECT_EQ(gPlugin, nullptr);
    }
}

TEST(AShutDown, TellsTheAuxiliaryObjectFirst) {
    struct WithAuxiliary : GlyphoraPlugin {
        struct Told : Auxiliary {
            explicit Told(SPInterfaceMessage*& target) : told(target) {}
            void ShutdownPlugin(SPInterfaceMessage* message) override {
                EXPECT_NE(sAIArt, nullptr); // the suites are still there
                told = message;
            }
            SPInterfaceMessage*& told;
        };
        WithAuxiliary(SPPluginRef ref, SPInterfaceMessage*& told) : GlyphoraPlugin(ref) {
            check_.auxiliary = std::make_unique<Told>(told);
        }
    };
    scripted::Host host;
    sSPBasic = host.basic();
    SPInterfaceMessage* told = nullptr;
    WithAuxiliary plugin(&host.plugin, told);
    auto record = host.message<SPInterfaceMessage>();
    ASSERT_EQ(plugin.StartupPlugin(&record), kNoErr);
    EXPECT_EQ(plugin.ShutdownPlugin(&record), kNoErr);
    EXPECT_EQ(told, &record);
    told = nullptr;
    EXPECT_EQ(plugin.ShutdownPlugin(&record), kNoErr);
    EXPECT_EQ(told, nullptr);
}

} // namespace
