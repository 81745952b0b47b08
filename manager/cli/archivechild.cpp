// SPDX-License-Identifier: MIT
#include "manager/cli/archivechild.h"

#include "manager/cli/archivenames.h"
#include "manager/library/fields.h"
#include "system/child.h"

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace manager {

namespace {

constexpr std::int64_t longestText = 1 << 20;
constexpr std::size_t blockSize = 65536;

/// What is wrong with the archive, after an entry's name.
class Unreadable : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct ArchiveDeleter {
    void operator()(archive* opened) const { archive_read_free(opened); }
};

void writeAll(int output, const char* bytes, std::size_t size) {
    while (size != 0) {
        const ssize_t count = write(output, bytes, size);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            _exit(EXIT_FAILURE); // nobody listens any more
        }
        bytes += count;
        size -= static_cast<std::size_t>(count);
    }
}

class Reading {
public:
    Reading(int file, int output, const ArchiveLimits& limits)
        : output_(output), limits_(limits), archive_(archive_read_new()) {
        if (!archive_) {
            throw std::bad_alloc();
        }
        archive* const opened = archive_.get();
        archive_read_support_filter_bzip2(opened);
        archive_read_support_filter_gzip(opened);
        archive_read_support_filter_xz(opened);
        archive_read_support_filter_zstd(opened);
        archive_read_support_format_7zip(opened);
        archive_read_support_format_tar(opened);
        // With its directory, which stands at its end: without, a truncated one seems to be whole.
        archive_read_support_format_zip_seekable(opened);
        if (archive_read_open_fd(opened, file, blockSize) != ARCHIVE_OK) {
            fail();
        }
    }

    void run() {
        for (std::size_t count = 0;; ++count) {
            archive_entry* entry = nullptr;
            entryName_.clear();
            const int code = archive_read_next_header(archive_.get(), &entry);
            if (code == ARCHIVE_EOF) {
                checkEnd();
                break;
            }
            if (code != ARCHIVE_OK && code != ARCHIVE_WARN) { // names in an unknown encoding
                fail();
            }
            if (count == limits_.entries) {
                throw Unreadable("more than " + std::to_string(limits_.entries) + " entries");
            }
            look(entry);
        }
        say(ArchiveSays::End, {});
    }

    [[nodiscard]] std::string place() const {
        return entryName_.empty() ? std::string() : entryName_ + ": ";
    }

    void say(ArchiveSays kind, std::string_view bytes) const {
        const ArchiveMessage message{kind, static_cast<std::uint32_t>(bytes.size())};
        writeAll(output_, reinterpret_cast<const char*>(&message), sizeof message);
        writeAll(output_, bytes.data(), bytes.size());
    }

private:
    [[noreturn]] void fail() const {
        const char* const text = archive_error_string(archive_.get());
        throw Unreadable((entryName_.empty() ? std::string("no archive that is whole: ")
                                             : std::string("cannot be read: ")) +
                         (text == nullptr ? "it cannot be read" : text));
    }

    // A tape archive that is cut between two entries is told from a whole one by its end alone.
    void checkEnd() const {
        archive* const opened = archive_.get();
        if ((archive_format(opened) & ARCHIVE_FORMAT_BASE_MASK) == ARCHIVE_FORMAT_TAR &&
            archive_filter_bytes(opened, 0) == archive_read_header_position(opened)) {
            throw Unreadable("no archive that is whole: its end is missing");
        }
    }

    void passOver(const std::string& why) const {
        std::string fields = joinFields({entryName_, why});
        fields.pop_back();
        say(ArchiveSays::PassOver, fields);
    }

    void look(archive_entry* entry) {
        const char* name = archive_entry_pathname_utf8(entry);
        if (name == nullptr) {
            name = archive_entry_pathname(entry);
        }
        entryName_ = name == nullptr ? "" : name;
        if (entryName_.size() > maximumArchiveMessage / 4) {
            entryName_.clear();
            throw Unreadable("an entry's name is too long");
        }
        const EntryPlace place = placeOf(entryName_);
        const bool isFile = archive_entry_filetype(entry) == AE_IFREG;
        if (place.kind == EntryKind::Other || archive_entry_filetype(entry) == AE_IFDIR) {
            return;
        }
        if (!place.problem.empty()) {
            passOver(place.problem);
        } else if (!isFile || archive_entry_hardlink(entry) != nullptr) {
            passOver("it is a link or no file");
        } else if (place.kind == EntryKind::Archive) {
            passOver("archives in archives are not looked into");
        } else if (archive_entry_is_encrypted(entry) != 0) {
            throw Unreadable("encrypted");
        } else if (place.kind == EntryKind::Text && archive_entry_size(entry) > longestText) {
            passOver("it is too long for a text");
        } else {
            readFile(place.kind);
        }
    }

    void readFile(EntryKind kind) {
        say(ArchiveSays::Begin, entryName_);
        std::int64_t size = 0;
        for (;;) {
            const la_ssize_t count = archive_read_data(archive_.get(), block_, sizeof block_);
            if (count == 0) {
                return;
            }
            if (count < 0) {
                fail();
            }
            size += count;
            if (size > (kind == EntryKind::Text ? longestText : limits_.fileBytes)) {
                throw Unreadable("larger than it may be");
            }
            say(ArchiveSays::Bytes, {block_, static_cast<std::size_t>(count)});
        }
    }

    int output_;
    const ArchiveLimits& limits_;
    std::unique_ptr<archive, ArchiveDeleter> archive_;
    std::string entryName_;
    char block_[blockSize]{};
};

} // namespace

void runArchiveChild(int file, int output, const ArchiveLimits& limits) {
    std::signal(SIGINT, SIG_IGN); // whoever listens decides
    sys::limitThisProcess(limits.memory);
    sys::allowProcessorTime(limits.seconds);
    const rlimit none{0, 0};
    setrlimit(RLIMIT_FSIZE, &none);
    std::setlocale(LC_CTYPE, "C.UTF-8"); // for names; before no more files can be opened
// A sanitizer opens pipes to look at memory.
#ifndef __SANITIZE_ADDRESS__
    const rlimit few{static_cast<rlim_t>(std::max(file, output)) + 1,
                     static_cast<rlim_t>(std::max(file, output)) + 1};
    setrlimit(RLIMIT_NOFILE, &few);
#endif
    const auto tell = [output](const std::string& what) {
        const ArchiveMessage message{ArchiveSays::Fail, static_cast<std::uint32_t>(what.size())};
        writeAll(output, reinterpret_cast<const char*>(&message), sizeof message);
        writeAll(output, what.data(), what.size());
    };
    std::unique_ptr<Reading> reading;
    try {
        reading = std::make_unique<Reading>(file, output, limits);
        reading->run();
    } catch (const std::bad_alloc&) {
        tell("reading it takes too much memory");
    } catch (const std::exception& error) {
        tell((reading ? reading->place() : std::string()) + error.what());
    }
    _exit(EXIT_SUCCESS);
}

} // namespace manager
