// SPDX-License-Identifier: MIT
// The walk over the running applications, and the names that they have on the bus.
#include "platform/linux/busnames.h"
#include "platform/processes.h"
#include "tests/platform/events.h"
#include "tests/platform/peerprocess.h"
#include "tests/support/privatebus/privatebus.h"

#include <gio/gio.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <map>
#include <random>
#include <vector>

namespace {

using platform::busNameOf;
using platform::InstanceName;
using platform::parseInstanceName;
using platformtest::PeerProcess;
using platformtest::RegisteredPeer;

class AWalkOverTheProcesses : public testing::Test {
protected:
    void TearDown() override { PLUnregisterApplication(); }
    static std::map<std::int32_t, ProcessInfoRec> walk() {
        std::map<std::int32_t, ProcessInfoRec> found;
        ProcessSerialNumber psn;
        while (GetNextProcess(&psn) == noErr) {
            ProcessInfoRec info;
            EXPECT_EQ(GetProcessInformation(&psn, &info), noErr);
            found.emplace(info.processID, info);
        }
        EXPECT_EQ(psn.lowLongOfPSN, kNoProcess);
        return found;
    }
    testsupport::PrivateBus bus;
};

TEST_F(AWalkOverTheProcesses, MeetsEveryApplicationOnce) {
    EXPECT_TRUE(walk().empty());
    ASSERT_EQ(PLRegisterApplication(FourCharCode("SELF"), kPLManyInstances, "Self"), noErr);
    RegisteredPeer one({"serve-one", "QGLY"});
    RegisteredPeer many({"serve-many", "3D _"});
    const auto found = walk();
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found.at(getpid()).processSignature, FourCharCode("SELF"));
    EXPECT_EQ(found.at(one.processID()).processSignature, FourCharCode("QGLY"));
    EXPECT_EQ(found.at(many.processID()).processSignature, FourCharCode("3D _"));
    many.kill();
    PLUnregisterApplication(); // a round trip to the bus, which meets the end of the other on it
    EXPECT_EQ(walk().size(), 1U);
}

TEST_F(AWalkOverTheProcesses, PassesOverLiarsAndTheDead) {
    platformtest::RawConnection liar(bus.address());
    liar.ownName(platform::busNameOf({FourCharCode("LIAR"), 1}));
    RegisteredPeer first({"serve-many", "PEER"});
    RegisteredPeer second({"serve-many", "PEER"});
    ProcessSerialNumber psn;
    ASSERT_EQ(GetNextProcess(&psn), noErr);
    ProcessInfoRec info;
    ASSERT_EQ(GetProcessInformation(&psn, &info), noErr);
    EXPECT_EQ(info.processSignature, FourCharCode("PEER"));
    first.kill();
    second.kill();
    // The bus may answer a question before it looks at those that have hung up.
    const auto isOnTheBus = [&liar](const PeerProcess& peer) {
        return liar.hasOwner(platform::busNameOf({FourCharCode("PEER"), peer.processID()}));
    };
    while (isOnTheBus(first) || isOnTheBus(second)) {
    }
    EXPECT_EQ(GetProcessInformation(&psn, &info), procNotFound) << "it has ended";
    EXPECT_EQ(GetNextProcess(&psn), procNotFound) << "it was listed, and has ended";
    EXPECT_EQ(psn.lowLongOfPSN, kNoProcess);
}

TEST_F(AWalkOverTheProcesses, TellsTheNameGivenAtTheRegistration) {
    std::string longName;
    for (int i = 0; i < 100; ++i) {
        longName += "\xE2\x82\xAC"; // three bytes each: 255 of them fit
    }
    RegisteredPeer named({"serve-many", "PEER", longName});
    RegisteredPeer nameless({"serve-many", "PEER"});
    ASSERT_EQ(PLRegisterApplication(FourCharCode("SELF"), kPLOneInstance, "Selbst \xC3\xBC"),
              noErr);
    const std::string kernelName = "platform_test_p"; // cut by the kernel
    std::map<std::int32_t, std::string> names;
    ProcessSerialNumber psn;
    while (GetNextProcess(&psn) == noErr) {
        char buffer[256];
        ProcessInfoRec info;
        info.processName = buffer;
        // The kernel's name stands for one that is not told in time.
        do {
            ASSERT_EQ(GetProcessInformation(&psn, &info), noErr);
        } while (info.processID != nameless.processID() && buffer == kernelName);
        names[info.processID] = buffer;
    }
    EXPECT_EQ(names[named.processID()], longName.substr(0, 255));
    EXPECT_EQ(names[nameless.processID()], kernelName);
    EXPECT_EQ(names[getpid()], "Selbst \xC3\xBC");
}

TEST_F(AWalkOverTheProcesses, ChecksItsArguments) {
    ProcessSerialNumber psn;
    ProcessInfoRec info;
    EXPECT_EQ(GetNextProcess(nullptr), paramErr);
    EXPECT_EQ(GetProcessInformation(&psn, nullptr), paramErr);
    EXPECT_EQ(GetProcessInformation(&psn, &info), procNotFound);
    info.processInfoLength = 7;
    EXPECT_EQ(GetProcessInformation(&psn, &info), paramErr);
    bus.stop();
    psn = {1, 2};
    EXPECT_EQ(GetNextProcess(&psn), procNotFound);
    EXPECT_EQ(psn.lowLongOfPSN, kNoProcess);
}

TEST(ABusName, KeepsLettersAndEscapesTheRest) {
    EXPECT_EQ(busNameOf({FourCharCode("QGLY"), 4711}),
              "org.glyphora.AppleEvents1.QGLY.instance4711");
    EXPECT_EQ(busNameOf(FourCharCode("ART5")), "org.glyphora.AppleEvents1.ART5");
    EXPECT_EQ(busNameOf(FourCharCode("3D _")), "org.glyphora.AppleEvents1._33D_20_5f");
    EXPECT_EQ(busNameOf(OSType{0x00FF2E2D}), "org.glyphora.AppleEvents1._00_ff_2e_2d");
}

TEST(ABusName, IsLegalAndReadsBackForEverySignature) {
    std::mt19937 random(1);
    for (int i = 0; i < 20'000; ++i) {
        const InstanceName instance{static_cast<OSType>(random()),
                                    static_cast<std::int32_t>(random() >> 1U) | 1};
        const std::string name = busNameOf(instance);
        ASSERT_TRUE(g_dbus_is_name(name.c_str())) << name;
        ASSERT_EQ(parseInstanceName(name), instance) << name;
    }
}

TEST(ABusName, IsReadOnlyInItsOneSpelling) {
    const std::string beginning = "org.glyphora.AppleEvents1.";
    for (const char* end :
         {"QGLY", "QGLY.instance", "QGLY.instance0", "QGLY.instance007", "QGLY.instance-7",
          "QGLY.instance7x", "QGLY.instance7.more", "QGLY.instance99999999999", "QGL.instance7",
          "QGLYX.instance7", "_51GLY.instance7", "QGL_5F.instance7", "QGL_.instance7",
          "QGL_g0.instance7"}) {
        EXPECT_EQ(parseInstanceName(beginning + end), std::nullopt) << end;
    }
    for (const char* name : {"", "org.glyphora.AppleEvents2.QGLY.instance7",
                             "xorg.glyphora.AppleEvents1.QGLY.instance7"}) {
        EXPECT_EQ(parseInstanceName(name), std::nullopt) << name;
    }
}

} // namespace
