// SPDX-License-Identifier: MIT
// What owns a descriptor closes it, once.
#include "system/descriptor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <string>
#include <sys/mman.h>
#include <sys/socket.h>
#include <thread>
#include <utility>

namespace {

int opened() {
    return memfd_create("descriptor", MFD_CLOEXEC);
}

bool isOpen(int number) {
    return fcntl(number, F_GETFD) != -1;
}

TEST(ADescriptor, IsClosedWithItsLastOwner) {
    const int number = opened();
    const int replaced = opened();
    {
        sys::Descriptor first(number);
        sys::Descriptor second(replaced);
        second = std::move(first);
        EXPECT_FALSE(isOpen(replaced)) << "it gave way to the other";
        const sys::Descriptor third(std::move(second));
        EXPECT_EQ(third.get(), number);
        EXPECT_TRUE(isOpen(number));
    }
    EXPECT_FALSE(isOpen(number));
}

TEST(ADescriptor, OutlivesTheOwnerThatHandedItOver) {
    int number = -1;
    {
        sys::Descriptor owner(opened());
        number = owner.release();
        EXPECT_FALSE(owner);
    }
    EXPECT_TRUE(isOpen(number));
    sys::Descriptor last(number);
    EXPECT_TRUE(last.close());
    EXPECT_FALSE(isOpen(number));
    EXPECT_TRUE(last.close()) << "nothing is left to fail";
}

TEST(ADescriptor, TellsThatClosingFailed) {
    sys::Descriptor closedBehindItsBack(opened());
    ::close(closedBehindItsBack.get());
    EXPECT_FALSE(closedBehindItsBack.close());
}

TEST(WritingAll, GoesOnAfterEachPartThatTheSystemTook) {
    std::array<int, 2> ends{};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    const sys::Descriptor theirs(ends[0]);
    sys::Descriptor ours(ends[1]);
    const std::string text(std::size_t{4} << 20U, 'x'); // more than a socket holds
    std::string read;
    std::thread reader([&] {
        std::array<char, 4096> block{};
        for (ssize_t count = 1; count > 0;) {
            count = ::read(theirs.get(), block.data(), block.size());
            read.append(block.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        }
    });
    EXPECT_TRUE(sys::writeAll(ours.get(), text));
    ours.close();
    reader.join();
    EXPECT_EQ(read, text);
}

} // namespace
