// SPDX-License-Identifier: MIT
// What is synced to the disk before sets take their places, a few of them and many.
#include "tests/manager/activationfixture.h"

#include <cerrno>
#include <filesystem>
#include <gmock/gmock.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace manager;
using namespace managertest;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAreArray;

namespace {

std::vector<std::string> synced; // in order; a whole file system as "all of " and the path
std::string failing;             // what cannot be synced

int sync(const char* prefix, long call, int descriptor) {
    const std::string path =
        std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor));
    synced.push_back(prefix + path);
    if (synced.back() == failing) {
        errno = EIO;
        return -1;
    }
    return static_cast<int>(syscall(call, descriptor));
}

} // namespace

// In place of the C library's, in this program.
int fsync(int descriptor) {
    return sync("", SYS_fsync, descriptor);
}
int syncfs(int descriptor) noexcept {
    return sync("all of ", SYS_syncfs, descriptor);
}

namespace {

class ABatchOfSets : public AnActivation {
protected:
    ~ABatchOfSets() override { failing.clear(); }

    // Activates so many containers, and notes what was synced before the first took its place.
    std::vector<ActivationOutcome> activateMany(int count) {
        synced.clear();
        Activation activation(sandbox_.places(), [this](std::string_view step) {
            if (step == "move into place" && syncedBefore_.empty()) {
                syncedBefore_ = synced;
            }
        });
        std::vector<ContainerFonts> wanted(static_cast<std::size_t>(count), fonts({"one.ttf"}));
        for (int i = 0; i < count; ++i) {
            wanted[static_cast<std::size_t>(i)].id = static_cast<ContainerId>(i + 1);
        }
        return activation.activate(wanted);
    }

    const std::string root_ = sandbox_.places().fonts();
    const std::string staging_ = root_ + "/.staging/";
    std::vector<std::string> syncedBefore_;
};

TEST_F(ABatchOfSets, OfEightIsSyncedSetBySet) {
    std::vector<std::string> expected;
    for (int id = 1; id <= 8; ++id) {
        expected.push_back(staging_ + std::to_string(id) + "/" + setRecordName);
        expected.push_back(staging_ + std::to_string(id) + "/one.ttf");
        expected.push_back(staging_ + std::to_string(id));
    }
    EXPECT_THAT(activateMany(8), Each(testing::Field(&ActivationOutcome::success, true)));
    EXPECT_THAT(syncedBefore_, UnorderedElementsAreArray(expected));
    EXPECT_EQ(synced.back(), root_);
}

TEST_F(ABatchOfSets, OfMoreIsSyncedAtOneGo) {
    EXPECT_THAT(activateMany(9), Each(testing::Field(&ActivationOutcome::success, true)));
    EXPECT_THAT(syncedBefore_, ElementsAre("all of " + root_));
    EXPECT_EQ(synced.back(), root_);
}

TEST_F(ABatchOfSets, ThatCannotBeSyncedIsNotActive) {
    for (const auto& [count, unsynced] :
         {std::pair{3, staging_ + "2/" + setRecordName}, std::pair{9, "all of " + root_}}) {
        failing = unsynced;
        for (const ActivationOutcome& outcome : activateMany(count)) {
            EXPECT_FALSE(outcome.success || outcome.changed);
            EXPECT_THAT(outcome.problems, ElementsAre(HasSubstr("cannot be synced")));
            EXPECT_THAT(outcome.lost, ElementsAre("one.ttf"));
        }
        EXPECT_THAT(synced, Contains(unsynced));
        EXPECT_THAT(entries(root_), ElementsAre(".lock", ".staging"));
        EXPECT_THAT(visibleFamilies(), testing::IsEmpty());
    }
}

} // namespace
