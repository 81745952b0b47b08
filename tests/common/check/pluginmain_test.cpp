// SPDX-License-Identifier: MIT
// The entry point: whose object it makes, calls and destroys, and what it makes of results.
#include "PluginMain.h"

#include "tests/support/plugin/failingnew.h"
#include "tests/support/plugin/recordingplugin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

namespace {

class TheEntryPoint : public testing::Test {
protected:
    TheEntryPoint() {
        host.strings[16050] = {{1, "0"}, {2, "error %s"}};
        sSPBasic = nullptr;
    }
    ~TheEntryPoint() override { EXPECT_THAT(host.acquired, IsEmpty()); }

    scripted::Host host{PluginMain};
};

TEST_F(TheEntryPoint, OnlyKeepsTheBasicSuiteWithoutAnObject) {
    EXPECT_EQ(host.send("any", "message"), kNoErr);
    EXPECT_EQ(sSPBasic, host.basic());
    CaptureStderr();
    for (const char* caller : {"SP Interface", "SP Access", "AI Timer", "nobody"}) {
        for (const char* selector : {"Shutdown", "Reload", "AI Go", "nothing"}) {
            EXPECT_EQ(host.send(caller, selector), kNoErr);
        }
    }
    EXPECT_EQ(GetCapturedStderr(), "");
    EXPECT_THAT(host.calls, IsEmpty());
}

TEST_F(TheEntryPoint, ReportsThatThereIsNoMemoryForTheObjectOrItsSuites) {
    for (const int nth : {1, 2}) {
        const FailingNew failing(nth);
        EXPECT_EQ(host.send("SP Interface", "Startup"), kOutOfMemoryErr);
        EXPECT_EQ(host.globals, nullptr);
        EXPECT_THAT(std::exchange(host.errorAlerts, {}), ElementsAre("error !MEM"));
    }
}

TEST_F(TheEntryPoint, DropsTheObjectOfAFailedStart) {
    scripted::Host poorHost(PluginMain);
    poorHost.missingAcquisition = 30;
    EXPECT_EQ(poorHost.send("SP Interface", "Startup"), kSuiteNotFoundErr);
    EXPECT_EQ(poorHost.globals, nullptr);
    EXPECT_THAT(poorHost.acquired, IsEmpty());
    EXPECT_THAT(poorHost.errorAlerts, IsEmpty()); // this code is quiet
    scripted::Host failing(PluginMain);
    failing.strings = host.strings;
    failing.fail("SetPluginName", -7);
    EXPECT_EQ(failing.send("SP Interface", "Startup"), -7);
    EXPECT_EQ(failing.globals, nullptr);
    EXPECT_EQ(gPlugin, nullptr);
    EXPECT_THAT(failing.acquired, IsEmpty());
    EXPECT_THAT(failing.errorAlerts, ElementsAre("error -7"));
}

class AnObject : public TheEntryPoint {
protected:
    AnObject() { host.globals = plugin.get(); }

    std::unique_ptr<RecordingPlugin> plugin = std::make_unique<RecordingPlugin>(host);
};

TEST_F(AnObject, IsDestroyedAtShutDownWhateverItAnswers) {
    for (const AIErr answer : {0, -9}) {
        auto dying = std::make_unique<RecordingPlugin>(host);
        const std::shared_ptr<bool> alive = dying->alive;
        dying->result = answer;
        host.globals = dying.release();
        host.errorAlerts.clear();
        EXPECT_EQ(host.send("SP Interface", "Shutdown"), answer);
        EXPECT_FALSE(*alive);
        EXPECT_EQ(host.globals, nullptr);
        EXPECT_EQ(host.errorAlerts.size(), answer == 0 ? 0U : 1U);
    }
}

TEST_F(AnObject, ReportsWhatAnOperationAnswersOnceItHasSuites) {
    EXPECT_EQ(host.send("AI Timer", "AI Go"), kNoErr);
    EXPECT_THAT(plugin->calls, IsEmpty());
    plugin->acquire();
    plugin->result = 17;
    EXPECT_EQ(host.send("AI Timer", "AI Go"), 17);
    ASSERT_EQ(plugin->calls.size(), 2U);
    EXPECT_EQ(plugin->calls[1].first, "ReportError 17 AI Timer AI Go");
    EXPECT_EQ(plugin->calls[1].second, plugin->calls[0].second);
}

TEST_F(AnObject, WarnsOfAMessageThatIsNotHandled) {
    plugin->acquire();
    const std::pair<const char*, const char*> pairs[] = {
        {"AI Timer", "AI Stop"}, {"nobody", "nothing"}, {"SP Interface", "Stop"}};
    for (const auto& [caller, selector] : pairs) {
        CaptureStderr();
        EXPECT_EQ(host.send(caller, selector), kNoErr);
        EXPECT_EQ(GetCapturedStderr(), std::string("Warning: Unhandled plugin message: caller \"") +
                                           caller + "\" selector \"" + selector + "\"\n");
    }
    CaptureStderr();
    EXPECT_EQ(host.notify(nullptr, "any type", "AI Go"), kNoErr);
    EXPECT_NE(GetCapturedStderr(), "");
    EXPECT_THAT(plugin->calls, IsEmpty());
}

TEST_F(AnObject, LetsExceptionsPass) {
    struct Throwing : RecordingPlugin {
        using RecordingPlugin::RecordingPlugin;
        AIErr Notify(AINotifierMessage* /*message*/) override {
            throw std::runtime_error("from inside");
        }
    } throwing(host);
    throwing.acquire();
    host.globals = &throwing;
    EXPECT_THROW(host.notify(nullptr, "any"), std::runtime_error);
    EXPECT_THAT(host.contexts, IsEmpty());
    EXPECT_THAT(host.errorAlerts, IsEmpty());
}

} // namespace
