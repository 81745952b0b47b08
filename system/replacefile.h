// SPDX-License-Identifier: MIT
// Replaces a file at one stroke: it is written aside, synced, and then takes the old one's name.
// Whoever opens it finds the old file or the new one whole, after a crash as well. It costs what a
// rename costs: other hard links keep the old file, and the new one belongs to whoever writes
// it.
#pragma once

#include <string>
#include <string_view>

namespace sys {

/// Replaces `file`, or makes it; of a symbolic link, what it leads to. The rights of an old file
/// are kept; the umask decides those of a new one. It is written under a name that begins with
/// `aside`, on the same file system, or beside the file when that is empty. Throws
/// std::system_error, whose text begins with the file's path, and leaves the old file and nothing
/// else; only when the folder cannot be synced the file has been replaced all the same.
void replaceFile(const std::string& file, std::string_view bytes, std::string_view aside = {});

/// Syncs a folder's entries to the disk, where it can be read and the file system knows how. Throws
/// std::system_error, whose text begins with the folder's path.
void syncFolder(const std::string& folder);

} // namespace sys
