// SPDX-License-Identifier: MIT
// What a person's commands do and print, as text and as JSON.
#include "manager/activation/setrecord.h"
#include "tests/manager/programfixture.h"

#include <filesystem>
#include <nlohmann/json.hpp>

using namespace managertest;
using namespace testsupport;
using testing::HasSubstr;

namespace {

TEST_F(TheProgram, TellsItsStateAndDeedsAndWhatIsWrongWithACommand) {
    sandbox_.write("fonts/bad.otf", "bad");
    sandbox_.write("fonts/later.ttf", makeFont({"Lato & Co", "Bold", "Lato-Bold", true}));
    sandbox_.write("fonts/pair.ttc", makeCollection({{"Pair", "Regular", "Pair", true},
                                                     {"Pair", "Bold", "Pair-Bold", true}}));
    const Ending added = glyphora({"add", sandbox_.library()});
    EXPECT_THAT(added.output, HasSubstr("glyphora: " + sandbox_.library() + "/fonts/bad.otf: "));
    EXPECT_EQ(glyphora({"activate", "Lato-Bold"}).status, 0);
    serve();
    EXPECT_EQ(askFor("Lato-Bold", "isActive"), "1");

    const auto list = nlohmann::json::parse(glyphora({"list", "--json"}).output);
    EXPECT_EQ(list["folders"][0]["path"], sandbox_.library());
    EXPECT_EQ(list["folders"][0]["badFiles"], 1);
    EXPECT_EQ(list["containers"][0]["name"], "Lato & Co");
    EXPECT_EQ(list["containers"][0]["active"], true);
    const auto status = nlohmann::json::parse(glyphora({"status", "--json"}).output);
    EXPECT_EQ(status["server"], server_->process());
    EXPECT_EQ(status["active"][0]["id"], 1);
    EXPECT_THAT(glyphora({"history", "--all"}).output, HasSubstr("activated Lato & Co"));
    EXPECT_THAT(glyphora({"history"}).output, HasSubstr("fontRequest: 1 font"));
    const auto history = nlohmann::json::parse(glyphora({"history", "--json"}).output);
    EXPECT_EQ(history[0]["deed"], "started");
    EXPECT_EQ(history[1]["text"], "fontRequest: 1 font");
    EXPECT_THAT(std::string(history[1]["time"]), testing::MatchesRegex("[0-9-]+T[0-9:]+Z"));

    expectEach({
        {{}, 2, "glyphora: a command is missing; see glyphora --help\n"},
        {{"dance"}, 2, "unknown command 'dance'"},
        {{"--dance"}, 2, "unknown option '--dance'"},
        {{"add"}, 2, "required"},
        {{"tag", "add", "x"}, 2, "name containers, or give --from; see glyphora tag add --help"},
        {{"info", "Lato-Bold"}, 0, "(container 1, spare)\n"},
        {{"status", "[x]"}, 2, "unexpected word '[x]';"},
        {{"activate", "[A-C]*[12]"}, 1, "glyphora: [A-C]*[12]: no PostScript name or"},
        {{"activate", "{}"}, 1, "glyphora: {}: no container, "},
        {{"deactivate"}, 2, "name containers, or give --all; see glyphora deactivate --help"},
        {{"collect", "--to"}, 2, "--to: a value is missing"},
        {{"collection", "dance"}, 2, "unknown command 'dance'; see glyphora collection --help"},
        {{"list", "--problems", "--containers"}, 2, "--containers does not go with --problems"},
        {{"activate", "--for", "2", "x"}, 2, "--for: '2' is not a time such as 90s"},
        {{"activate", "--for", "2", "--json"}, 2, "--help\"\n  ]\n}"},
        {{"--help"}, 0, "font manager"},
        {{"add", sandbox_.root() + "/absent"}, 1, "/absent: cannot be added: No such file"},
        {{"remove", "/absent"}, 1, "/absent: not a folder of the library"},
        {{"activate", "Nobody"}, 1, "Nobody: no container"},
        {{"activate", "77"}, 1, "container 77: not in the library"},
        {{"deactivate", "77"}, 1, "container 77: is not active"},
        {{"deactivate", "Pair"}, 1, "Pair: no active container"},
        {{"activate", "--for", "2d", "Pair"}, 0, "activated pair.ttc (container 2, "},
        {{"deactivate", "2", "1", "PAIR", "lato & co"},
         0,
         "deactivated pair.ttc (container 2)\ndeactivated"},
        {{"activate", "folder:" + sandbox_.library() + "/fonts/"}, 0, "activated pair.ttc"},
        {{"deactivate", "folder:" + sandbox_.library()}, 0, "deactivated"},
        {{"deactivate", "folder:" + sandbox_.library()}, 0, "nothing is active"},
        {{"activate", "folder:/"}, 0, "activated"},
        {{"deactivate", "folder:/absent"}, 1, "glyphora: /absent: the library has no fonts there"},
        {{"deactivate", "--all"}, 0, "deactivated"},
        {{"serve", "x"}, 2, "x"},
        {{"activate", "2"}, 0, "activated"},
    });
    writeBytes(sandbox_.places().fonts() + "/2/.glyphora-set", "what?");
    expectEach({
        {{"deactivate", "--all"}, 0, "/2: is kept as "},
        {{"deactivate", "--all"}, 0, "nothing is active"},
    });
}

TEST_F(TheProgram, CopiesSingleFontFilesIntoTheLibraryOnce) {
    const std::string outside = sandbox_.root() + "/outside/";
    const auto write = [&](const std::string& name, const std::string& bytes) {
        return sandbox_.write("../outside/" + name, bytes);
    };
    const std::string lone = testsupport::makeFont({"Lone", "Regular", "Lone"});
    write("lone.ttf", lone);
    write("twin.ttf", lone);
    write("other/lone.ttf", testsupport::makeFont({"Other", "Regular", "Other"}));
    write("bad.otf", lone.substr(0, lone.size() / 2));
    write("read.me", "no font");
    expectEach({{{"add", sandbox_.library()}, 0, "added"}});
    const std::string own = sandbox_.places().singleFonts();
    writeBytes((std::filesystem::create_directories(own), own + "/.incoming"), "of one killed");
    const std::string output =
        glyphora({"add", "--json", outside + "lone.ttf", outside + "bad.otf", outside + "twin.ttf",
                  outside + "read.me", sandbox_.library() + "/fonts/lato.ttf",
                  outside + "other/lone.ttf"})
            .output;
    const auto added = nlohmann::json::parse(output.substr(output.find("{\n"))); // after warnings
    ASSERT_EQ(added["added"].size(), 2) << added;
    EXPECT_EQ(added["added"][0]["source"], outside + "lone.ttf");
    EXPECT_EQ(added["added"][1]["path"], own + "/lone (2).ttf");
    EXPECT_EQ(readBytes(own + "/lone.ttf"), lone);
    EXPECT_EQ(added["problems"].size(), 4) << added;
    std::filesystem::remove(outside + "lone.ttf"); // the copy is the library's
    expectEach({{{"add", outside + "twin.ttf"}, 0, "in the library already, as " + own},
                {{"search", "lone"}, 0, own + "/lone.ttf"},
                {{"add", outside + "read.me"}, 1, "neither a folder nor a font file"}});
    EXPECT_FALSE(std::filesystem::exists(own + "/.incoming"));
}

TEST_F(TheProgram, FindsFacesTellsAllOfThemAndCopiesThem) {
    const std::string font = makeFont({"Plain/Sans", "Regular", "PlainSans"});
    const std::string namesake = makeFont({"Plain/Sans (4)", "Regular", "Namesake"});
    sandbox_.write("fonts/copy.ttf", namesake);
    sandbox_.write("fonts/plain.ttf", font);
    sandbox_.write("more/copy.ttf", font);
    sandbox_.write("more/long.ttf", makeFont({std::string(300, 'L'), "Regular", "LongNamed"}));
    std::filesystem::create_hard_link(sandbox_.library() + "/fonts/lato.ttf",
                                      sandbox_.library() + "/more/lato.ttf");
    const std::string target = sandbox_.root() + "/to";
    const auto listing = [&](const std::string& file) { return readBytes(target + "/" + file); };
    expectEach({
        {{"add", sandbox_.library()}, 0, "6 font files read"},
        {{"search", "plain", "SANS"}, 0, "  inactive  Plain/Sans Regular, "},
        {{"search", "--weight", "600-800", "--json"}, 0, "\"total\": 2"},
        {{"search", "--weight", "700", "lato", "--json"}, 0, "\"total\": 2"},
        {{"search", "--width", "75-"}, 2, "--width: '75-' is no number and no range"},
        {{"search", "--covers", "a", "--limit", "1"}, 0, "6 in all; --limit shows more"},
        {{"search", "--weight", "700-300"}, 2, "--weight: '700-300' ends before it begins"},
        {{"search", "--weight", "nan"}, 2, "--weight: 'nan' is no number"},
        {{"search", "--slant", "bent"}, 2, "--slant: 'bent' is none of upright, italic, oblique"},
        {{"search", "--limit", "1", "--limit", "2"}, 2, "--limit: may be given once"},
        {{"search", "--script", "xyzz"}, 1, "--script: no face has 'Xyzz'; there are Latn"},
        {{"search", "nobody"}, 1, "glyphora: nothing found\n"},
        {{"search", "--covers", "\xff"}, 2, "--covers: not a text in UTF-8"},
        {{"info", "PlainSans", "Nobody"}, 3, "  PostScript name: PlainSans\n"},
        {{"duplicates"},
         0,
         sandbox_.library() + "/fonts/plain.ttf " + sandbox_.library() + "/more/copy"},
        {{"collect", "--to", target, "Nobody"}, 1, "Nobody: no container"},
        {{"collect", "--to", target, "p*", "3"}, 0, "copied Plain_Sans/plain.ttf\n"},
        {{"collect", "--to", target, "1"}, 1, target + ": is there already"},
        {{"collect", "--to", target + "3", "LongNamed"},
         0,
         "copied " + std::string(200, 'L') + "/long.ttf\n"},
        {{"collect", "--to", target + "2/no", "1"},
         1,
         target + "2/no: cannot be made: there is no"},
    });
    EXPECT_EQ(listing("Plain_Sans/plain.ttf"), font);
    EXPECT_EQ(listing("Plain_Sans (4)/copy.ttf"), namesake);
    EXPECT_EQ(listing("Plain_Sans (4) (4)/copy.ttf"), font);
    EXPECT_THAT(listing("fonts.txt"), HasSubstr("    PostScript name: PlainSans\n"));
    EXPECT_THAT(glyphora({"duplicates"}).output, testing::Not(HasSubstr("lato"))) << "one file";
    std::filesystem::remove(sandbox_.library() + "/more/copy.ttf");
    expectEach(
        {{{"collect", "--to", target + "2", "plain*"}, 3, "copy.ttf: cannot be copied: No"}});
    for (const auto& entry : std::filesystem::directory_iterator(sandbox_.root())) {
        EXPECT_FALSE(entry.path().filename().string().starts_with(".")) << "left behind";
    }
}

TEST_F(TheProgram, FindsFacesThatLookLikeOneOfItsOwnOrTheDesktops) {
    sandbox_.write("fonts/other.ttf", makeFont({"Other", "Regular", "Other"}));
    sandbox_.write("fonts/others.ttf", makeFont({"Other", "Thin", "Other-Thin"}));
    sandbox_.write("../shown/bold.ttf", makeFont({"Shown Sans", "Bold", "ShownSans-Bold", true}));
    sandbox_.setFontconfig("<dir>" + sandbox_.root() + "/shown</dir>");
    expectEach({
        {{"add", sandbox_.library()}, 0, "3 font files read"},
        {{"add", sandbox_.library() + "/fonts"}, 0, "/fonts: is in the library already"},
        {{"search", "--similar", "LATO & CO bold"}, 0, "lato.ttf:\n     2  inactive  Other "},
        {{"search", "--similar", "Lato-Bold", "--json"}, 0, "\"total\": 1,"},
        {{"search", "--similar", "shown sans BOLD"}, 0, "Lato & Co Bold — hardly differs; OpenT"},
        {{"search", "--similar", "Other", "-h"}, 0, "--similar NAME"},
        {{"search", "--similar", "Other", "--weight", "1"}, 1, "glyphora: nothing found"},
        {{"search", "--similar", "Shown Sans"}, 1, "Shown Sans: neither the library nor the "},
        {{"search", "--similar", "Other", "--similar", "x"}, 2, "--similar: may be given once"},
    });
}

TEST_F(TheProgram, IsCompletedByNamesAsTheyAre) {
    const std::string name = "a '$(echo b)";
    EXPECT_EQ(glyphora({"add", sandbox_.library()}).status, 0);
    EXPECT_EQ(glyphora({"tag", "add", name, "1"}).status, 0);
    const char* script = ". " GLYPHORA_COMPLETION "; compopt() { :; }\n"
                         "glyphora() { " GLYPHORA_PROGRAM " \"$@\"; }\n"
                         "COMP_WORDS=(glyphora tag remove a) COMP_CWORD=3; _glyphora\n"
                         "printf '<%s>' \"${COMPREPLY[@]}\"";
    EXPECT_EQ(ProgramRun({"-c", script}, sandbox_.root() + "/log.shell", "/bin/bash").wait().output,
              "<" + name + ">");
}

TEST_F(TheProgram, DoesWhatItCanOfACommandAndTellsTheRest) {
    sandbox_.write("fonts/other/lato.ttf", makeFont({"Twice", "Bold", "Twice-B"}));
    sandbox_.write("fonts/twice.ttf", makeFont({"Twice", "Regular", "Twice-A"}));
    expectEach({
        {{"add", "/absent", sandbox_.library()}, 3, "added " + sandbox_.library()},
        {{"activate", "Twice", "LATO*"},
         3,
         "in several containers; give the number of one: 2 (TrueType, "},
        {{"activate", "T*", "--for", "1h"}, 0, "glyphora: no server is running: what is due"},
        {{"collection", "add", "mine", "LATO & CO", "Nobody"}, 3, "mine: added Lato & Co"},
        {{"collection", "add", "mine", "2", "1"}, 0, "mine: added Twice"},
        {{"tag", "add", "bold", "Twice-B"}, 0, "tag:bold: added Twice (container 3, "},
        {{"tag", "add", "", "1"}, 1, "a tag needs a name"},
        {{"tag", "rename", "bold", "fat"}, 0, "tag:bold: called fat now"},
        {{"tag", "rename", "bold", "heavy"}, 1, "bold: there is no tag of this name"},
        {{"tag", "add", "bold", "1"}, 0, "tag:bold: added Lato & Co"},
        {{"tag", "rename", "fat", "bold"}, 1, "bold: there is already a tag of this name"},
        {{"tag", "remove", "bold"}, 0, "removed tag:bold"},
        {{"tag", "rename", "fat", "bold"}, 0, "tag:fat: called bold now"},
        {{"deactivate", "tag:bold", "tag:mine"}, 3, "mine: there is no tag of this name"},
        {{"collection", "list", "mine"}, 0, "2  active    Twice, TrueType, 1 face, "},
        {{"deactivate", "Twice", "collection:mine"},
         0,
         "(container 2)\ndeactivated Lato & Co (container 1)\n"},
        {{"collection", "remove", "mine", "l*", "l*"}, 3, "mine: removed Lato & Co"},
        {{"collection", "list"}, 0, "mine: 1 container\n"},
        {{"activate", "--json", "collection:mine", "x"}, 3, "\"name\": \"Twice\","},
        {{"collection", "remove", "mine"}, 0, "removed collection:mine"},
        {{"collection", "list", "mine", "--json"}, 1, "{\n  \"problems\": [\n"},
    });
    const std::string record = sandbox_.places().fonts() + "/2/" + manager::setRecordName;
    std::string lines = readBytes(record);
    writeBytes(record, lines.erase(lines.find("reason\t"), std::string("reason\thand\n").size()));
    expectEach({{{"status"}, 0, "Twice, 1 file, leaving\n"}});
    std::filesystem::rename(sandbox_.library(), sandbox_.library() + ".away");
    expectEach({
        {{"scan"}, 1, ": the recorded folder is away; \"glyphora list --problems\" tells why"},
        {{"list"}, 0, "library: 3 font files (3 away), 3 faces, "},
        {{"list", "--containers"}, 0, "3  away      Twice, TrueType, 1 face, "},
        {{"tag", "list", "bold"}, 0, "3  away      Twice, TrueType, 1 face, "},
        {{"info", "Twice-B"}, 0, "Twice Bold (container 3, away)"},
        {{"activate", "Twice-B"}, 1, "its folder is away"},
    });
    std::filesystem::rename(sandbox_.library() + ".away", sandbox_.library());
    sandbox_.setFontconfig("<dir>" + sandbox_.root() + "/data/fonts</dir><dir>" +
                           sandbox_.library() + "/fonts/other</dir>");
    expectEach({
        {{"scan"}, 0, "fonts/other: the desktop shows"},
        {{"activate", "--json", "Twice-B"}, 0, "\"activated\": [],"},
    });
    // The command did not wait for what is due a second after it.
    const std::string staging = sandbox_.places().fonts() + "/.staging";
    EXPECT_TRUE(await([&] { return std::filesystem::is_empty(staging); }));
}

TEST_F(TheProgram, OpensPagesWhereFontsCanBeHad) {
    const std::string log = sandbox_.root() + "/pages";
    const Variable config("XDG_CONFIG_HOME", sandbox_.root() + "/config");
    const Variable display("DISPLAY", ":9999");
    const Variable locale("LC_ALL", "de_DE.UTF-8");
    const Variable language("LANGUAGE", "fr:de");
    std::filesystem::create_directories(sandbox_.places().data + "/applications");
    std::filesystem::create_directories(sandbox_.root() + "/config/glyphora");
    writeBytes(
        sandbox_.places().data + "/applications/test.desktop",
        "[Desktop Entry]\nType=Application\nName=Test\nExec=sh -c 'echo \"$0\" \"$LANGUAGE\" >>" +
            log +
            "' %u\nMimeType=x-scheme-handler/http;x-scheme-handler/https;"
            "x-scheme-handler/file;\n");
    writeBytes(sandbox_.root() + "/config/mimeapps.list",
               "[Default Applications]\nx-scheme-handler/http=test.desktop\n"
               "x-scheme-handler/https=test.desktop\nx-scheme-handler/file=test.desktop\n");
    const auto made = [&](const std::string& family, const std::string& page) {
        const auto record = [](unsigned id, const std::string& text) {
            return RawName{1, 0, 0, id, text};
        };
        FontRecipe recipe;
        recipe.names = {record(1, family), record(2, "Bold"), record(6, family + "-Bold"),
                        record(11, page)};
        sandbox_.write("made/" + family + ".ttf", makeFont(recipe));
    };
    made("Good", "https://maker.example/good");
    made("Bad", "file:///etc/passwd");
    ASSERT_EQ(glyphora({"add", sandbox_.library()}).status, 0);
    const auto opened = [&](const std::string& expected) {
        return await([&] { return std::filesystem::exists(log) && readBytes(log) == expected; });
    };
    EXPECT_EQ(glyphora({"--translated", "buy", "Good-Black", "Good-Bold"}).status, 0);
    EXPECT_TRUE(opened("https://maker.example/good fr:de\n")) << readBytes(log);
    std::filesystem::remove(log);

    writeBytes(sandbox_.root() + "/config/glyphora/glyphora.conf",
               "[buy]\nsearch=http://shop.example/?q=%1&x=y\n");
    for (const char* const end : {"", "-wal", "-shm"}) {
        std::filesystem::remove(sandbox_.places().database() + end);
    }
    { // which owes a scan, and is not waited for
        const manager::FileLock scanning(sandbox_.places().scanLock());
        EXPECT_EQ(glyphora({"buy", "Good-Bold"}).status, 0);
        EXPECT_TRUE(opened("http://shop.example/?q=Good-Bold%20font&x=y fr:de\n"));
    }
    std::filesystem::remove(log);
    serve();
    EXPECT_TRUE(
        send("<cmd>buyRequest</cmd>\n<font>\n<psName>Bad-Bold</psName>\n</font>\n</cmd>\n"));
    EXPECT_TRUE(opened("http://shop.example/?q=Bad-Bold%20font&x=y fr:de\n"));
    for (const char* search : {"file:///tmp/%1", "http:///%1", "http://shop.example/"}) {
        writeBytes(sandbox_.root() + "/config/glyphora/glyphora.conf",
                   std::string("[buy]\nsearch=") + search + "\n");
        expectEach({{{"buy", "Nobody"}, 1, "is not an address of the web"}});
    }
    const Variable none("DISPLAY", "");
    expectEach({{{"buy", "Good-Bold"}, 1, "no display"}, {{"buy"}, 2, "name fonts, or give"}});
}

} // namespace
