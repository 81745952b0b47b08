// SPDX-License-Identifier: MIT
// Fonts that are brought into the library in archives, hostile ones among them.
#include "manager/cli/archivenames.h"
#include "manager/cli/archivereader.h"
#include "manager/cli/bringing.h"
#include "manager/cli/tally.h"
#include "manager/library/cancel.h"
#include "manager/library/folders.h"
#include "tests/manager/archives.h"
#include "tests/manager/sandbox.h"
#include "tests/support/fontmaker.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace manager;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace managertest {

namespace {

TEST(AnEntrysName, TellsWhatItIsAndWhereItIsToLie) {
    struct Case {
        std::string name;
        EntryKind kind;
        std::string path;
        std::string problem;
    };
    const std::string deep = [] {
        std::string path;
        for (int i = 0; i < 60; ++i) {
            path += "d/";
        }
        return path + "a.ttf";
    }();
    const std::vector<Case> cases = {
        {"a.TTF", EntryKind::Font, "a.TTF", ""},
        {"./x//y/./a.otf", EntryKind::Font, "x/y/a.otf", ""},
        {"x\\y\\a.ttc", EntryKind::Font, "x/y/a.ttc", ""},
        {"a..b/..c.ttf/d.pfb", EntryKind::Font, "", "hidden"},
        {"a..b/c...ttf", EntryKind::Font, "a..b/c...ttf", ""},
        {"K\xC3\xB6ln/\xFF.ttf", EntryKind::Font, "K\xC3\xB6ln/\xFF.ttf", ""},
        {"../a.ttf", EntryKind::Font, "", "\"..\""},
        {"x/../../a.ttf", EntryKind::Font, "", "\"..\""},
        {"x\\..\\a.ttf", EntryKind::Font, "", "\"..\""},
        {"/etc/a.ttf", EntryKind::Font, "", "absolute"},
        {"\\\\server\\a.ttf", EntryKind::Font, "", "absolute"},
        {"C:\\a.ttf", EntryKind::Font, "", "absolute"},
        {".a.ttf", EntryKind::Font, "", "hidden"},
        {"x/.y/OFL.txt", EntryKind::Text, "", "hidden"},
        {deep, EntryKind::Font, "", "folders deep"},
        {std::string(256, 'a') + "/b.ttf", EntryKind::Font, "", "too long"},
        {"ofl.TXT", EntryKind::Text, "ofl.TXT", ""},
        {"x/LICENCE", EntryKind::Text, "x/LICENCE", ""},
        {"README-Mac.md", EntryKind::Text, "README-Mac.md", ""},
        {"license.exe", EntryKind::Other, "", ""},
        {"unlicensed.txt", EntryKind::Other, "", ""},
        {"x/SIL Open Font License.txt", EntryKind::Text, "x/SIL Open Font License.txt", ""},
        {"proofl_OFL-1.1.txt", EntryKind::Text, "proofl_OFL-1.1.txt", ""},
        {"a.ttf/", EntryKind::Font, "a.ttf", ""},
        {"x/more.zip", EntryKind::Archive, "x/more.zip", ""},
        {"a.ttf.gz", EntryKind::Archive, "a.ttf.gz", ""},
        {"__MACOSX/x/a.ttf", EntryKind::Other, "", ""},
        {"x/._a.ttf", EntryKind::Other, "", ""},
        {"..", EntryKind::Other, "", ""},
        {"", EntryKind::Other, "", ""},
    };
    for (const auto& [name, kind, path, problem] : cases) {
        const EntryPlace place = placeOf(name);
        EXPECT_EQ(place.kind, kind) << name;
        EXPECT_EQ(place.path, path) << name;
        EXPECT_THAT(place.problem, HasSubstr(problem)) << name;
        EXPECT_EQ(place.problem.empty(), problem.empty()) << name;
    }
    for (const auto& [archive, folder] : std::vector<std::pair<std::string, std::string>>{
             {"/x/Inter-4.0.zip", "Inter-4.0"},
             {"lato.v2.TAR.GZ", "lato.v2"},
             {"/x.y/.zip", "_"},
             {".fonts.7z", "_.fonts"},
             {std::string(250, 'x') + ".zip", std::string(200, 'x')}}) {
        EXPECT_EQ(folderNameOf(archive), folder);
        EXPECT_TRUE(hasArchiveName(archive));
    }
    EXPECT_FALSE(hasArchiveName("zip"));
}

std::string font(const std::string& name) {
    return testsupport::makeFont({name, "Regular", name});
}

class BroughtArchive : public testing::TestWithParam<const char*> {
protected:
    [[nodiscard]] std::string path(const std::string& name) const {
        return sandbox_.root() + "/" + name;
    }
    /// What is told of these that are brought.
    nlohmann::ordered_json bring(const std::vector<std::string>& files) {
        testing::internal::CaptureStdout();
        Tally tally(true, "added");
        bringFiles(sandbox_.places(), files, tally);
        status_ = tally.finish();
        return nlohmann::ordered_json::parse(testing::internal::GetCapturedStdout());
    }
    /// All files that lie in the library's own folder.
    [[nodiscard]] std::vector<std::string> files() const {
        std::vector<std::string> found;
        const std::string folder = sandbox_.places().singleFonts();
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
            if (!entry.is_directory()) {
                found.push_back(std::filesystem::relative(entry.path(), folder).string());
            }
        }
        return found;
    }
    static std::string problems(const nlohmann::ordered_json& told) {
        return told["problems"].dump();
    }

    Sandbox sandbox_;
    int status_ = 0;
};
using AnArchive = BroughtArchive;

TEST_P(AnArchive, IsTakenOnceAndWholeOrNotAtAll) {
    const std::string archive = path(std::string("Two.v1") + GetParam());
    makeArchive(archive, {{"two/ttf/One.ttf", font("One")},
                          {"two/otf/One.ttf", font("Other")},
                          {"two/OFL.txt", "a licence"},
                          {"two/specimen.html", "not wanted"}});
    const std::string whole = readBytes(archive);
    for (std::size_t part = 1; part < 32; ++part) {
        writeBytes(archive, std::string_view(whole).substr(0, whole.size() * part / 32));
        if (bring({archive})["added"].empty()) {
            EXPECT_EQ(status_, 1);
        } else { // what is behind the end of a tape archive does not matter
            EXPECT_STREQ(GetParam(), ".tar") << part;
            break;
        }
        EXPECT_THAT(files(), IsEmpty());
        EXPECT_THAT(readFolders(sandbox_.places()), IsEmpty());
    }
    writeBytes(archive, whole);
    const auto all = UnorderedElementsAre("Two.v1/two/ttf/One.ttf", "Two.v1/two/otf/One.ttf",
                                          "Two.v1/two/OFL.txt");
    std::filesystem::copy_file(archive, path("again.zip")); // known by what is in it
    makeArchive(path("mixed.zip"), {{"a.ttf", font("Other")}, {"b.ttf", font("New")}});
    const auto told = bring({archive, path("again.zip"), path("mixed.zip")});
    std::filesystem::remove_all(sandbox_.places().singleFonts() + "/mixed");
    EXPECT_THAT(files(), all);
    EXPECT_THAT(problems(told), HasSubstr("its 2 fonts are in the library already, as " +
                                          sandbox_.places().singleFonts() + "/Two.v1/"));
    EXPECT_THAT(problems(told), HasSubstr("mixed.zip: 1 of its 2 fonts is in the library already"));
    EXPECT_EQ(readBytes(sandbox_.places().singleFonts() + "/Two.v1/two/otf/One.ttf"),
              font("Other"));
    EXPECT_THAT(readFolders(sandbox_.places()), ElementsAre(sandbox_.places().singleFonts()));
    bring({archive}); // which no scan has seen
    EXPECT_EQ(status_, 0);
    EXPECT_THAT(files(), all);
    makeArchive(archive, {{"two/ttf/One.ttf", font("Newer")}, {"more/One.ttf", font("One")}});
    EXPECT_EQ(bring({archive})["added"][0]["files"], 2);
    EXPECT_THAT(files(), testing::Contains("Two.v1 (2)/two/ttf/One.ttf"));
}

INSTANTIATE_TEST_SUITE_P(Of, AnArchive,
                         testing::Values(".zip", ".7z", ".tar", ".tgz", ".tar.xz", ".tar.bz2",
                                         ".tar.zst"),
                         [](const auto& form) {
                             std::string name(form.param + 1);
                             std::replace(name.begin(), name.end(), '.', '_');
                             return name;
                         });

TEST_F(BroughtArchive, WritesNothingOutsideItsFolder) {
    makeArchive(path("evil.tar"), {{"../../out.ttf", font("A")},
                                   {"/tmp/../abs.ttf", font("B")},
                                   {"link.ttf", "", "/etc/passwd"},
                                   {"folder", "", "/tmp"},
                                   {"folder/in.ttf", font("C")},
                                   {"hard.ttf", "", "", "/etc/passwd"},
                                   {"inner.zip", "PK"},
                                   {"twice.ttf", font("D")},
                                   {"twice.ttf", font("E")},
                                   {"twice.ttf/f.ttf", font("F")},
                                   {"broken.otf", "OTTO"}});
    const auto told = bring({path("evil.tar")});
    EXPECT_THAT(files(), UnorderedElementsAre("evil/folder/in.ttf", "evil/twice.ttf"));
    EXPECT_EQ(readBytes(sandbox_.places().singleFonts() + "/evil/twice.ttf"), font("D"));
    EXPECT_EQ(told["added"][0]["files"], 2);
    EXPECT_EQ(status_, 3);
    for (const char* const problem :
         {"evil.tar: ../../out.ttf: passed over", "evil.tar: /tmp/../abs.ttf: passed over",
          "evil.tar: link.ttf: passed over: it is a link", "hard.ttf: passed over: it is a link",
          "inner.zip: passed over: archives in archives", "twice.ttf: passed over: another entry",
          "twice.ttf/f.ttf: passed over: another entry", "evil.tar: broken.otf: "}) {
        EXPECT_THAT(problems(told), HasSubstr(problem));
    }
}

TEST_F(BroughtArchive, IsRefusedWhenItIsEncryptedOrNoneOrHasNoFonts) {
    makeArchive(path("secret.zip"), {{"a.ttf", font("A")}}, "password");
    makeArchive(path("empty.zip"), {{"README", "no fonts"}});
    writeBytes(path("none.7z"), "something else");
    makeArchive(path("good.zip"), {{"b.ttf", font("B")}});
    makeArchive(path("cut.tar"), {{"c.ttf", font("C")}, {"d.ttf", font("D")}});
    const std::string tape = readBytes(path("cut.tar"));
    const std::size_t blocks = tape.find_last_not_of('\0') / 512 + 1;
    writeBytes(path("cut.tar"), tape.substr(0, blocks * 512)); // both are whole
    const auto told = bring({path("secret.zip"), path("empty.zip"), path("none.7z"),
                             path("cut.tar"), path("good.zip")});
    EXPECT_THAT(files(), ElementsAre("good/b.ttf")) << "each costs only itself";
    EXPECT_THAT(problems(told), HasSubstr("secret.zip: a.ttf: encrypted; nothing of it was added"));
    EXPECT_THAT(problems(told), HasSubstr("empty.zip: there is no font file in it"));
    EXPECT_THAT(problems(told), HasSubstr("none.7z: no archive that is whole"));
    EXPECT_THAT(problems(told), HasSubstr("cut.tar: no archive that is whole: its end is missing"));
}

TEST_F(BroughtArchive, IsRefusedBeyondItsLimits) {
    makeArchive(path("a.zip"),
                {{"1.ttf", std::string(200'000, '\0')}, {"2.ttf", std::string(200'000, '\0')}});
    struct Case {
        ArchiveLimits limits;
        std::string problem;
    };
    for (const auto& [limits, problem] : std::vector<Case>{
             {{.entries = 1}, "a.zip: more than 1 entries"},
             {{.fileBytes = 199'999}, "a.zip: 1.ttf: larger than it may be"},
             {{.bytes = 300'000}, "a.zip: 2.ttf: the files are larger than 300000 bytes"},
             {{.freeBytes = 100'000}, "a.zip: 1.ttf: the files are more than 200 times as large"},
             {{.ratio = 100'000, .freeBytes = 0}, ""},
             {{.entries = 2, .fileBytes = 200'000, .bytes = 400'000}, ""}}) {
        std::string told;
        std::size_t bytes = 0;
        try {
            readArchive(path("a.zip"),
                        {.begin = [](const auto&) {},
                         .take = [&](std::string_view part) { bytes += part.size(); },
                         .passOver = [](const auto&, const auto&) {}},
                        limits);
            EXPECT_EQ(bytes, 400'000);
        } catch (const Error& error) {
            told = error.what();
        }
        EXPECT_THAT(told, HasSubstr(problem));
        EXPECT_EQ(told.empty(), problem.empty()) << told;
    }
}

TEST_F(BroughtArchive, IsNotTakenOnceItIsCancelled) {
    const CancelBySignals cancel;
    sandbox_.write("lone.ttf", font("Lone"));
    makeArchive(path("a.zip"), {{"a.ttf", font("A")}, {"b.ttf", font("B")}});
    EXPECT_THROW(readArchive(path("a.zip"), {.begin = [](const auto&) { std::raise(SIGTERM); },
                                             .take = [](std::string_view) {},
                                             .passOver = [](const auto&, const auto&) {}}),
                 Cancelled);
    const auto told = bring({sandbox_.library() + "/lone.ttf", path("a.zip")});
    EXPECT_THAT(problems(told), HasSubstr("cancelled"));
    EXPECT_THAT(files(), IsEmpty());
    EXPECT_EQ(status_, 1);
}

} // namespace

} // namespace managertest
