// SPDX-License-Identifier: MIT
// Digests, and what is told from them.
#include "manager/library/samefile.h"

#include "manager/library/cancel.h"
#include "manager/library/places.h"
#include "manager/library/walk.h"

#include <array>
#include <chrono>
#include <fcntl.h>
#include <glib.h>
#include <memory>
#include <unistd.h>

namespace manager {

namespace {

struct ChecksumFree {
    void operator()(GChecksum* checksum) const { g_checksum_free(checksum); }
};

/// Of all bytes; empty when they cannot be read.
std::string digestOf(const std::string& path) {
    const sys::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    const std::unique_ptr<GChecksum, ChecksumFree> checksum(g_checksum_new(G_CHECKSUM_SHA256));
    std::array<unsigned char, 65536> block{};
    ssize_t count = -1;
    while (file && (count = read(file.get(), block.data(), block.size())) > 0) {
        g_checksum_update(checksum.get(), block.data(), count);
    }
    if (count != 0) {
        return {};
    }
    std::array<unsigned char, 32> digest{};
    gsize size = digest.size();
    g_checksum_get_digest(checksum.get(), digest.data(), &size);
    return {reinterpret_cast<const char*>(digest.data()), size};
}

struct Alike {
    std::int64_t id = 0;
    std::string path;
    FileStamp stamp;
};

std::vector<Alike> alikeWithoutDigest(Database& database) {
    Statement read(database,
                   "SELECT file.id, directory.path, file.name, file.size, file.changed, file.inode "
                   "FROM file JOIN directory ON directory.id = file.directory "
                   "JOIN (SELECT size, digest FROM file WHERE container IS NOT NULL "
                   "GROUP BY size, digest HAVING min(inode) <> max(inode)) AS alike "
                   "ON alike.size = file.size AND alike.digest = file.digest "
                   "WHERE file.whole IS NULL AND file.container IS NOT NULL "
                   "AND directory.away = 0");
    std::vector<Alike> files;
    while (read.step()) {
        files.push_back({read.number(0),
                         joinPath(read.text(1), read.text(2)),
                         {read.number(3), read.number(4), read.number(5)}});
    }
    return files;
}

} // namespace

bool MetFiles::isNew(const FaceMatch& face) {
    const bool isNew =
        met_.insert("link " + std::to_string(face.stamp.inode) + " " +
                    std::to_string(face.stamp.changed) + " " + std::to_string(face.stamp.size))
            .second;
    return (face.whole.empty() || met_.insert("copy " + face.whole).second) && isNew;
}

bool haveSameBytes(const FaceMatch& a, const FaceMatch& b) {
    MetFiles met;
    return met.isNew(a) && !met.isNew(b);
}

void digestAlike(Database& database,
                 const std::function<void(std::size_t done, std::size_t total)>& progress) {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds portionTime{700}; // what a process that is ended may lose
    Statement write(database, "UPDATE file SET whole = ? WHERE id = ?");
    std::vector<std::pair<std::int64_t, std::string>> portion;
    auto begun = Clock::now();
    const auto writePortion = [&] {
        Transaction transaction(database);
        for (const auto& [id, digest] : portion) {
            write.bindBlob(1, digest).bind(2, id).run();
        }
        transaction.commit();
        portion.clear();
        begun = Clock::now();
    };
    const std::vector<Alike> files = alikeWithoutDigest(database);
    for (const Alike& file : files) {
        progress(static_cast<std::size_t>(&file - files.data()), files.size());
        try {
            checkCancelled();
        } catch (const Cancelled&) {
            writePortion();
            throw;
        }
        std::string digest = digestOf(file.path);
        try {
            if (!digest.empty() && stampOf(file.path) == file.stamp) {
                portion.emplace_back(file.id, std::move(digest));
            }
        } catch (const Error&) { // NOLINT(bugprone-empty-catch): it has gone
        }
        if (Clock::now() - begun > portionTime) {
            writePortion();
        }
    }
    if (!portion.empty()) {
        writePortion();
    }
}

std::vector<std::vector<FileCopy>> Library::duplicates() {
    Statement statement(
        database_,
        "SELECT directory.path, file.name, file.container, file.size, file.inode, file.whole "
        "FROM file JOIN directory ON directory.id = file.directory "
        "WHERE file.whole IN (SELECT whole FROM file WHERE whole IS NOT NULL GROUP BY whole "
        "HAVING count(*) > 1) AND directory.away = 0 "
        "ORDER BY file.size DESC, file.whole, directory.path, file.name");
    std::vector<std::vector<FileCopy>> alike;
    std::string whole;
    std::unordered_set<std::int64_t> inodes;
    while (statement.step()) {
        if (alike.empty() || statement.view(5) != whole) {
            whole = statement.text(5);
            alike.emplace_back();
            inodes.clear();
        }
        if (inodes.insert(statement.number(4)).second) {
            alike.back().push_back({joinPath(statement.text(0), statement.text(1)),
                                    static_cast<ContainerId>(statement.number(2)),
                                    statement.number(3)});
        }
    }
    std::erase_if(alike, [](const auto& copies) { return copies.size() < 2; });
    return alike;
}

} // namespace manager
