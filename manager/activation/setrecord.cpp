// SPDX-License-Identifier: MIT
// Field lines: a header, "set" with number, "active" and name, and a "file" line per file, or a
// "leaving" line for one that is to go; the version at its end is left out when it is not known.
#include "manager/activation/setrecord.h"

#include "faces/namekey.h"
#include "manager/library/error.h"
#include "manager/library/fields.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string_view>
#include <unistd.h>

namespace manager {

namespace {

constexpr std::string_view header = "glyphora-set 2";
constexpr std::string_view headerWithoutReasons = "glyphora-set 1";
constexpr std::size_t maximumLength = std::size_t{16} << 20U;

// A name that stays in its folder: nothing that a forged record lists may lead out of it.
bool isPlainName(std::string_view name) {
    return !name.empty() && name != "." && name != ".." &&
           name.find('/') == std::string_view::npos && name.find('\0') == std::string_view::npos;
}

bool readLine(std::string_view line, SetRecord& record) {
    const auto fields = splitFields(line);
    if (!fields) {
        return false;
    }
    const auto& parts = *fields;
    if (parts[0] == "set" && parts.size() == 4) {
        const auto id = toContainerId(parts[1]);
        if (!id || parts[2] != "active") {
            return false;
        }
        record.id = *id;
        record.name = parts[3];
        return true;
    }
    if (parts[0] == "reason") {
        const auto reason = reasonOf(parts);
        if (reason) {
            record.reasons.push_back(*reason);
        }
        return reason.has_value();
    }
    const bool leaving = parts[0] == "leaving";
    if ((leaving || parts[0] == "file") && (parts.size() == 6 || parts.size() == 7) &&
        isPlainName(parts[1])) {
        const auto size = toNumber<std::int64_t>(parts[3]);
        const auto changed = toNumber<std::int64_t>(parts[4]);
        const auto inode = toNumber<std::int64_t>(parts[5]);
        if (!size || !changed || !inode) {
            return false;
        }
        record.files.push_back({parts[1],
                                parts[2],
                                {*size, *changed, *inode},
                                leaving,
                                parts.size() == 7 ? parts[6] : std::string()});
        return true;
    }
    return false;
}

} // namespace

std::string recordText(const SetRecord& record) {
    std::string text(header);
    text += '\n';
    text += joinFields({"set", toText(record.id), "active", record.name});
    for (const Reason& reason : record.reasons) {
        text += reasonLine(reason);
    }
    for (const SetFile& file : record.files) {
        text += joinFields({file.leaving ? "leaving" : "file", file.name, file.source,
                            std::to_string(file.stamp.size), std::to_string(file.stamp.changed),
                            std::to_string(file.stamp.inode)});
        if (!file.version.empty()) {
            text.pop_back();
            text += '\t' + joinFields({file.version});
        }
    }
    return text;
}

std::string libraryFolder(const SetRecord& record) {
    return record.files.empty() ? std::string() : folderOf(record.files.front().source);
}

bool isSetOf(const SetRecord& record, std::string_view name, std::string_view folder) {
    // Case and blanks may change with the file that a family takes its name from.
    return faces::nameKey(record.name) == faces::nameKey(name) && libraryFolder(record) == folder;
}

SetChange changeOf(const SetRecord& before, const SetRecord& now) {
    const auto namesNotIn = [](const SetRecord& set, const SetRecord& other) {
        const FilesByName known(other);
        std::vector<std::string> names;
        for (const SetFile& file : set.files) {
            const SetFile* const twin = known.find(file.name);
            if (!file.leaving && (twin == nullptr || twin->leaving)) {
                names.push_back(file.name);
            }
        }
        return names;
    };
    SetChange change{changeOf(before.reasons, now.reasons), namesNotIn(now, before),
                     namesNotIn(before, now)};
    if (!change.addedFiles.empty() && !change.removedFiles.empty()) {
        change.addedFiles.clear();
        change.removedFiles.clear();
    }
    return change;
}

std::vector<ContainerId> setsIn(const std::string& root) {
    std::vector<ContainerId> ids;
    std::error_code code;
    for (std::filesystem::directory_iterator entry(root, code), end; !code && entry != end;
         entry.increment(code)) {
        if (const auto id = toContainerId(entry->path().filename().string())) {
            ids.push_back(*id);
        }
    }
    if (code) {
        throw systemError(root, "cannot be read", code.value());
    }
    std::sort(ids.begin(), ids.end());
    return ids;
}

std::optional<SetRecord> readSetRecord(const std::string& folder) {
    return readSetRecordFile(folder + "/" + setRecordName);
}

std::optional<SetRecord> readSetRecordFile(const std::string& path) {
    if (access(path.c_str(), F_OK) != 0 && (errno == ENOENT || errno == ENOTDIR)) {
        return std::nullopt;
    }
    const std::string text = readFile(path, maximumLength);
    const auto lines = splitLines(text);
    const bool knowsReasons = !lines.empty() && lines.front() == header;
    if (!knowsReasons && (lines.empty() || lines.front() != headerWithoutReasons)) {
        throw Error(path + ": line 1: expected \"" + std::string(header) + "\"");
    }
    SetRecord record;
    if (!knowsReasons) {
        record.reasons.push_back(Reason::byHand());
    }
    for (std::size_t i = 1; i < lines.size(); ++i) {
        if (!readLine(lines[i], record)) {
            throw Error(path + ": line " + std::to_string(i + 1) + ": not a line of a set record");
        }
    }
    if (record.id == ContainerId{}) {
        throw Error(path + ": line 2: the container is missing");
    }
    return record;
}

} // namespace manager
