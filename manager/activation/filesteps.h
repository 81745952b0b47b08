// SPDX-License-Identifier: MIT
// Steps on disk that sets are made of, with their errors turned into exceptions.
#pragma once

#include <string>

namespace manager {

/// Whether anything has this name; links are not followed.
[[nodiscard]] bool exists(const std::string& path);
/// Whether it is a folder itself, not a link to one.
[[nodiscard]] bool isFolder(const std::string& path);

/// Removes a file; one that is not there is no error. Throws Error.
void removeFile(const std::string& path);
/// Removes a folder and all in it; one that is not there is no error. Throws Error.
void removeTree(const std::string& path);

/// Makes `target` a copy of the file behind `source`; where the file system can, one that shares
/// its blocks until one of the two is written to. Never a link: what writes to an active font must
/// not reach the library, and symbolic links stay listed after their target went. Replaces what
/// lies at `target`; not synced. Throws Error, and then leaves nothing there.
void cloneOrCopy(const std::string& source, const std::string& target);

/// Gives a folder the present time, to the nanosecond. What the kernel writes counts in ticks, so
/// that a cache made between two changes of one tick would be believed for good. One that is not
/// there is no error.
void touchFolder(const std::string& path);

/// Takes the name `target` without replacing what may have come there meanwhile. False, with errno
/// set: it did not.
[[nodiscard]] bool renameToFree(const std::string& source, const std::string& target);

} // namespace manager
