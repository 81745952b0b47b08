// SPDX-License-Identifier: MIT
// Bus names: legal for every signature, readable back, and nothing else accepted.
#include "platform/linux/busnames.h"

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <random>

namespace {

using platform::busNameOf;
using platform::InstanceName;
using platform::parseInstanceName;

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
