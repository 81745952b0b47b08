// SPDX-License-Identifier: MIT
// The thread that changes what is active: what waits for a lock, and who is told of what.
#include "manager/activation/activator.h"
#include "manager/library/update.h"
#include "tests/manager/activationfixture.h"

#include <gmock/gmock.h>
#include <poll.h>

using namespace manager;
using namespace managertest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class AnActivator : public AnActivation {
protected:
    // Gathers news until there is enough of it.
    void await(const std::function<bool()>& isEnough) {
        while (!isEnough()) {
            pollfd news{activator_.descriptor(), POLLIN, 0};
            ASSERT_EQ(poll(&news, 1, 60'000), 1) << "a watchdog";
            ActivatorNews more = activator_.take();
            for (Activated& done : more.activated) {
                outcomes_[done.call] = std::move(done.outcome);
            }
            problems_.insert(problems_.end(), more.problems.begin(), more.problems.end());
            withdrawn_.insert(withdrawn_.end(), more.withdrawn.begin(), more.withdrawn.end());
            isReady_ = isReady_ || more.ending;
        }
    }

    Activator activator_{
        sandbox_.places(),
        {std::chrono::milliseconds(1), std::chrono::milliseconds(1), std::chrono::milliseconds(1)}};
    std::map<std::uint64_t, ActivationOutcome> outcomes_; ///< by call
    std::vector<std::string> problems_;
    std::vector<Withdrawal> withdrawn_;
    bool isReady_ = false;
};

TEST_F(AnActivator, TellsEachCallItsOutcomeWhenTheLockIsFree) {
    await([&] { return isReady_; });
    ContainerFonts lacking = fonts();
    std::filesystem::remove(sandbox_.library() + "/two.ttf");
    std::optional<FileLock> held(sandbox_.places().fonts() + "/.lock");
    const auto first = activator_.activate({lacking});
    await([&] { return !problems_.empty(); });
    EXPECT_THAT(problems_, ElementsAre(HasSubstr("is locked by manager_activat (")));
    const auto second = activator_.activate({fonts({"one.ttf"})});
    const auto third = activator_.activate({lacking});
    const auto tooMuch = activator_.activate(
        std::vector<ContainerFonts>(Activator::maximumWaiting, fonts({"one.ttf"})));
    await([&] { return outcomes_.contains(tooMuch); });
    EXPECT_THAT(outcomes_[tooMuch].problems, ElementsAre(HasSubstr("too many wait")));
    EXPECT_EQ(outcomes_.size(), 1U);
    EXPECT_EQ(problems_.size(), 1U) << "told once";
    held.reset();
    await([&] { return outcomes_.size() == 4; });
    EXPECT_THAT(outcomes_[first].lost, ElementsAre("two.ttf"));
    EXPECT_TRUE(outcomes_[first].changed);
    EXPECT_TRUE(outcomes_[second].success);
    EXPECT_THAT(outcomes_[third].lost, ElementsAre("two.ttf"));
    EXPECT_THAT(visibleFamilies(), ElementsAre("One"));
}

TEST_F(AnActivator, FollowsNewNamesAndTellsOnceWhatKeepsIt) {
    await([&] { return isReady_; });
    const auto scan = [&] {
        auto library = std::make_unique<Library>(sandbox_.places());
        updateLibrary(*library, std::vector{sandbox_.library()}, FontReaderLimits{});
        return library;
    };
    for (const auto& container : scan()->containers()) {
        activator_.activate({{container.id, container.name, scan()->files(container.id)}});
    }
    await([&] { return outcomes_.size() == 2; });
    std::filesystem::rename(sandbox_.library() + "/one.ttf", sandbox_.library() + "/1.ttf");
    sandbox_.write("bold.ttf", testsupport::makeFont({"Two", "Bold", "Two-Bold"}));
    std::filesystem::remove(sandbox_.library() + "/two.ttf");
    const auto told = [&] {
        activator_.follow(scan());
        const std::size_t before = outcomes_.size();
        await([&] { return outcomes_.size() > before; });
        return outcomes_.rbegin()->second.problems;
    };
    {
        const FontUser user(sandbox_.places().fonts() + "/1/one.ttf");
        EXPECT_THAT(told(), ElementsAre(HasSubstr("container 1: in use by ")));
        EXPECT_THAT(told(), IsEmpty());
        EXPECT_THAT(visibleFamilies(), ElementsAre("One", "Two"));
    }
    activator_.withdraw(std::nullopt);
    await([&] { return outcomes_.rbegin()->second.changed; });
    EXPECT_THAT(entries(sandbox_.places().fonts() + "/1"), ElementsAre(".glyphora-set", "1.ttf"));
    EXPECT_THAT(entries(sandbox_.places().fonts() + "/2"), ElementsAre(".glyphora-set", "two.ttf"))
        << "whose face has gone";
}

TEST_F(AnActivator, TriesAgainByItselfToWithdrawWhatItCouldNot) {
    ContainerFonts brief = fonts();
    brief.reasons = {Reason::forTime(std::chrono::seconds(0))};
    activator_.activate({brief});
    await([&] { return !outcomes_.empty(); });
    std::filesystem::remove(set() + "/two.ttf");
    std::filesystem::create_directories(set() + "/two.ttf/in the way");
    writeBytes(set() + "/mine.txt", "mine");
    activator_.withdraw(std::nullopt);
    await([&] { return withdrawn_.size() >= 3; });
    EXPECT_THAT(withdrawn_[0].outcome.problems, ElementsAre(HasSubstr("/two.ttf: cannot be rem")));
    EXPECT_THAT(withdrawn_[2].outcome.problems, IsEmpty()) << "told once";
    std::filesystem::remove_all(set() + "/two.ttf");
    await([&] { return withdrawn_.back().outcome.success; });
    EXPECT_THAT(entries(set()), ElementsAre("mine.txt"));
}

} // namespace
