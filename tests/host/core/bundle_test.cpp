// SPDX-License-Identifier: MIT
// Real bundles: finding, loading, unloading and loading them again.
#include "recordingfrontend.h"
#include "tests/support/temporaryfolder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace host::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;

fs::path bundle(const std::string& name) {
    return fs::path(TEST_BUNDLES) / (name + ".aip");
}

/// Whether the kernel has any of a module's code in this process.
bool isInMemory(const fs::path& module) {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        if (line.ends_with(module.string())) {
            return true;
        }
    }
    return false;
}

class ABundle : public testing::Test {
protected:
    std::string failureOf(const fs::path& folder) {
        try {
            core.load(folder).startUp();
        } catch (const PluginError& problem) {
            return problem.what();
        }
        return {};
    }
    fs::path makeFolder(const std::string& name, const std::vector<std::string>& modules) {
        fs::create_directories(folder_ / (name + "/Contents/Linux"));
        for (const std::string& module : modules) {
            folder_.write(name + "/Contents/Linux/" + module, "not code");
        }
        return folder_ / name;
    }

    RecordingFrontend frontend;
    Core core{frontend};

private:
    testsupport::TemporaryFolder folder_;
};

TEST_F(ABundle, ThatCannotBeLoadedSaysWhy) {
    const fs::path none = fs::path(testing::TempDir()) / "no-such.aip";
    EXPECT_THAT(failureOf(none), HasSubstr(none.string() + ": not a plug-in bundle"));
    EXPECT_THAT(failureOf(makeFolder("empty.aip", {})), HasSubstr("holds 0 modules"));
    EXPECT_THAT(failureOf(makeFolder("two.aip", {"a.so", "b.so", "c.txt"})),
                HasSubstr("holds 2 modules"));
    EXPECT_THAT(failureOf(makeFolder("text.aip", {"a.so"})), HasSubstr("a.so: cannot be loaded"));
    EXPECT_THAT(failureOf(bundle("noentry")),
                HasSubstr("noentry.so: has no entry point PluginMain"));
    EXPECT_THAT(core.plugins(), IsEmpty());
    EXPECT_FALSE(isInMemory(bundle("noentry") / "Contents/Linux/noentry.so"));
}

TEST_F(ABundle, WorksFromStartUpToShutDown) {
    Plugin& plugin = core.load(bundle("wellbehaved") / "");
    EXPECT_EQ(plugin.name(), "wellbehaved");
    plugin.startUp();
    EXPECT_EQ(core.notify(kAIDocumentOpenedNotifier), kNoErr);
    EXPECT_EQ(plugin.shutDown(), kNoErr);
    EXPECT_EQ(plugin.shutDown(), kNotRunningErr);
    core.notify(kAIDocumentOpenedNotifier);
    ASSERT_EQ(frontend.alerts.size(), 1U);
    EXPECT_EQ(frontend.alerts[0].text, "Good day 1");
    EXPECT_THAT(frontend.misbehaviour, IsEmpty());
    EXPECT_THAT(frontend.errors, IsEmpty());
}

TEST_F(ABundle, IsReallyUnmappedAndMappedAgainWhileItsObjectStays) {
    Plugin& plugin = core.load(bundle("wellbehaved"));
    plugin.startUp();
    core.notify(kAIDocumentOpenedNotifier);
    void* const object = plugin.globals();
    const fs::path module = Bundle::open(bundle("wellbehaved")).module;
    ASSERT_NE(object, nullptr);
    ASSERT_TRUE(Module::isMapped(module));
    ASSERT_TRUE(isInMemory(module));

    ASSERT_TRUE(plugin.unload());
    EXPECT_FALSE(Module::isMapped(module));
    EXPECT_FALSE(isInMemory(module));
    EXPECT_EQ(plugin.globals(), object);
    EXPECT_FALSE(plugin.unload());

    EXPECT_EQ(plugin.reload(), kNoErr);
    EXPECT_TRUE(isInMemory(module));
    EXPECT_EQ(plugin.globals(), object);
    core.notify(kAIDocumentOpenedNotifier);
    EXPECT_EQ(frontend.alerts.back().text, "Good day 2");
    plugin.shutDown();
    EXPECT_FALSE(isInMemory(module));
    EXPECT_THAT(frontend.misbehaviour, IsEmpty());
}

TEST_F(ABundle, ThatIsUnloadedIsStillShutDown) {
    Plugin& plugin = core.load(bundle("wellbehaved"));
    plugin.startUp();
    ASSERT_TRUE(plugin.unload());
    core.shutDownAll();
    EXPECT_EQ(plugin.state(), PluginState::Ended);
    EXPECT_EQ(plugin.globals(), nullptr) << "its object is freed";
    EXPECT_THAT(frontend.errors, IsEmpty());
}

TEST_F(ABundle, StaysLoadedWhileItIsUsed) {
    Plugin& plugin = core.load(bundle("wellbehaved"));
    plugin.startUp();
    const SPBasicSuite& basic = Core::basicSuite();
    SPAccessRef use = nullptr;
    const SPAccessSuite* access = nullptr;
    {
        const Core::ServeScope serving(core, &plugin);
        EXPECT_FALSE(plugin.unload()) << "it is being called";
        const void* table = nullptr;
        basic.AcquireSuite("SP Access Suite", 3, &table);
        access = static_cast<const SPAccessSuite*>(table);
        EXPECT_EQ(access->AcquirePlugin(plugin.ref(), &use), kNoErr);
    }
    EXPECT_FALSE(plugin.unload());
    {
        const Core::ServeScope serving(core, &plugin);
        EXPECT_EQ(access->ReleasePlugin(use), kNoErr);
        EXPECT_EQ(access->ReleasePlugin(use), kBadParameterErr);
        basic.ReleaseSuite("SP Access Suite", 3);
    }
    EXPECT_TRUE(plugin.unload());
}

} // namespace
} // namespace host::test
