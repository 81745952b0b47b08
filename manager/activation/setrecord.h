// SPDX-License-Identifier: MIT
// The record that lies in the folder of an active container: which files there are the manager's.
// It is the journal as well: what it lists is to be there, and a set marked as leaving is to go.
#pragma once

#include "manager/library/library.h"

#include <optional>
#include <string>
#include <vector>

namespace manager {

/// Begins with a dot, so that fontconfig passes it over.
constexpr const char* setRecordName = ".glyphora-set";

struct SetFile {
    std::string name;     ///< in the set's folder
    std::string source;   ///< in the library
    FileStamp stamp;      ///< of the source when it was taken
    bool leaving = false; ///< no longer wanted; it may have gone already
    bool operator==(const SetFile&) const = default;
};

enum class SetState { active, leaving };

struct SetRecord {
    ContainerId id{};
    std::string name; ///< the container's, for people
    SetState state = SetState::active;
    std::vector<SetFile> files;
    bool operator==(const SetRecord&) const = default;
};

/// The record of the set in `folder`; nullopt when there is none. Throws Error (file, line).
std::optional<SetRecord> readSetRecord(const std::string& folder);

/// Replaces the record atomically. Throws Error.
void replaceSetRecord(const std::string& folder, const SetRecord& record);
/// Writes the record of a folder that is not in place yet, unsynced. Throws Error.
void writeSetRecord(const std::string& folder, const SetRecord& record);

} // namespace manager
