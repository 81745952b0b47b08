// SPDX-License-Identifier: MIT
// The program on a bus of its own: events in, answers and changes out, one instance, every way to
// end it.
#include "platform/notify.h"
#include "platform/processes.h"
#include "system/child.h"
#include "tests/manager/programrun.h"
#include "tests/manager/sandbox.h"
#include "tests/platform/events.h"
#include "tests/platform/peerprocess.h"
#include "tests/support/foldedreply.h"
#include "tests/support/fontmaker.h"
#include "tests/support/privatebus/privatebus.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <optional>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace managertest;
using namespace testsupport;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

int receivedChanges = 0;

OSErr countChange(const AppleEvent* event, AppleEvent* /*reply*/, void* /*refCon*/) {
    OSType id = 0;
    AEGetAttributePtr(event, keyEventIDAttr, typeType, nullptr, &id, sizeof id, nullptr);
    receivedChanges += id == FourCharCode("FSBC") ? 1 : 0;
    return noErr;
}

class TheProgram : public testing::Test {
protected:
    TheProgram() {
        sandbox_.write("fonts/lato.ttf", makeFont({"Lato & Co", "Bold", "Lato-Bold", true}));
    }
    ~TheProgram() override { PLUnregisterApplication(); }

    Ending glyphora(const std::vector<std::string>& arguments) {
        return ProgramRun(arguments, sandbox_.root() + "/log." + std::to_string(++runs_)).wait();
    }
    bool tells(const std::string& deed) {
        return glyphora({"history"}).output.find(deed) != std::string::npos;
    }
    void serve(std::optional<unsigned> refusedCall = {}) {
        server_.emplace(std::vector<std::string>{"serve", "--verbose"},
                        sandbox_.root() + "/log.server", GLYPHORA_PROGRAM, refusedCall);
        ASSERT_TRUE(await([] { return isServerKnown(); })) << server_->output();
    }
    static bool isServerKnown() {
        ProcessSerialNumber process;
        while (GetNextProcess(&process) == noErr) {
            ProcessInfoRec info;
            if (GetProcessInformation(&process, &info) == noErr &&
                info.processSignature == FourCharCode("QGLY")) {
                return true;
            }
        }
        return false;
    }
    static std::optional<std::string> send(const std::string& command) {
        platformtest::TestEvent event("QGLY", "****", "QGLY");
        event.putText(command);
        return event.send(3600) == noErr ? event.text() : std::nullopt;
    }
    static std::string request(const std::string& psName, pid_t process = getpid()) {
        return "<cmd>fontRequest</cmd>\n<targetClass>FILC</targetClass>\n<targetPid>" +
               std::to_string(process) + "</targetPid>\n<font>\n<syncID>1</syncID>\n<psName>" +
               psName + "</psName>\n</font>\n</cmd>\n";
    }
    // The value of an element of the only font in the reply, or the reply itself when it has none.
    static std::string askFor(const std::string& psName, const char* element) {
        const auto reply = send(request(psName));
        if (!reply) {
            return "no reply";
        }
        const auto folded = parseFolded(*reply);
        const auto fonts = folded.all("font");
        return fonts.empty() ? *reply : fonts[0]->value(element);
    }

    /// A command line, how it ends, and what it prints among other things.
    struct Case {
        std::vector<std::string> arguments;
        int status;
        std::string message;
    };
    void expectEach(const std::vector<Case>& cases) {
        for (const auto& [arguments, expected, message] : cases) {
            const Ending ending = glyphora(arguments);
            EXPECT_EQ(ending.status, expected) << testing::PrintToString(arguments);
            EXPECT_THAT(ending.output, HasSubstr(message));
        }
    }

    testsupport::PrivateBus bus_;
    Sandbox sandbox_;
    std::optional<ProgramRun> server_;
    int runs_ = 0;
};

TEST_F(TheProgram, ActivatesOnRequestAndTellsOfItAfterTheAnswer) {
    ASSERT_EQ(PLRegisterApplication(FourCharCode("ART5"), kPLManyInstances, "host"), noErr);
    receivedChanges = 0;
    const auto routine = NewAEEventHandlerUPP(countChange);
    AEInstallEventHandler(FourCharCode("FILC"), typeWildCard, routine, nullptr, false);
    ASSERT_EQ(glyphora({"add", sandbox_.library()}).status, 0);
    int token = 0;
    ASSERT_EQ(notify_register_check("org.glyphora.Glyphora.FontLibraryChanged", &token),
              std::uint32_t{NOTIFY_STATUS_OK});
    serve();

    const auto posted = [&] {
        int check = 0;
        notify_check(token, &check);
        return check == 1;
    };
    EXPECT_EQ(askFor("Lato-Bold", "isActive"), "1");
    EXPECT_TRUE(await(posted));
    // This process was waiting for its answer: the event was sent all the same, and comes now.
    EXPECT_TRUE(await([] {
        PLWaitForEvents(10);
        return receivedChanges > 0;
    }));
    EXPECT_TRUE(std::filesystem::exists(sandbox_.places().fonts() + "/1/lato.ttf"));

    // A question that changes nothing is no news: the next of either kind comes from the next
    // change.
    EXPECT_EQ(askFor("Lato-Bold", "isActive"), "1");
    EXPECT_EQ(askFor("Nobody", "count"), "0");
    EXPECT_EQ(glyphora({"deactivate", "--all"}).status, 0);
    EXPECT_TRUE(await(posted));
    EXPECT_FALSE(posted());
    PLDispatchPendingEvents();
    EXPECT_EQ(receivedChanges, 1);
    EXPECT_EQ(askFor("Lato-Bold", "isActive"), "1") << "what was deactivated can be had again";

    notify_cancel(token);
    AERemoveEventHandler(FourCharCode("FILC"), typeWildCard, routine, false);
    DisposeAEEventHandlerUPP(routine);
}

TEST_F(TheProgram, AnswersWithoutALibraryAndSeesLaterAdditions) {
    serve();
    EXPECT_EQ(askFor("Lato-Bold", "count"), "0");
    writeBytes(sandbox_.places().data + "/fonts/own.ttf", makeFont({"Own", "Regular", "Own"}));
    EXPECT_EQ(askFor("Own", "isActive"), "1") << "the desktop shows it";
    EXPECT_THAT(*send("rubbish\n"), HasSubstr("<error>command, line 1: "));
    EXPECT_THAT(*send("<cmd>showRequest</cmd>\n</cmd>\n"),
                StartsWith("<cmd>showRequest</cmd>\n<protocolVersion>2.0</protocolVersion>\n"));
    ASSERT_EQ(glyphora({"add", sandbox_.library()}).status, 0);
    EXPECT_EQ(askFor("Lato-Bold", "count"), "1");
}

TEST_F(TheProgram, AnswersWhileSetsAreLockedAndSaysByWhom) {
    const Variable usual("GLYPHORA_REPLY_TIME", std::nullopt);
    ASSERT_EQ(glyphora({"add", sandbox_.library()}).status, 0);
    serve();
    EXPECT_EQ(askFor("Nobody", "count"), "0");
    std::optional<manager::FileLock> held(sandbox_.places().fonts() + "/.lock");
    const std::string reply = send(request("Lato-Bold")).value_or("no reply");
    EXPECT_THAT(reply, HasSubstr("<isActive>0</isActive>"));
    EXPECT_THAT(reply, HasSubstr(".lock: is locked by manager_program (" +
                                 std::to_string(getpid()) + "); the rest is done when"));
    held.reset();
    const std::string file = sandbox_.places().fonts() + "/1/lato.ttf";
    EXPECT_TRUE(await([&] { return std::filesystem::exists(file); })) << server_->output();
}

TEST_F(TheProgram, TakesAFontBackWhenTheProgramOfItsDocumentEnds) {
    ASSERT_EQ(glyphora({"add", sandbox_.library()}).status, 0);
    serve();
    std::optional<sys::Child> program(std::in_place, "/bin/cat", std::span<const std::string>());
    const std::string set = sandbox_.places().fonts() + "/1";
    EXPECT_THAT(send(request("Lato-Bold", program->process())).value_or("no reply"),
                HasSubstr("<isActive>1</isActive>"));
    EXPECT_TRUE(std::filesystem::exists(set));
    const std::string ended = "process " + std::to_string(program->process()) + " (cat) ended";
    program.reset();
    EXPECT_TRUE(await([&] { return !std::filesystem::exists(set); })) << server_->output();
    EXPECT_TRUE(await([&] { return tells("deactivated Lato & Co (container 1): " + ended); }));
}

TEST_F(TheProgram, ScansAtChangesOrNowAndThenWhereItCannotWatch) {
    const Variable soon("GLYPHORA_POLL_TIME", "1");
    ASSERT_EQ(glyphora({"add", sandbox_.library()}).status, 0);
    for (const bool isWatched : {true, false}) {
        serve(isWatched ? std::nullopt : std::optional<unsigned>(SYS_inotify_add_watch));
        sandbox_.write("fonts/new/late.ttf", makeFont({"Late", "Regular", "Late", true}));
        EXPECT_TRUE(await([] { return askFor("Late", "count") == "1"; })) << isWatched;
        std::filesystem::remove(sandbox_.library() + "/fonts/new/late.ttf");
        EXPECT_TRUE(await([] { return askFor("Late", "count") == "0"; })) << isWatched;
        EXPECT_EQ(glyphora({"quit"}).status, 0);
        EXPECT_NE(server_->output().find("folders cannot be watched") == std::string::npos,
                  !isWatched);
    }
}

TEST_F(TheProgram, BeginsOnAFullDiskOnceThereIsRoom) {
    const struct {
        std::vector<std::string> arguments;
        int status;
    } cases[] = {
        {{"add", sandbox_.library()}, 3}, {{"list"}, 1}, {{"serve"}, 1}, {{"list", "--json"}, 1}};
    for (const auto& [arguments, expected] : cases) {
        const Ending ending =
            ProgramRun(arguments, sandbox_.root() + "/log.full", GLYPHORA_PROGRAM, SYS_pwrite64)
                .wait();
        EXPECT_EQ(ending.status, expected) << arguments[0];
        EXPECT_THAT(ending.output, testing::AllOf(HasSubstr(sandbox_.places().database() + ": "),
                                                  HasSubstr("disk")))
            << arguments[0];
    }
    serve();
    EXPECT_TRUE(await([] { return askFor("Lato-Bold", "count") == "1"; }));
}

TEST_F(TheProgram, GoesOnWhileOneOfThoseItTellsReadsNothing) {
    ASSERT_EQ(glyphora({"add", sandbox_.library()}).status, 0);
    serve();
    platformtest::RegisteredPeer peer({"serve-many", "ART5"});
    kill(peer.processID(), SIGSTOP);
    int state = 0;
    ASSERT_EQ(waitpid(peer.processID(), &state, WUNTRACED), peer.processID());
    for (int i = 0; i < 20; ++i) {
        ASSERT_THAT(send(request("Lato-Bold", peer.processID())).value_or("no reply"),
                    HasSubstr("<isActive>1</isActive>"));
        ASSERT_EQ(glyphora({"deactivate", "1"}).status, 0);
    }
    EXPECT_EQ(askFor("Lato-Bold", "isActive"), "1");
    kill(peer.processID(), SIGCONT);
    EXPECT_EQ(glyphora({"quit"}).status, 0);
    EXPECT_EQ(server_->wait().status, 0);
}

TEST_F(TheProgram, UpdatesActiveFontsAndKeepsThoseThatAreAway) {
    ASSERT_EQ(glyphora({"add", sandbox_.library()}).status, 0);
    serve();
    EXPECT_EQ(askFor("Lato-Bold", "isActive"), "1");
    FontRecipe newer{"Lato & Co", "Bold", "Lato-Bold", true};
    newer.revision = 0x20000;
    std::filesystem::rename(sandbox_.write("new", makeFont(newer)),
                            sandbox_.library() + "/fonts/lato.ttf");
    EXPECT_TRUE(await([&] {
        return tells("updated Lato & Co (container 1): version 1.000 -> 2.000");
    })) << server_->output();
    const std::string active = sandbox_.places().fonts() + "/1/lato.ttf";
    EXPECT_TRUE(readBytes(active) == makeFont(newer));
    std::filesystem::rename(sandbox_.library(), sandbox_.library() + ".away");
    EXPECT_TRUE(
        await([&] { return glyphora({"status"}).output.find(" (away)\n") != std::string::npos; }));
    EXPECT_TRUE(readBytes(active) == makeFont(newer));
}

TEST_F(TheProgram, MendsADamagedIndexWhileItServes) {
    ASSERT_EQ(glyphora({"add", sandbox_.library()}).status, 0);
    serve();
    // An answer tells that the server has opened its index, the lock that its first scan is not at
    // work on it.
    EXPECT_EQ(askFor("Nobody", "count"), "0");
    const std::string database = sandbox_.places().database();
    {
        const manager::FileLock noScan(sandbox_.places().scanLock());
        // As after a disk fault: the path now holds no database, the server's own file is gone.
        writeBytes(database + ".new", "no database, and long enough to be looked at as one");
        std::filesystem::remove(database + "-wal");
        std::filesystem::remove(database + "-shm");
        std::filesystem::rename(database + ".new", database);
    }
    EXPECT_TRUE(await([] { return askFor("Lato-Bold", "count") == "1"; })) << server_->output();
    // By the server or by its scan, whichever comes first.
    const std::filesystem::directory_iterator files(std::filesystem::path(database).parent_path());
    EXPECT_TRUE(std::any_of(begin(files), end(files), [&](const auto& file) {
        return file.path().string().starts_with(database + ".damaged-");
    }));
}

TEST_F(TheProgram, MendsAnIndexThatIsCutOrDamagedByWhoeverMeetsIt) {
    sandbox_.write("fonts/twice.ttf", makeFont({"Twice", "Regular", "Twice"}));
    ASSERT_EQ(glyphora({"add", sandbox_.library()}).status, 0);
    serve();
    const std::string database = sandbox_.places().database();
    EXPECT_EQ(askFor("Lato-Bold", "count"), "1");
    const auto damage = [&](std::size_t length) {
        const manager::FileLock noScan(sandbox_.places().scanLock());
        std::filesystem::resize_file(database, length);
    };
    damage(0);
    EXPECT_THAT(*send(request("Lato-Bold")), HasSubstr("; it is made anew from the recorded"));
    EXPECT_TRUE(await([] { return askFor("Lato-Bold", "count") == "1"; })) << server_->output();
    for (const std::size_t length : {50U, 30'000U}) {
        damage(length);
        expectEach({{{"activate", "Twice"}, 0, "activated Twice"},
                    {{"deactivate", "Twice"}, 0, "deactivated Twice"}});
        EXPECT_TRUE(await([] { return askFor("Lato-Bold", "count") == "1"; })) << length;
    }
    {
        const manager::FileLock noScan(sandbox_.places().scanLock());
        std::string bytes = readBytes(database);
        bytes.replace(bytes.find("Twice") / 4096 * 4096, 8, 8, '\xFF');
        std::fstream(database, std::ios::in | std::ios::out | std::ios::binary) << bytes;
    }
    const Ending found = glyphora({"info", "Twice"});
    EXPECT_EQ(found.status, 0) << found.output;
    EXPECT_THAT(found.output, HasSubstr("PostScript name: Twice"));
    // By the command, unless a scan of the server's came before it.
    EXPECT_THAT(found.output + server_->output(), HasSubstr("Kept were the numbers of "));
}

TEST_F(TheProgram, AnswersWhileTheIndexIsLockedAndSaysByWhom) {
    ASSERT_EQ(glyphora({"add", sandbox_.library()}).status, 0);
    serve();
    EXPECT_EQ(askFor("Lato-Bold", "count"), "1");
    const std::string database = sandbox_.places().database();
    std::optional<manager::FileLock> held(database + ".lock");
    std::filesystem::copy_file(database, database + ".copy");
    std::filesystem::rename(database + ".copy", database); // so that it is opened again
    EXPECT_THAT(*send(request("Lato-Bold")),
                HasSubstr(".lock: is locked by manager_program (" + std::to_string(getpid()) +
                          "), for longer than 100 ms"));
    held.reset();
    EXPECT_EQ(askFor("Lato-Bold", "count"), "1");
}

TEST_F(TheProgram, RunsOnceAndEndsSettledWhenToldTo) {
    const std::vector<std::pair<const char*, std::function<void()>>> ways = {
        {"quit", [&] { EXPECT_EQ(glyphora({"quit"}).status, 0); }},
        {"SIGTERM", [&] { kill(server_->process(), SIGTERM); }},
        {"SIGINT", [&] { kill(server_->process(), SIGINT); }},
        {"the bus", [&] { bus_.stop(); }},
    };
    ASSERT_EQ(glyphora({"add", sandbox_.library()}).status, 0);
    const std::string sets = sandbox_.places().fonts();
    for (const auto& [name, end] : ways) {
        std::filesystem::remove_all(sets + "/1");
        serve();
        EXPECT_EQ(askFor("Lato-Bold", "isActive"), "1") << name;
        const Ending second = glyphora({"serve"});
        EXPECT_EQ(second.status, 0) << name;
        EXPECT_THAT(second.output, HasSubstr("a server is running already"));
        end();
        const Ending ending = server_->wait();
        EXPECT_EQ(ending.status, 0) << name << ": " << ending.output;
        // Nothing is noted as under way.
        EXPECT_TRUE(std::filesystem::is_empty(sets + "/.staging")) << name;
    }
    EXPECT_EQ(glyphora({"quit"}).status, 1);
    ProgramRun launchedBefore({"serve"}, sandbox_.root() + "/log.late");
    ASSERT_TRUE(await([&] { return !launchedBefore.output().empty(); }));
    ASSERT_THAT(launchedBefore.output(), testing::Not(HasSubstr("started"))) << "it serves nobody";
    const Ending late = launchedBefore.wait();
    EXPECT_EQ(late.status, 1);
    EXPECT_THAT(late.output,
                testing::MatchesRegex("glyphora: the session bus at " + bus_.address() +
                                      " cannot be reached \\([^\n]*\\)\n"));
}

TEST_F(TheProgram, TakesUpAfterBeingKilled) {
    ASSERT_EQ(glyphora({"add", sandbox_.library()}).status, 0);
    serve();
    EXPECT_EQ(askFor("Lato-Bold", "isActive"), "1");
    kill(server_->process(), SIGKILL);
    server_->wait();
    std::filesystem::remove(sandbox_.places().fonts() + "/1/lato.ttf");
    std::filesystem::create_directories(sandbox_.places().fonts() + "/.staging/9");
    ASSERT_TRUE(await([] { return !isServerKnown(); }));
    serve();
    EXPECT_EQ(askFor("Lato-Bold", "isActive"), "1");
    EXPECT_THAT(server_->output(), HasSubstr("/1: completed, as was begun"));
    EXPECT_FALSE(std::filesystem::exists(sandbox_.places().fonts() + "/.staging/9"));
}

TEST_F(TheProgram, TellsItsStateAndDeedsAndWhatIsWrongWithACommand) {
    sandbox_.write("fonts/bad.otf", "bad");
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
        {{"serve", "x"}, 2, "x"},
    });
}

TEST_F(TheProgram, FindsFacesTellsAllOfThemAndCopiesThem) {
    const std::string font = makeFont({"Plain/Sans", "Regular", "PlainSans"});
    const std::string namesake = makeFont({"Plain/Sans (4)", "Regular", "Namesake"});
    sandbox_.write("fonts/copy.ttf", namesake);
    sandbox_.write("fonts/plain.ttf", font);
    sandbox_.write("more/copy.ttf", font);
    std::filesystem::create_hard_link(sandbox_.library() + "/fonts/lato.ttf",
                                      sandbox_.library() + "/more/lato.ttf");
    const std::string target = sandbox_.root() + "/to";
    const auto listing = [&](const std::string& file) { return readBytes(target + "/" + file); };
    expectEach({
        {{"add", sandbox_.library()}, 0, "5 font files read"},
        {{"search", "plain", "SANS"}, 0, "  inactive  Plain/Sans Regular, "},
        {{"search", "--weight", "600-800", "--json"}, 0, "\"total\": 2"},
        {{"search", "--weight", "700", "lato", "--json"}, 0, "\"total\": 2"},
        {{"search", "--width", "75-"}, 2, "--width: '75-' is no number and no range"},
        {{"search", "--covers", "a", "--limit", "1"}, 0, "5 in all; --limit shows more"},
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

TEST_F(TheProgram, IsCompletedByNamesAsTheyAre) {
    const std::string name = "a '$(echo b)";
    EXPECT_EQ(glyphora({"tag", "add", name}).status, 0);
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

} // namespace
