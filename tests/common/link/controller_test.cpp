// SPDX-License-Identifier: MIT
// Finding and launching the font manager, and its version texts.
#include "GLYController.h"
#include "platform/launchservices.h"
#include "tests/support/scriptedplatform/scriptedplatform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

using GLY::GLYController;
using Texts = std::vector<std::string>;

namespace {

constexpr OSType other = FourCharCode("OTHR");

class TheFontManager : public testing::Test {
protected:
    ~TheFontManager() override { EXPECT_EQ(platform_.liveObjects, 0); }

    /// Makes the launcher number `number` (3, 2, 1) known.
    scripted::Application& install(int number) {
        const std::string suffix = number == 1 ? "" : std::to_string(number);
        scripted::Application& application =
            platform_.applications["org.glyphora.Glyphora.Launcher" + suffix];
        application.path = "/applications/launcher" + suffix;
        application.signature = GLY::glyphoraSignature;
        return application;
    }

    scripted::Platform platform_;
};

const Texts allLaunchers{"org.glyphora.Glyphora.Launcher3", "org.glyphora.Glyphora.Launcher2",
                         "org.glyphora.Glyphora.Launcher"};

} // namespace

TEST_F(TheFontManager, IsFoundAmongTheProcessesBySignature) {
    const scripted::Process manager{GLY::glyphoraSignature, 2, 0};
    for (const std::vector<scripted::Process>& processes :
         {std::vector<scripted::Process>{},
          {{other, 1, 0}, {other, 3, 0}},
          {{other, 1, 0}, manager, {other, 3, 0}}}) {
        platform_.processes = processes;
        const bool isThere = processes.size() == 3;
        ProcessInfoRec info;
        info.processID = 99;
        bool found = !isThere;
        EXPECT_EQ(GLYController::FindGlyphoraProcess(info, found), isThere ? noErr : procNotFound);
        EXPECT_EQ(found, isThere);
        EXPECT_EQ(info.processID, isThere ? 2 : 99);
    }
}

TEST_F(TheFontManager, IsNotLaunchedWhileItRuns) {
    install(3);
    platform_.processes = {{GLY::glyphoraSignature, 2, 0}};
    EXPECT_EQ(GLYController::LaunchGlyphora(), noErr);
    EXPECT_TRUE(platform_.lookUps.empty());
    EXPECT_TRUE(platform_.launches.empty());
}

TEST_F(TheFontManager, IsLaunchedInTheBackgroundByTheFirstLauncher) {
    install(3);
    install(2);
    EXPECT_EQ(GLYController::LaunchGlyphora(), noErr);
    EXPECT_EQ(platform_.lookUps, Texts{allLaunchers[0]});
    EXPECT_EQ(platform_.launchedPaths, Texts{"/applications/launcher3"});
    ASSERT_EQ(platform_.launches.size(), 1U);
    const LaunchParamBlockRec& block = platform_.launches[0];
    EXPECT_EQ(block.launchBlockID, 0x4C43);
    EXPECT_EQ(block.launchEPBLength, 32U);
    EXPECT_EQ(block.launchFileFlags, 0);
    EXPECT_EQ(block.launchControlFlags, 0x4A00);
    EXPECT_EQ(block.launchAppParameters, nullptr);
    EXPECT_EQ(platform_.shown, Texts{"/applications/launcher3"});
    EXPECT_EQ(platform_.encodings.front(), kCFStringEncodingMacRoman);
}

TEST_F(TheFontManager, IsLaunchedByAnOlderLauncherWhenANewerOneFails) {
    for (const auto& [name, spoil, launches] :
         std::vector<std::tuple<const char*, void (*)(scripted::Application&), std::size_t>>{
             {"look-up", [](auto& app) { app.lookUpStatus = fnfErr; }, 1},
             {"launch", [](auto& app) { app.launchStatus = memFullErr; }, 2},
             {"no location", [](auto& app) { app.givesUrl = false; }, 2},
             {"no file", [](auto& app) { app.catalogStatus = fnfErr; }, 2}}) {
        SCOPED_TRACE(name);
        spoil(install(3));
        install(2);
        platform_.lookUps.clear();
        platform_.launches.clear();
        platform_.processes.clear();
        EXPECT_EQ(GLYController::LaunchGlyphora(), noErr);
        EXPECT_EQ(platform_.lookUps, (Texts{allLaunchers[0], allLaunchers[1]}));
        EXPECT_EQ(platform_.launches.size(), launches);
        platform_.applications.clear();
    }
}

TEST_F(TheFontManager, GivesTheLastStatusWhenNoLauncherWorks) {
    EXPECT_EQ(GLYController::LaunchGlyphora(), kLSApplicationNotFoundErr);
    EXPECT_EQ(platform_.lookUps, allLaunchers);
    // The path is shown even of what was not found.
    EXPECT_EQ(platform_.shown, (Texts{"", "", ""}));

    install(3).launchStatus = memFullErr;
    install(2).lookUpStatus = paramErr;
    install(1).launchStatus = fnfErr;
    EXPECT_EQ(GLYController::LaunchGlyphora(), fnfErr);
}

TEST_F(TheFontManager, IsAwaitedForUpToFifteenSeconds) {
    for (const double startUpTime : {0.0, 14.99, 99.0}) {
        platform_.processes.clear();
        install(3).startUpTime = startUpTime;
        const double start = platform_.now;
        EXPECT_EQ(GLYController::LaunchGlyphora(), noErr);
        EXPECT_NEAR(platform_.now - start, std::min(startUpTime, 15.0), 0.01);
        EXPECT_TRUE(platform_.delays.empty());
    }
}

TEST(AVersion, IsSeparatedAtItsDots) {
    const std::tuple<std::string, bool, unsigned, unsigned> cases[] = {
        {"2", true, 2, 77},      {"2.0", true, 2, 0},     {"2.13", true, 2, 13},
        {"2.1.x.9", true, 2, 1}, {"2.1beta", true, 2, 1}, {"2.", false, 2, 0},
        {"2..5", false, 2, 0},   {".5", false, 0, 77},    {"x", false, 0, 77},
        {"", false, 0, 77}};
    for (const auto& [text, ok, expectedMajor, expectedMinor] : cases) {
        unsigned major = 77;
        unsigned minor = 77;
        EXPECT_EQ(GLYController::separateVersion(text, major, minor), ok) << text;
        EXPECT_EQ(major, expectedMajor) << text;
        EXPECT_EQ(minor, expectedMinor) << text;
    }
}

TEST(AVersion, SatisfiesANeedByBothNumbers) {
    // The minor number of 3.0 does not satisfy 2.5, on purpose.
    const std::tuple<std::string, unsigned, unsigned, bool> cases[] = {
        {"2.0", 2, 0, true},  {"2", 2, 0, true},    {"1.9", 2, 0, false},
        {"3.0", 2, 0, true},  {"3.0", 2, 5, false}, {"3.5", 2, 5, true},
        {"2.4", 2, 5, false}, {"", 0, 0, false},    {"2.x", 2, 0, false}};
    for (const auto& [text, major, minor, satisfied] : cases) {
        EXPECT_EQ(GLYController::checkForNeededProtocolVersion(text, major, minor), satisfied)
            << text;
    }
}

TEST(AVersion, ComparesByLengthFirst) {
    const Texts ascending{"", "0", "2.0", "2.1", "9.9", "10.0", "9.99", "a.00", "\xff.00"};
    for (std::size_t i = 1; i < ascending.size(); ++i) {
        EXPECT_EQ(GLYController::CompareGLYVersion(ascending[i - 1], ascending[i]), -1) << i;
        EXPECT_EQ(GLYController::CompareGLYVersion(ascending[i], ascending[i - 1]), 1) << i;
        EXPECT_EQ(GLYController::CompareGLYVersion(ascending[i], ascending[i]), 0) << i;
    }
}
