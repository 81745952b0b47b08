// SPDX-License-Identifier: MIT
// Whether two files are one font.
#include "manager/library/library.h"
#include "manager/library/places.h"
#include "system/descriptor.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <iterator>
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

std::vector<std::vector<FileCopy>> Library::duplicates() {
    Statement statement(
        database_,
        "SELECT directory.path, file.name, file.container, file.size, file.changed, file.inode, "
        "file.digest FROM file JOIN directory ON directory.id = file.directory "
        "JOIN (SELECT size, digest FROM file WHERE container IS NOT NULL GROUP BY size, digest "
        "HAVING count(*) > 1) AS alike ON alike.size = file.size AND alike.digest = file.digest "
        "WHERE file.container IS NOT NULL AND directory.away = 0 "
        "ORDER BY file.size DESC, file.digest, directory.path, file.name");
    std::vector<std::vector<FaceMatch>> alike;
    while (statement.step()) {
        FaceMatch file;
        file.folder = statement.text(0);
        file.fileName = statement.text(1);
        file.container = static_cast<ContainerId>(statement.number(2));
        file.stamp = {statement.number(3), statement.number(4), statement.number(5)};
        file.digest = static_cast<std::uint64_t>(statement.number(6));
        const auto same = std::find_if(alike.rbegin(), alike.rend(), [&](const auto& copies) {
            return haveSameBytes(copies.front(), file);
        });
        if (same == alike.rend()) {
            alike.push_back({std::move(file)});
        } else if (std::none_of(same->begin(), same->end(),
                                [&](const FaceMatch& copy) { return copy.stamp == file.stamp; })) {
            same->push_back(std::move(file));
        }
    }
    std::vector<std::vector<FileCopy>> result;
    for (const auto& copies : alike) {
        if (copies.size() > 1) {
            auto& files = result.emplace_back();
            for (const FaceMatch& copy : copies) {
                files.push_back(
                    {joinPath(copy.folder, copy.fileName), copy.container, copy.stamp.size});
            }
        }
    }
    return result;
}

} // namespace manager
