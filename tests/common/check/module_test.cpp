// SPDX-License-Identifier: MIT
// The built module: what it exports, and that its object survives when its code is unmapped and
// mapped again at another address.
#include "system/descriptor.h"
#include "tests/support/scriptedhost/scriptedhost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <dlfcn.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

const char* const modulePath = GLYPHORA_MODULE;

/// The names of all defined dynamic symbols, whatever their binding and type.
std::vector<std::string> exportedSymbols(const std::string& path) {
    const std::string command = "nm --dynamic --defined-only --format=just-symbols '" + path + "'";
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> names(popen(command.c_str(), "r"),
                                                                pclose);
    std::vector<std::string> symbols;
    char line[256];
    while (names && std::fgets(line, sizeof line, names.get()) != nullptr) {
        symbols.emplace_back(line, std::strcspn(line, "\n"));
    }
    return symbols;
}

/// The module's code, mapped while this lives.
class Code {
public:
    explicit Code(const std::string& path = modulePath)
        : library_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
        EXPECT_NE(library_, nullptr) << dlerror();
    }
    Code(const Code&) = delete;
    Code& operator=(const Code&) = delete;
    ~Code() { dlclose(library_); }

    SPEntryProc entry() const {
        return reinterpret_cast<SPEntryProc>(dlsym(library_, kSPEntryName));
    }
    const char* base() const {
        Dl_info info{};
        EXPECT_NE(dladdr(reinterpret_cast<void*>(entry()), &info), 0);
        return static_cast<const char*>(info.dli_fbase);
    }
    static bool isMapped() {
        void* const library = dlopen(modulePath, RTLD_NOW | RTLD_NOLOAD);
        if (library != nullptr) {
            dlclose(library);
        }
        return library != nullptr;
    }

private:
    void* library_;
};

/// The module's file once more, in memory: the loader takes it for another one.
class Copy {
public:
    Copy() : file_(memfd_create("module", MFD_CLOEXEC)) {
        std::ifstream original(modulePath, std::ios::binary);
        std::ofstream(path(), std::ios::binary) << original.rdbuf();
    }
    std::string path() const { return "/proc/self/fd/" + std::to_string(file_.get()); }

private:
    sys::Descriptor file_;
};

TEST(TheModule, ExportsItsEntryPointAndNothingElse) {
    EXPECT_THAT(exportedSymbols(modulePath), ElementsAre("PluginMain"));
}

TEST(TheModule, WorksOnAtAnotherAddress) {
    scripted::Host host;
    const AIFontKey present = host.addFont("Present", "Regular", true);
    host.addLayer().addText({{present}});
    {
        auto oldCode = std::make_unique<Code>();
        host.entry = oldCode->entry();
        ASSERT_EQ(host.send("SP Interface", "Startup"), kNoErr);
        ASSERT_EQ(host.send("SP Access", "Unload"), kNoErr);
        ASSERT_THAT(host.acquired, IsEmpty());
        ASSERT_NE(host.globals, nullptr);
        // Mapped while the old code still is, so elsewhere. The dispatch table that the object
        // still points to is gone with the old.
        const Copy copy;
        const Code code(copy.path());
        ASSERT_NE(code.base(), oldCode->base());
        oldCode.reset();
        ASSERT_FALSE(Code::isMapped());
        host.entry = code.entry();
        EXPECT_EQ(host.send("SP Access", "Reload"), kNoErr);
        EXPECT_EQ(host.notifiers.size(), 4U); // registered once, kept by the host
        host.calls.clear();
        EXPECT_EQ(host.notify(host.notifierOf("AI Document Opened Notifier")), kNoErr);
        EXPECT_EQ(host.callsOf("GetFontFamilyName"), 1);
        CaptureStdout();
        EXPECT_EQ(host.notify(host.notifierOf("AI Document Changed Notifier")), kNoErr);
        std::fflush(stdout);
        EXPECT_EQ(GetCapturedStdout(), "doc changed notifier\n");
        EXPECT_EQ(host.send("SP Interface", "Shutdown"), kNoErr);
    }
    EXPECT_FALSE(Code::isMapped());
    EXPECT_THAT(host.acquired, IsEmpty());
    EXPECT_EQ(host.text.liveReferences(), 0);
    EXPECT_THAT(host.misuse, IsEmpty());
}

} // namespace
