// SPDX-License-Identifier: MIT
// A host with the plug-in started in it, as most tests need it.
#pragma once

#include "GlyphoraPlugin.h"
#include "PluginMain.h"
#include "tests/support/scriptedhost/scriptedhost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

/// Shuts the plug-in down at the end, and then expects that nothing of the host's is held.
class AStartedPlugin : public testing::Test {
protected:
    AStartedPlugin() { EXPECT_EQ(host.send("SP Interface", "Startup"), kNoErr); }
    ~AStartedPlugin() override {
        EXPECT_EQ(host.send("SP Interface", "Shutdown"), kNoErr);
        EXPECT_EQ(host.globals, nullptr);
        EXPECT_THAT(host.acquired, testing::IsEmpty());
        EXPECT_THAT(host.contexts, testing::IsEmpty());
        EXPECT_EQ(host.text.liveReferences(), 0);
        EXPECT_THAT(host.misuse, testing::IsEmpty());
    }

    scripted::Host host{PluginMain};
};
