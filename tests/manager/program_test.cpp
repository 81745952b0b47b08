// SPDX-License-Identifier: MIT
// The program on a bus of its own: events in, answers and changes out, one instance, every way to
// end it.
#include "platform/notify.h"
#include "system/child.h"
#include "tests/manager/activationfixture.h"
#include "tests/manager/programfixture.h"
#include "tests/platform/peerprocess.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <functional>
#include <sys/syscall.h>
#include <sys/wait.h>

using namespace managertest;
using namespace testsupport;
using testing::AllOf;
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
    // One that comes late is answered without: what is said takes time, which others wait for.
    EXPECT_TRUE(await([&] {
        const std::string reply = send(request("Lato-Bold")).value_or("no reply");
        EXPECT_THAT(reply, HasSubstr("<isActive>0</isActive>"));
        return reply.find(".lock: is locked by manager_program (" + std::to_string(getpid()) +
                          "); the rest is done when") != std::string::npos;
    }));
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

TEST_F(TheProgram, EndsReasonsAlsoWhereItCannotWatch) {
    constexpr unsigned nothing = SYS_seccomp;
    constexpr const char* never = "2000000000";
    const struct {
        unsigned refused;
        bool isOwn; // not activated by another process
        const char* pollTime;
    } cases[] = {{SYS_inotify_init1, true, never},
                 {SYS_inotify_init1, false, "1"},
                 {SYS_inotify_add_watch, true, never},
                 {SYS_inotify_add_watch, false, "1"},
                 {nothing, true, never},
                 {nothing, false, never}};
    ASSERT_EQ(glyphora({"add", sandbox_.library()}).status, 0);
    const std::string set = sandbox_.places().fonts() + "/1";
    for (const auto& [refused, isOwn, pollTime] : cases) {
        const Variable poll("GLYPHORA_POLL_TIME", pollTime);
        serve(refused);
        EXPECT_EQ(askFor("Nobody", "count"), "0");
        if (refused == nothing) {
            const std::string fonts = sandbox_.places().data + "/fonts";
            std::filesystem::rename(fonts, fonts + (isOwn ? ".own" : ".others"));
        }
        if (isOwn) {
            sys::Child program("/bin/cat", std::span<const std::string>());
            EXPECT_THAT(send(request("Lato-Bold", program.process())).value_or("no reply"),
                        HasSubstr("<isActive>1</isActive>"));
            EXPECT_TRUE(std::filesystem::exists(set));
        } else {
            EXPECT_EQ(glyphora({"activate", "--for", "1s", "Lato-Bold"}).status, 0);
        }
        EXPECT_TRUE(await([&] { return !std::filesystem::exists(set); })) << refused << isOwn;
        EXPECT_EQ(glyphora({"quit"}).status, 0);
        server_.reset();
    }
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

TEST_F(TheProgram, FindsWhatComesBetweenTheScanAndTheWatch) {
    ASSERT_EQ(glyphora({"add", sandbox_.library()}).status, 0);
    std::optional<manager::FileLock> noScan(sandbox_.places().scanLock());
    serve();
    const std::string process = std::to_string(server_->process());
    const auto scans = [&] { // those that the server has begun and not yet seen to end
        return !readBytes("/proc/" + process + "/task/" + process + "/children").empty();
    };
    EXPECT_TRUE(await(scans));
    noScan.reset();
    EXPECT_TRUE(await([&] { return !scans(); }));
    noScan.emplace(sandbox_.places().scanLock());
    sandbox_.write("fonts/new/first.ttf", makeFont({"First", "Regular", "First"}));
    EXPECT_TRUE(await(scans));
    kill(server_->process(), SIGSTOP);
    noScan.reset();
    EXPECT_TRUE(await([&] { return glyphora({"info", "First"}).status == 0; }));
    sandbox_.write("fonts/new/late.ttf", makeFont({"Late", "Regular", "Late"}));
    kill(server_->process(), SIGCONT);
    EXPECT_TRUE(await([] { return askFor("Late", "count") == "1"; })) << server_->output();
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

TEST_F(TheProgram, SaysOnlyThatAFontInUseLeavesLater) {
    expectEach({{{"add", sandbox_.library()}, 0, ""}, {{"activate", "Lato-Bold"}, 0, "activated"}});
    const FontUser user(sandbox_.places().fonts() + "/1/lato.ttf");
    EXPECT_THAT(
        glyphora({"deactivate", "1"}).output,
        AllOf(HasSubstr("leaves when that ends"), testing::Not(HasSubstr("nothing is active"))));
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
    const std::string reply = *send(request("Lato-Bold"));
    EXPECT_TRUE(await([] { return askFor("Lato-Bold", "count") == "1"; })) << server_->output();
    // By whoever meets it first: what the server has read before may answer until then.
    EXPECT_TRUE(await([&] {
        const std::string told = reply + server_->output();
        return told.find("; it is made anew from the recorded") != std::string::npos ||
               told.find("Kept were the numbers of ") != std::string::npos;
    })) << reply
        << server_->output();
    for (const std::size_t length : {50U, 30'000U}) {
        damage(length);
        expectEach({{{"activate", "Twice"}, 0, "activated Twice"},
                    {{"deactivate", "Twice"}, 0, "deactivated Twice"}});
        EXPECT_TRUE(await([] { return askFor("Lato-Bold", "count") == "1"; })) << length;
    }
    // The last one that closes it brings into the file what its log holds.
    expectEach({{{"quit"}, 0, ""}, {{"list"}, 0, ", 2 containers"}});
    std::string bytes = readBytes(database);
    ASSERT_NE(bytes.find("Twice"), std::string::npos);
    bytes.replace(bytes.find("Twice") / 4096 * 4096, 8, 8, '\xFF');
    std::fstream(database, std::ios::in | std::ios::out | std::ios::binary) << bytes;
    const Ending found = glyphora({"info", "Twice"});
    EXPECT_EQ(found.status, 0) << found.output;
    EXPECT_THAT(found.output, HasSubstr("PostScript name: Twice"));
    EXPECT_THAT(found.output, HasSubstr("Kept were the numbers of "));
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
                AllOf(StartsWith("<cmd>fontRequest</cmd>\n"),
                      HasSubstr(".lock: is locked by manager_program (" + std::to_string(getpid()) +
                                "), for longer than 100 ms")));
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
    int token = 0;
    ASSERT_EQ(notify_register_check("org.glyphora.Glyphora.FontLibraryChanged", &token),
              std::uint32_t{NOTIFY_STATUS_OK});
    int posted = 0;
    notify_check(token, &posted); // the first time tells nothing
    serve();
    EXPECT_TRUE(await([&] { return notify_check(token, &posted) == 0 && posted == 1; }));
    notify_cancel(token);
    EXPECT_EQ(askFor("Lato-Bold", "isActive"), "1");
    EXPECT_THAT(server_->output(), HasSubstr("/1: completed, as was begun"));
    EXPECT_FALSE(std::filesystem::exists(sandbox_.places().fonts() + "/.staging/9"));
}

} // namespace
