// SPDX-License-Identifier: MIT
// Field lines of time (seconds since 1970), kind of deed, text. One write for the
// entries of one occasion, so that those of several processes do not mix.
#include "manager/cli/history.h"

#include "manager/cli/report.h"
#include "manager/library/error.h"
#include "manager/library/fields.h"
#include "system/cuttext.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace manager {

namespace {

constexpr std::array<std::string_view, deedCount> deedNames = {"started",   "asked",  "done",
                                                               "undecided", "failed", "stopped"};
constexpr std::size_t maximumOfADeed = 100; // of one occasion
constexpr off_t maximumSize = off_t{1} << 20U;
constexpr std::size_t maximumText = 1024; // of an entry, in bytes
constexpr std::string_view cutMark = " [...]";
// What a file may have become before there was a maximum.
constexpr off_t readableSize = off_t{16} << 20U;

std::string historyPath(const Places& places) {
    return places.own() + "/history";
}

using BreakDown = std::tm*(const std::time_t*, std::tm*);

bool isFullWith(const std::string& path, std::size_t more) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && status.st_size != 0 &&
           status.st_size + static_cast<off_t>(more) > maximumSize;
}

/// The text, or its beginning with a mark; no character of UTF-8 is cut in two.
std::string bounded(std::string_view text) {
    if (text.size() <= maximumText) {
        return std::string(text);
    }
    return std::string(sys::cutText(text, maximumText - cutMark.size())).append(cutMark);
}

/// The end of a file, from a whole line on when it is too long to be read.
std::string lastPart(const std::string& path) {
    const sys::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file || fstat(file.get(), &status) != 0) {
        throw systemError(path, "cannot be read", errno);
    }
    const off_t begin = std::max<off_t>(0, status.st_size - readableSize);
    std::string text(static_cast<std::size_t>(status.st_size - begin), '\0');
    std::size_t length = 0;
    while (length < text.size()) {
        const ssize_t count = pread(file.get(), text.data() + length, text.size() - length,
                                    begin + static_cast<off_t>(length));
        if (count < 0 && errno != EINTR) {
            throw systemError(path, "cannot be read", errno);
        }
        if (count == 0) {
            break;
        }
        length += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    text.resize(length);
    return begin == 0 ? text : text.substr(std::min(text.find('\n'), text.size() - 1) + 1);
}

void putAside(const std::string& path, std::size_t more) {
    try {
        const FileLock lock(path + ".lock", std::chrono::milliseconds(0));
        if (isFullWith(path, more)) { // or another process was quicker, and the file is a new one
            static_cast<void>(rename(path.c_str(), (path + ".old").c_str()));
        }
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): it grows on, or another does it
    }
}

std::string timeText(std::int64_t seconds, BreakDown* breakDown, const char* format) {
    const auto time = static_cast<std::time_t>(seconds);
    std::tm parts{};
    std::array<char, 32> text{};
    if (breakDown(&time, &parts) == nullptr ||
        std::strftime(text.data(), text.size(), format, &parts) == 0) {
        return std::to_string(seconds);
    }
    return text.data();
}

} // namespace

void recordDeed(const Places& places, Deed deed, std::string_view text) {
    const HistoryEntry entry{deed, std::string(text)};
    recordDeeds(places, std::span(&entry, 1));
}

void recordDeeds(const Places& places, std::span<const HistoryEntry> entries) {
    const std::string now = std::to_string(std::time(nullptr));
    std::string lines;
    for (const auto& [deed, text] : entries) {
        lines += joinFields({now, deedNames[static_cast<std::size_t>(deed)], bounded(text)});
    }
    const std::string path = historyPath(places);
    if (isFullWith(path, lines.size())) {
        putAside(path, lines.size());
    }
    const sys::Descriptor file(
        open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (file && write(file.get(), lines.data(), lines.size()) < 0) {
        return;
    }
}

void Occasion::add(Deed deed, const std::string& text, bool aloud) {
    Count& count = counts_[static_cast<std::size_t>(deed)];
    if (++count.all > maximumOfADeed) {
        count.areMoreAloud = count.areMoreAloud || aloud;
        return;
    }
    entries_.push_back({deed, bounded(text)});
    if (aloud) {
        warn(entries_.back().text);
    }
}

void Occasion::write(const Places& places) {
    if (!entries_.empty()) {
        recordDeeds(places, std::exchange(entries_, {}));
    }
}

void Occasion::record(const Places& places) {
    for (std::size_t i = 0; i < deedCount; ++i) {
        const Count count = std::exchange(counts_[i], {});
        if (count.all > maximumOfADeed) {
            const std::string rest = "and " + std::to_string(count.all - maximumOfADeed) + " more";
            entries_.push_back({static_cast<Deed>(i), rest});
            if (count.areMoreAloud) {
                warn(rest);
            }
        }
    }
    write(places);
}

std::vector<PastDeed> readHistory(const Places& places, bool all) {
    std::string text;
    for (const char* part : {".old", ""}) {
        const std::string path = historyPath(places) + part;
        if (access(path.c_str(), F_OK) == 0) {
            text += lastPart(path);
        }
    }
    std::vector<PastDeed> entries;
    for (const std::string_view line : splitLines(text)) {
        auto fields = splitFields(line);
        const auto seconds =
            fields && fields->size() == 3 ? toNumber<std::int64_t>((*fields)[0]) : std::nullopt;
        if (!seconds) {
            continue; // cut off by a full disk or a crash
        }
        if ((*fields)[1] == "started" && !all) {
            entries.clear();
        }
        entries.push_back({*seconds, std::move((*fields)[1]), bounded((*fields)[2])});
    }
    return entries;
}

std::string lineText(const PastDeed& entry) {
    return timeText(entry.seconds, localtime_r, "%Y-%m-%d %H:%M:%S") +
           (entry.deed == deedNames[static_cast<std::size_t>(Deed::Failed)] ? "  failed: " : "  ") +
           entry.text;
}

std::string isoTime(std::int64_t seconds) {
    return timeText(seconds, gmtime_r, "%Y-%m-%dT%H:%M:%SZ");
}

} // namespace manager
