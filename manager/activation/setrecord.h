// SPDX-License-Identifier: MIT
// The record that lies in the folder of an active container: which files there are the manager's.
// It is the journal as well: what it lists is to be there. A set that is to go loses it first.
#pragma once

#include "manager/activation/reason.h"
#include "manager/library/library.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace manager {

/// Begins with a dot, so that fontconfig passes it over.
constexpr const char* setRecordName = ".glyphora-set";

struct SetFile {
    std::string name;     ///< in the set's folder
    std::string source;   ///< in the library
    FileStamp stamp;      ///< of the source when it was taken; all 0 while it is being replaced
    bool leaving = false; ///< no longer wanted; it may have gone already
    /// Of its first face; empty: not known. It is for people, and tells no two files apart.
    std::string version = {};
    /// Names of files of the set that it takes the place of, in an update; not kept.
    std::vector<std::string> predecessors = {};
    bool operator==(const SetFile& other) const {
        return name == other.name && source == other.source && stamp == other.stamp &&
               leaving == other.leaving;
    }
};

struct SetRecord {
    ContainerId id{};
    std::string name; ///< the container's, for people
    std::vector<SetFile> files;
    /// What it is active for. It is active until it is taken away, though: a set without a reason
    /// is one that is due.
    std::vector<Reason> reasons = {};
    bool operator==(const SetRecord&) const = default;
};

/// What has become of a set.
struct SetChange {
    ReasonChange reasons = {};
    std::vector<std::string> addedFiles = {}; ///< names, and so the others
    std::vector<std::string> removedFiles = {};
    [[nodiscard]] bool isEmpty() const {
        return reasons.isEmpty() && addedFiles.empty() && removedFiles.empty();
    }
    bool operator==(const SetChange&) const = default;
};
/// What lies between two states of a set; one that has files in the place of others has no change
/// of files.
[[nodiscard]] SetChange changeOf(const SetRecord& before, const SetRecord& now);

/// The files of a record by name. Refers to them.
class FilesByName {
public:
    explicit FilesByName(const SetRecord& record) : FilesByName(record.files) {}
    explicit FilesByName(const std::vector<SetFile>& files) {
        for (const SetFile& file : files) {
            files_.emplace(file.name, &file);
        }
    }
    /// nullptr: it has none of this name.
    [[nodiscard]] const SetFile* find(std::string_view name) const {
        const auto position = files_.find(name);
        return position == files_.end() ? nullptr : position->second;
    }

private:
    std::unordered_map<std::string_view, const SetFile*> files_;
};

/// The folder of the library that the set's files come from; empty when it has none.
[[nodiscard]] std::string libraryFolder(const SetRecord& record);
/// Whether the set is that of the container of this name in this folder of the library. Its number
/// does not tell: numbers begin anew with a new index.
[[nodiscard]] bool isSetOf(const SetRecord& record, std::string_view name, std::string_view folder);

/// The numbers of the sets in the folder of all sets, in order. Throws Error.
[[nodiscard]] std::vector<ContainerId> setsIn(const std::string& root);
/// The record of the set in `folder`; nullopt when there is none. Throws Error (file, line).
[[nodiscard]] std::optional<SetRecord> readSetRecord(const std::string& folder);
/// The same from a file of any name.
[[nodiscard]] std::optional<SetRecord> readSetRecordFile(const std::string& path);
/// The contents of a record's file. A record of a version that knew no reasons was made by hand.
[[nodiscard]] std::string recordText(const SetRecord& record);

} // namespace manager
