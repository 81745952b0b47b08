// SPDX-License-Identifier: MIT
// The built module: what it exports, and that its object survives when its code is unmapped and
// mapped again at another address.
#include "tests/support/scriptedhost/scriptedhost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <dlfcn.h>
#include <elf.h>
#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

const char* const kModule = GLYPHORA_MODULE;

/// Reads `T` from a place in a file's bytes; the file must hold it.
template <typename T>
T readAt(const std::vector<char>& file, std::size_t offset) {
    T value{};
    if (offset + sizeof value > file.size()) {
        throw std::out_of_range("the module is cut off");
    }
    std::memcpy(&value, file.data() + offset, sizeof value);
    return value;
}

/// The names of all defined dynamic symbols, whatever their binding and type.
std::vector<std::string> exportedSymbols(const char* path) {
    std::ifstream stream(path, std::ios::binary);
    const std::vector<char> file{std::istreambuf_iterator<char>(stream), {}};
    const auto header = readAt<ElfW(Ehdr)>(file, 0);
    std::vector<std::string> names;
    for (std::size_t i = 0; i < header.e_shnum; ++i) {
        const auto section = readAt<ElfW(Shdr)>(file, header.e_shoff + i * header.e_shentsize);
        if (section.sh_type != SHT_DYNSYM) {
            continue;
        }
        const auto strings = readAt<ElfW(Shdr)>(
            file, header.e_shoff + std::size_t{section.sh_link} * header.e_shentsize);
        for (std::size_t at = 0; at < section.sh_size; at += section.sh_entsize) {
            const auto symbol = readAt<ElfW(Sym)>(file, section.sh_offset + at);
            if (symbol.st_shndx != SHN_UNDEF) {
                names.emplace_back(file.data() + strings.sh_offset + symbol.st_name);
            }
        }
    }
    return names;
}

/// The module's code, mapped while this lives.
class Code {
public:
    Code() : library_(dlopen(kModule, RTLD_NOW | RTLD_LOCAL)) {
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
        void* const library = dlopen(kModule, RTLD_NOW | RTLD_NOLOAD);
        if (library != nullptr) {
            dlclose(library);
        }
        return library != nullptr;
    }

private:
    void* library_;
};

/// Occupies the pages at an address, if they are free, so that nothing else is mapped there.
class Occupied {
public:
    explicit Occupied(const char* address)
        : page_(mmap(const_cast<char*>(address), size(), PROT_NONE,
                     MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0)),
          holds_(page_ == address) {
        if (page_ != MAP_FAILED && !holds_) {
            munmap(page_, size());
        }
    }
    Occupied(const Occupied&) = delete;
    Occupied& operator=(const Occupied&) = delete;
    ~Occupied() {
        if (holds_) {
            munmap(page_, size());
        }
    }
    bool holds() const { return holds_; }

private:
    static std::size_t size() { return static_cast<std::size_t>(sysconf(_SC_PAGESIZE)); }

    void* page_;
    bool holds_;
};

TEST(TheModule, ExportsItsEntryPointAndNothingElse) {
    EXPECT_THAT(exportedSymbols(kModule), ElementsAre("PluginMain"));
}

TEST(TheModule, IsReallyUnmapped) {
    {
        const Code code;
        EXPECT_TRUE(Code::isMapped());
    }
    EXPECT_FALSE(Code::isMapped());
}

TEST(TheModule, WorksOnAtAnotherAddress) {
    scripted::Host host;
    const AIFontKey present = host.addFont("Present", "Regular", true);
    host.addLayer().addText({{present}});
    const char* oldBase = nullptr;
    {
        const Code code;
        oldBase = code.base();
        host.entry = code.entry();
        ASSERT_EQ(host.send("SP Interface", "Startup"), kNoErr);
        ASSERT_EQ(host.send("SP Access", "Unload"), kNoErr);
    }
    ASSERT_FALSE(Code::isMapped());
    ASSERT_THAT(host.acquired, IsEmpty());
    ASSERT_NE(host.globals, nullptr);
    {
        // The dispatch table that the object still points to is gone for good.
        const Occupied gap(oldBase);
        ASSERT_TRUE(gap.holds());
        const Code code;
        ASSERT_NE(code.base(), oldBase);
        host.entry = code.entry();
        EXPECT_EQ(host.send("SP Access", "Reload"), kNoErr);
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

TEST(TheModule, LeavesNothingBehindOverManyReloads) {
    scripted::Host host;
    auto code = std::make_unique<Code>();
    host.entry = code->entry();
    ASSERT_EQ(host.send("SP Interface", "Startup"), kNoErr);
    for (int i = 0; i < 20; ++i) {
        ASSERT_EQ(host.send("SP Access", "Unload"), kNoErr);
        code.reset();
        ASSERT_FALSE(Code::isMapped());
        code = std::make_unique<Code>();
        host.entry = code->entry();
        ASSERT_EQ(host.send("SP Access", "Reload"), kNoErr);
    }
    EXPECT_EQ(host.acquired.size(), 126U);
    EXPECT_EQ(host.send("SP Interface", "Shutdown"), kNoErr);
    EXPECT_THAT(host.acquired, IsEmpty());
    EXPECT_EQ(host.notifiers.size(), 4U); // registered once, kept by the host
}

} // namespace
