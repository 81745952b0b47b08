// SPDX-License-Identifier: MIT
// Who deletes a shared object, and when.
#include "misc/threads/smartpointer.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using Orvil::SmartPointer;

namespace {

class Shared : public Orvil::SmartPointable {
public:
    explicit Shared(std::string& log, char name = 'x') : log_(log), name_(name) {}
    Shared(const Shared&) = default;
    Shared& operator=(const Shared&) = delete;
    ~Shared() override { log_ += name_; }

private:
    std::string& log_;
    char name_;
};

class Derived : public Shared {
public:
    using Shared::Shared;
};

} // namespace

TEST(ASharedObject, IsDeletedWithItsLastHolder) {
    std::string log;
    {
        SmartPointer<Shared> first(new Shared(log));
        SmartPointer<Shared> second(first);
        SmartPointer<Shared> third;
        third = second;
        SmartPointer<Shared> fourth(std::move(third));
        EXPECT_TRUE(third == nullptr); // NOLINT(bugprone-use-after-move): empty by contract
        first = nullptr;
        second = nullptr;
        EXPECT_EQ(log, "");
        EXPECT_TRUE(static_cast<bool>(fourth));
        EXPECT_EQ(&*fourth, fourth.get());
    }
    EXPECT_EQ(log, "x");
}

TEST(ASharedObject, StaysWhenItsCountGoesBelowZero) {
    std::string log;
    {
        const auto object = std::make_unique<Shared>(log);
        object->decRef();
        EXPECT_EQ(log, "");
    }
    EXPECT_EQ(log, "x");
}

TEST(ASharedObject, StartsUncountedAsACopy) {
    std::string log;
    const SmartPointer<Shared> original(new Shared(log, 'a'));
    { const SmartPointer<Shared> copy(new Shared(*original)); }
    EXPECT_EQ(log, "a");
}

TEST(AnAssignment, ChangesNothingForTheSameObject) {
    std::string log;
    SmartPointer<Shared> one(new Shared(log));
    SmartPointer<Shared> other(one);
    const SmartPointer<Shared>& itself = one;
    one = itself;
    one = other;
    one = one.get();
    one = std::move(other);
    EXPECT_EQ(one, other); // NOLINT(bugprone-use-after-move): kept by contract
    other = nullptr;
    EXPECT_EQ(log, "");
    one = nullptr;
    EXPECT_EQ(log, "x");
}

TEST(AnAssignment, DropsTheOldObjectOnce) {
    std::string log;
    SmartPointer<Shared> pointer(new Shared(log, 'a'));
    pointer = new Shared(log, 'b');
    EXPECT_EQ(log, "a");
    pointer = SmartPointer<Shared>(new Shared(log, 'c'));
    EXPECT_EQ(log, "ab");
    const SmartPointer<Derived> derived(new Derived(log, 'd'));
    pointer = SmartPointer<Shared>(derived);
    EXPECT_EQ(log, "abc");
}

TEST(ASharedObject, IsCountedExactlyByManyThreads) {
    std::string log;
    {
        const SmartPointer<Shared> kept(new Shared(log));
        std::vector<std::jthread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([pointer = kept] {
                for (int round = 0; round < 20000; ++round) {
                    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): to be counted
                    const SmartPointer<Shared> copy(pointer);
                }
            });
        }
        threads.clear();
        EXPECT_EQ(log, "");
    }
    EXPECT_EQ(log, "x");
}
