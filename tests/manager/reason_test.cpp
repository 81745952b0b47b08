// SPDX-License-Identifier: MIT
// What containers are active for: when that ends, what then leaves, and what stays under a program.
#include "manager/activation/mappedfiles.h"
#include "manager/library/error.h"
#include "system/child.h"
#include "tests/manager/activationfixture.h"
#include "tests/support/await.h"

#include <ctime>
#include <gmock/gmock.h>
#include <memory>
#include <optional>
#include <string_view>
#include <unistd.h>

using namespace manager;
using namespace managertest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class AReason : public AnActivation {
protected:
    AReason() { std::filesystem::create_directory(sandbox_.root() + "/run"); }

    void activateFor(const std::vector<Reason>& reasons) {
        ContainerFonts wanted = fonts();
        wanted.reasons = reasons;
        EXPECT_TRUE(activate(wanted).success);
    }
    std::vector<Withdrawal> withdrawDue() { return Activation(sandbox_.places()).withdrawDue(); }
    std::vector<std::string> reasons() {
        std::vector<std::string> texts;
        for (const ActiveContainer& active : Activation(sandbox_.places()).active({})) {
            for (const Reason& reason : active.reasons) {
                texts.push_back(describe(reason));
            }
        }
        return texts;
    }

    testsupport::Variable runtime_{"XDG_RUNTIME_DIR", sandbox_.root() + "/run"};
};

TEST_F(AReason, KeepsASetAsLongAsOneOfThemStands) {
    std::optional<sys::Child> program(std::in_place, "/bin/cat", std::span<const std::string>());
    const pid_t process = program->process();
    Reason past = Reason::forTime(std::chrono::hours(2));
    past.time = std::time(nullptr);
    activateFor({*Reason::forDocumentOf(process), Reason::untilLogout(), past});
    const std::string document = "for a document of cat (" + std::to_string(process) + ")";
    EXPECT_THAT(reasons(), ElementsAre(document, "until logout"));
    EXPECT_THAT(withdrawDue(), IsEmpty());
    program.reset();
    EXPECT_FALSE(Reason::forDocumentOf(process));
    EXPECT_THAT(withdrawDue(), IsEmpty());
    EXPECT_THAT(reasons(), ElementsAre("until logout"));
    {
        const testsupport::Variable none("XDG_RUNTIME_DIR", "");
        EXPECT_THAT(withdrawDue(), IsEmpty()) << "who has no such folder cannot tell";
    }
    // The next login has a runtime folder of its own.
    std::filesystem::remove_all(sandbox_.root() + "/run");
    std::filesystem::create_directory(sandbox_.root() + "/run");
    const auto withdrawn = withdrawDue();
    ASSERT_EQ(withdrawn.size(), 1U);
    EXPECT_TRUE(withdrawn[0].outcome.changed);
    EXPECT_EQ(withdrawn[0].why, "the login ended");
    EXPECT_THAT(visibleFamilies(), IsEmpty());
}

TEST_F(AReason, OfAProcessIsNotThatOfALaterOneOfItsNumber) {
    Reason earlier = *Reason::forDocumentOf(getpid());
    --earlier.process.started;
    Reason otherBoot = *Reason::forDocumentOf(getpid());
    otherBoot.process.boot = "another";
    for (const Reason& reason : {earlier, otherBoot}) {
        activateFor({reason});
        EXPECT_EQ(withdrawDue().size(), 1U);
    }
}

TEST_F(AReason, IsAddedToThoseOfBeforeAndRenewed) {
    activate(fonts());
    activateFor({Reason::forTime(std::chrono::hours(1))});
    const Reason document = *Reason::forDocumentOf(getpid());
    activateFor({Reason::forTime(std::chrono::hours(2)), document});
    EXPECT_THAT(reasons(), ElementsAre("by hand", HasSubstr("until 2"))) << "that outlives it";
    deactivate();
    activateFor({document});
    activateFor({document, Reason::untilLogout()});
    EXPECT_THAT(reasons(), ElementsAre(HasSubstr("a document of"), "until logout"));
    Activation activation(sandbox_.places());
    EXPECT_THAT(activation.withdrawDue(), IsEmpty());
    EXPECT_EQ(activation.endingReasons().size(), 2U);
}

TEST_F(AReason, IsReadAgainWhenChangedAndEndsSetsInParts) {
    Activation activation(sandbox_.places());
    EXPECT_THAT(activation.withdrawDue(), IsEmpty());
    Reason over = Reason::forTime(std::chrono::hours(0));
    for (const int id : {8, 9}) {
        ContainerFonts wanted = fonts({"one.ttf"});
        wanted.id = static_cast<ContainerId>(id);
        wanted.reasons = {over};
        EXPECT_TRUE(activate(wanted).success);
    }
    EXPECT_THAT(activation.withdrawDue(), IsEmpty()) << "nobody told of them";
    activation.lookAgain(std::vector{static_cast<ContainerId>(8), static_cast<ContainerId>(9)});
    for (const bool isMore : {true, false}) {
        const auto withdrawn = activation.withdrawDue(1);
        ASSERT_EQ(withdrawn.size(), 1U);
        EXPECT_EQ(withdrawn[0].why, "its time is over");
        EXPECT_EQ(activation.isMoreDue(), isMore);
    }
}

// Nobody is told a second time that its process has ended.
TEST_F(AReason, ThatEndsWhileOthersAreWithdrawnIsFoundOutNext) {
    const auto activateAs = [&](int id, const Reason& reason) {
        ContainerFonts wanted = fonts({"one.ttf"});
        wanted.id = static_cast<ContainerId>(id);
        wanted.reasons = {reason};
        EXPECT_TRUE(activate(wanted).success);
    };
    std::optional<FontUser> program(std::in_place, sandbox_.library() + "/two.ttf");
    const Reason document = *Reason::forDocumentOf(program->process());
    activateAs(8, Reason::forTime(std::chrono::hours(0)));
    activateAs(9, document);
    Activation activation(sandbox_.places(), [&](std::string_view) { program.reset(); });
    EXPECT_EQ(activation.withdrawDue().size(), 1U);
    EXPECT_THAT(activation.endingReasons(), ElementsAre(document));
    EXPECT_EQ(activation.withdrawDue().size(), 1U);
    EXPECT_THAT(activation.endingReasons(), IsEmpty());
}

TEST_F(AReason, IsByHandInARecordThatKnewNone) {
    activate(fonts());
    std::string record = readBytes(set() + "/.glyphora-set");
    record.replace(record.find("set 2"), 5, "set 1");
    record.erase(record.find("reason\thand\n"), 12);
    writeBytes(set() + "/.glyphora-set", record);
    EXPECT_THAT(reasons(), ElementsAre("by hand"));
    activateFor({Reason::forTime(std::chrono::hours(1))});
    EXPECT_THAT(reasons(), ElementsAre("by hand", HasSubstr("until 2")));
    writeBytes(set() + "/.glyphora-set", record + "reason\twhim\n");
    EXPECT_THAT(activate(fonts()).problems, ElementsAre(HasSubstr("line 5: not a line of a set")));
}

TEST_F(AReason, IsThatAProgramHasTheFontOpen) {
    activate(fonts());
    std::optional<FontUser> program(set() + "/one.ttf");
    const auto outcome = deactivate();
    EXPECT_TRUE(outcome.postponed && !outcome.changed);
    EXPECT_THAT(outcome.problems,
                ElementsAre(HasSubstr("(" + std::to_string(program->process()) + "); it")));
    const Reason use = Reason::inUseBy(*markOf(program->process()));
    EXPECT_EQ(outcome.change, (SetChange{{{use}, {Reason::byHand()}}}));
    ContainerFonts again = fonts();
    again.ended = {use};
    EXPECT_EQ(activate(again).change, (SetChange{{{Reason::byHand()}, {use}}}));
    EXPECT_THAT(reasons(), ElementsAre("by hand"));
    EXPECT_TRUE(deactivate().postponed);
    EXPECT_THAT(visibleFamilies(), ElementsAre("One", "Two"));
    EXPECT_THAT(withdrawDue(), IsEmpty());
    program.reset();
    EXPECT_EQ(withdrawDue().size(), 1U);
    EXPECT_THAT(visibleFamilies(), IsEmpty());
}

TEST_F(AReason, IsNotThatItsFontIsReadForOthers) {
    // Each program is a file below the folder, which it maps, and so in place of a font.
    const std::string folder = sandbox_.root() + "/sets";
    const std::string link = sandbox_.root() + "/link";
    std::filesystem::create_directory(folder);
    std::filesystem::create_symlink(folder, link);
    std::vector<std::unique_ptr<sys::Child>> programs;
    for (const char* name : {"/glyphora-desktop", "/fc-cache", "/editor"}) {
        std::filesystem::copy_file("/bin/cat", folder + name);
        programs.push_back(
            std::make_unique<sys::Child>(folder + name, std::span<const std::string>()));
        const std::string maps = "/proc/" + std::to_string(programs.back()->process()) + "/maps";
        ASSERT_TRUE(
            testsupport::await([&] { return readBytes(maps).find(folder) != std::string::npos; }));
    }
    const auto mappers = mappersOfFilesBelow(link);
    ASSERT_TRUE(mappers.contains(link));
    EXPECT_THAT(mappers.at(link), ElementsAre(*markOf(programs.back()->process())));
}

TEST(ALock, IsWaitedForAWhileAndThenSaysWhoHasIt) {
    const Sandbox sandbox;
    const std::string path = sandbox.root() + "/lock";
    const FileLock held(path);
    try {
        const FileLock second(path, std::chrono::milliseconds(20));
        FAIL() << "locked twice";
    } catch (const Error& error) {
        EXPECT_THAT(error.what(), HasSubstr("lock: is locked by manager_activat (" +
                                            std::to_string(getpid()) + "), for longer than 20 ms"));
    }
}

} // namespace
