// SPDX-License-Identifier: MIT
// Whether two files are one font.
#include "manager/library/library.h"
#include "manager/library/places.h"
#include "system/descriptor.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <unistd.h>

namespace manager {

namespace {

// As many bytes as there are, up to a block. False: they cannot be read.
bool readBlock(int file, std::array<char, 65536>& block, std::size_t& size) {
    size = 0;
    while (size < block.size()) {
        const ssize_t count = read(file, block.data() + size, block.size() - size);
        if (count < 0) {
            return false;
        }
        if (count == 0) {
            return true;
        }
        size += static_cast<std::size_t>(count);
    }
    return true;
}

bool areEqual(const std::string& a, const std::string& b) {
    constexpr int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK;
    const sys::Descriptor first(open(a.c_str(), flags));
    const sys::Descriptor second(open(b.c_str(), flags));
    std::array<char, 65536> firstBlock{};
    std::array<char, 65536> secondBlock{};
    std::size_t firstSize = 0;
    std::size_t secondSize = 0;
    do {
        if (!first || !second || !readBlock(first.get(), firstBlock, firstSize) ||
            !readBlock(second.get(), secondBlock, secondSize) || firstSize != secondSize ||
            !std::equal(firstBlock.begin(), firstBlock.begin() + firstSize, secondBlock.begin())) {
            return false;
        }
    } while (firstSize != 0);
    return true;
}

} // namespace

bool Library::haveSameBytes(const FaceMatch& a, const FaceMatch& b) {
    std::string first = joinPath(a.folder, a.fileName);
    std::string second = joinPath(b.folder, b.fileName);
    if (first == second) {
        return true;
    }
    if (a.stamp.size != b.stamp.size || a.digest != b.digest) {
        return false;
    }
    if (a.stamp == b.stamp) {
        return true; // links to one file
    }
    // A file that changes has another stamp then.
    first += "\n" + std::to_string(a.stamp.changed);
    second += "\n" + std::to_string(b.stamp.changed);
    if (second < first) {
        std::swap(first, second);
    }
    const auto [known, isNew] = comparedFiles_.try_emplace({first, second}, false);
    if (isNew) {
        known->second = areEqual(joinPath(a.folder, a.fileName), joinPath(b.folder, b.fileName));
    }
    return known->second;
}

} // namespace manager
