// SPDX-License-Identifier: MIT
// Texts, desktop entries by identifier, and starting what they name.
#include "platform/launchservices.h"
#include "platform/processes.h"
#include "system/translation.h"
#include "tests/support/privatebus/privatebus.h"
#include "tests/support/temporaryfolder.h"

#include <gio/gio.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using testsupport::TemporaryFolder;
using testsupport::Variable;

struct Release {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};
using Text = std::unique_ptr<const PLString, Release>;
using Url = std::unique_ptr<const PLUrl, Release>;

Text textOf(const std::string& bytes, CFStringEncoding encoding = kCFStringEncodingMacRoman) {
    return Text(CFStringCreateWithCString(nullptr, bytes.c_str(), encoding));
}

std::string bytesOf(const Text& text, CFStringEncoding encoding, long size = 4096) {
    std::string buffer(static_cast<std::size_t>(size), '?');
    return CFStringGetCString(text.get(), buffer.data(), size, encoding) ? buffer.c_str() : "none";
}

TEST(AText, HoldsEveryMacRomanByte) {
    std::string macRoman;
    for (int byte = 1; byte < 256; ++byte) {
        macRoman += static_cast<char>(byte);
    }
    // The C library's table is the measure, but for two characters: the increment is not the Greek
    // letter, and the logo has its own place in the private area.
    char* converted = g_convert(macRoman.data(), static_cast<gssize>(macRoman.size()), "UTF-8",
                                "MACINTOSH", nullptr, nullptr, nullptr);
    ASSERT_NE(converted, nullptr);
    std::string utf8 = converted;
    g_free(converted);
    for (const auto& [theirs, ours] : std::vector<std::pair<std::string, std::string>>{
             {"\xCE\x94", "\xE2\x88\x86"}, {"\xEE\x80\x9E", "\xEF\xA3\xBF"}}) {
        const auto at = utf8.find(theirs);
        ASSERT_NE(at, std::string::npos);
        utf8.replace(at, theirs.size(), ours);
    }
    const Text text = textOf(macRoman);
    EXPECT_EQ(bytesOf(text, kCFStringEncodingUTF8), utf8);
    EXPECT_EQ(bytesOf(text, kCFStringEncodingMacRoman), macRoman);
}

TEST(AText, IsRefusedWhereItDoesNotFit) {
    EXPECT_EQ(textOf("\xC3\x28", kCFStringEncodingUTF8), nullptr) << "broken UTF-8";
    EXPECT_EQ(textOf("x", 7), nullptr) << "unknown encoding";
    const Text text = textOf("1 \xE2\x82\xAC", kCFStringEncodingUTF8);
    EXPECT_EQ(bytesOf(text, kCFStringEncodingUTF8, 6), "1 \xE2\x82\xAC");
    EXPECT_EQ(bytesOf(text, kCFStringEncodingUTF8, 5), "none");
    EXPECT_EQ(bytesOf(textOf("\xD0\xB6", kCFStringEncodingUTF8), kCFStringEncodingMacRoman), "none")
        << "no Cyrillic in MacRoman";
}

constexpr const char* desktopIdentifier = "org.glyphora.test.Launcher3";
constexpr const char* testFile = "applications/org.glyphora.test.Launcher3.desktop";

std::string entry(const std::string& lines) {
    return "[Desktop Entry]\nType=Application\nName=The Launcher\n" + lines + "\n";
}

class ADesktopEntry : public testing::Test {
protected:
    static std::string find(const std::string& identifier = desktopIdentifier) {
        FSRef ref;
        CFURLRef url = nullptr;
        const OSStatus status = LSFindApplicationForInfo(
            kLSUnknownCreator, textOf(identifier).get(), nullptr, &ref, &url);
        if (status != noErr) {
            return "error " + std::to_string(status);
        }
        const Url owned(url);
        FSRef fromUrl;
        EXPECT_TRUE(CFURLGetFSRef(url, &fromUrl));
        std::array<unsigned char, 2049> path{};
        EXPECT_EQ(FSRefMakePath(&fromUrl, path.data(), 2048), noErr);
        EXPECT_STREQ(reinterpret_cast<const char*>(path.data()), ref.path);
        return ref.path;
    }
    static OSErr launch(const std::string& path) {
        FSSpec spec;
        std::strcpy(spec.path, path.c_str());
        LaunchParamBlockRec block;
        block.launchBlockID = extendedBlock;
        block.launchEPBLength = extendedBlockLen;
        block.launchAppSpec = &spec;
        return LaunchApplication(&block);
    }
    TemporaryFolder folder;
    Variable home{"XDG_DATA_HOME", (folder / "home").string()};
    Variable system{"XDG_DATA_DIRS",
                    (folder / "a").string() + ":relative:" + (folder / "b").string()};
};

const std::string notFound = "error -10814";

TEST_F(ADesktopEntry, IsFoundInTheFoldersOfTheMoment) {
    EXPECT_EQ(find(), notFound);
    const std::string inB = folder.write(std::string("b/") + testFile, entry("Exec=true"));
    EXPECT_EQ(find(), inB) << "made after the first look";
    const std::string inA = folder.write(std::string("a/") + testFile, entry("Exec=true"));
    EXPECT_EQ(find(), inA);
    const std::string atHome =
        folder.write(std::string("home/") + testFile, entry("Exec=true\nNoDisplay=true"));
    EXPECT_EQ(find(), atHome);
    home.set((folder / "elsewhere").string());
    system.set((folder / "b").string());
    EXPECT_EQ(find(), inB);
}

TEST_F(ADesktopEntry, CountsOnlyWhenItCanBeStarted) {
    for (const char* lines :
         {"Exec=true\nHidden=true", "Exec=true\nTryExec=/nonexistent/program",
          "Exec=/nonexistent/program", "Exec=\"unbalanced", "Comment=No Exec"}) {
        const std::string path = folder.write(std::string("home/") + testFile, entry(lines));
        EXPECT_EQ(find(), notFound) << lines;
        EXPECT_EQ(launch(path), fnfErr) << lines;
    }
    folder.write(std::string("home/") + testFile, "\x7F"
                                                  "ELF no entry at all");
    EXPECT_EQ(find(), notFound);
    folder.write("home/applications/sub/evil.desktop", entry("Exec=true"));
    for (const char* identifier : {"", "sub/evil", "../applications/sub/evil"}) {
        EXPECT_EQ(find(identifier), notFound) << identifier;
    }
}

TEST_F(ADesktopEntry, ChecksArguments) {
    const Text text = textOf(desktopIdentifier);
    EXPECT_EQ(LSFindApplicationForInfo(FourCharCode("QGLY"), text.get(), nullptr, nullptr, nullptr),
              paramErr);
    EXPECT_EQ(LSFindApplicationForInfo(kLSUnknownCreator, nullptr, nullptr, nullptr, nullptr),
              paramErr);
    FSRef ref;
    unsigned char path[8];
    EXPECT_EQ(FSRefMakePath(&ref, path, sizeof path), paramErr);
    std::strcpy(ref.path, "/missing");
    EXPECT_EQ(FSRefMakePath(&ref, path, sizeof path), paramErr) << "one byte short";
    EXPECT_EQ(FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr), fnfErr);
    EXPECT_FALSE(CFURLGetFSRef(nullptr, &ref));
    LaunchParamBlockRec block;
    EXPECT_EQ(LaunchApplication(nullptr), paramErr);
    EXPECT_EQ(LaunchApplication(&block), paramErr);
    EXPECT_EQ(launch("/missing.desktop"), fnfErr);
}

TEST_F(ADesktopEntry, StartsItsProgramApartFromThisProcess) {
    const testsupport::PrivateBus bus;
    ProcessSerialNumber psn;
    EXPECT_EQ(GetNextProcess(&psn), procNotFound) << "the connection is open now";

    const std::string pipe = (folder / "pipe").string();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string script = folder.write("show", R"sh(#!/bin/sh
for fd in /proc/$$/fd/*; do
  [ "${fd##*/}" -gt 2 ] && open="$open $(readlink $fd)"
done
exec >"${0%/*}/pipe"
printf 'word %s\n' "$@"
printf '%s\n' "bus $DBUS_SESSION_BUS_ADDRESS" "language ${LANGUAGE-none}" "folder $(pwd -P)" "parent $PPID" "open $open"
)sh");
    chmod(script.c_str(), 0700);
    std::filesystem::create_directory(folder / "work");
    const std::string path =
        folder.write(std::string("home/") + testFile,
                     entry("Exec=\"" + script +
                           "\" --flag %U \"two words\" %i %c %% x%fy %k\nIcon=glyph\nPath=" +
                           (folder / "work").string()));
    ASSERT_EQ(find(), path);
    const testsupport::Variable language("LANGUAGE", "fr:de");
    sys::chooseLanguage("any", "share/locale", "de_DE");
    ASSERT_EQ(launch(path), noErr);

    std::ifstream told(pipe);
    std::vector<std::string> lines;
    for (std::string line; std::getline(told, line);) {
        lines.push_back(line);
    }
    const std::string noReaping = "parent " + std::to_string(getpid());
    EXPECT_THAT(lines, ElementsAre("word --flag", "word two words", "word --icon", "word glyph",
                                   "word The Launcher", "word %", "word xy", "word " + path,
                                   "bus " + bus.address(), "language fr:de",
                                   "folder " + std::filesystem::canonical(folder / "work").string(),
                                   AllOf(StartsWith("parent "), Not(noReaping)),
                                   AllOf(StartsWith("open "), Not(HasSubstr("socket")),
                                         Not(HasSubstr("anon_inode")))));
}

} // namespace
