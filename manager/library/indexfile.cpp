// SPDX-License-Identifier: MIT
// Small text files: "SIZE SECONDS.NANOSECONDS INODE" in the mark, a number in the other.
#include "manager/library/indexfile.h"

#include "manager/library/database.h"
#include "manager/library/fields.h"
#include "manager/library/places.h"

#include <array>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace manager {

namespace {

constexpr const char* lastNumberFile = ".last-number";
constexpr std::int64_t headerSize = 100;

/// What a mark says of the index as it is now; empty: there is none.
std::string markText(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return {};
    }
    return std::to_string(status.st_size) + " " + std::to_string(status.st_mtim.tv_sec) + "." +
           std::to_string(status.st_mtim.tv_nsec) + " " + std::to_string(status.st_ino) + "\n";
}

std::string smallFile(const std::string& path) {
    constexpr std::size_t longest = 200;
    try {
        return readFile(path, longest);
    } catch (const Error&) {
        return {};
    }
}

void write(const std::string& path, const std::string& text) noexcept {
    try {
        replaceFile(path, text);
    } catch (const std::exception&) {
        unlink(path.c_str());
    }
}

// As its header tells. With a log beside it the header may tell of pages that are to come. It is
// read as SQLite has it open: another descriptor of the file would, when it is closed, take the
// locks of all connections that this process has.
std::int64_t lengthByHeader(const std::string& path) {
    sqlite3* handle = nullptr;
    const int code =
        sqlite3_open_v2(path.c_str(), &handle, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, nullptr);
    const std::unique_ptr<sqlite3, int (*)(sqlite3*)> closed(handle, sqlite3_close);
    sqlite3_file* file = nullptr;
    std::array<unsigned char, 32> header{};
    if (code != SQLITE_OK ||
        sqlite3_file_control(handle, nullptr, SQLITE_FCNTL_FILE_POINTER, &file) != SQLITE_OK ||
        file->pMethods->xRead(file, header.data(), header.size(), 0) != SQLITE_OK) {
        return 0;
    }
    const std::int64_t page = header[16] * 256 + header[17];
    std::int64_t pages = 0;
    for (std::size_t i = 28; i < 32; ++i) {
        pages = pages * 256 + header.at(i);
    }
    return pages * (page == 1 ? 65536 : page);
}

} // namespace

IndexFile indexFile(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return {};
    }
    return {static_cast<std::int64_t>(status.st_ino), status.st_size};
}

std::optional<std::int64_t> lengthBeforeCut(const std::string& path) {
    const IndexFile file = indexFile(path);
    if (file.inode < 0) {
        return std::nullopt;
    }
    const std::string mark = smallFile(path + soundMark);
    const auto marked = toNumber<std::int64_t>(mark.substr(0, mark.find(' ')));
    const bool isOfThis = mark.ends_with(" " + std::to_string(file.inode) + "\n");
    std::int64_t length = marked && (isOfThis || file.size == 0) ? *marked : 0;
    const bool hasLog = indexFile(path + "-wal").size > 0;
    if (file.size < headerSize) {
        // A new one gets its header before its log, and no number before it is all there.
        const bool wasMore = file.size > 0 || hasLog || lastNumberOf(path) > 0;
        length = std::max(length, wasMore ? headerSize : 0);
    } else if (!hasLog) {
        length = std::max(length, lengthByHeader(path));
    }
    return length > file.size ? std::optional(length) : std::nullopt;
}

bool hasMark(const std::string& path) {
    return !smallFile(path + soundMark).empty();
}

bool isAsMarked(const std::string& path) {
    return markText(path) == smallFile(path + soundMark);
}

void writeMark(const std::string& path) noexcept {
    write(path + soundMark, markText(path));
}

std::int64_t lastNumberOf(const std::string& path) {
    const std::string text = smallFile(path + lastNumberFile);
    return toNumber<std::int64_t>(text.substr(0, text.find('\n'))).value_or(0);
}

void keepLastNumber(const std::string& path, std::int64_t number) noexcept {
    if (number != lastNumberOf(path)) {
        write(path + lastNumberFile, std::to_string(number) + "\n");
    }
}

} // namespace manager
