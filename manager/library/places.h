// SPDX-License-Identifier: MIT
// Where the manager keeps its data, and a few steps with files that every part of it needs.
#pragma once

#include "manager/library/error.h"
#include "system/descriptor.h"

#include <chrono>
#include <string>
#include <string_view>

namespace manager {

/// The manager's places under one data folder; a plain value.
struct Places {
    std::string data; ///< $XDG_DATA_HOME: absolute, without a slash at its end

    /// $XDG_DATA_HOME when it is absolute, else ~/.local/share. Throws Error when neither is known.
    static Places fromEnvironment();

    [[nodiscard]] std::string own() const { return data + "/glyphora"; }
    [[nodiscard]] std::string database() const { return own() + "/library.db"; }
    [[nodiscard]] std::string folders() const { return own() + "/folders"; }
    [[nodiscard]] std::string scanLock() const { return own() + "/scan.lock"; }
    /// Copies of font files that were added by themselves.
    [[nodiscard]] std::string singleFonts() const { return own() + "/fonts"; }
    /// A link to a folder that goes when the user's session ends, of font files that were activated
    /// for it without being added; there once one was.
    [[nodiscard]] std::string sessionFonts() const { return own() + "/session-fonts"; }
    /// The folder that fontconfig sees; each container has a folder of its own in it.
    [[nodiscard]] std::string fonts() const { return data + "/fonts/glyphora"; }
};

/// Makes the folder and those above it. Throws Error.
void makeFolders(const std::string& path);

/// Writes a file of this text, replacing one there. Throws Error; not synced.
void writeFile(const std::string& path, std::string_view text);

/// Replaces the file by `text` at one stroke, as sys::replaceFile does. Throws Error and leaves the
/// old file as it was.
void replaceFile(const std::string& path, std::string_view text, std::string_view aside = {});

/// The whole file. Throws Error; a file above `limit` bytes is one.
[[nodiscard]] std::string readFile(const std::string& path, std::size_t limit);

/// Syncs a folder's entries to the disk. Throws Error.
void syncFolder(const std::string& path);
/// Syncs a file's contents to the disk. Throws Error.
void syncFile(const std::string& path);

/// " by PROGRAM (PROCESS)" of another process that holds a lock on the file; empty when there is
/// none or it cannot be told. The file is not opened.
[[nodiscard]] std::string lockHolder(const std::string& path);

/// "PATH: is locked by ..."; `holder` as of lockHolder().
[[nodiscard]] Locked lockedError(const std::string& path, const std::string& holder,
                                 std::chrono::milliseconds patience);

/// How long a lock is waited for that others hold for a moment only.
constexpr std::chrono::seconds lockPatience{10};

/// Holds an exclusive lock on a file (made when missing) while it lives. Waits for other holders up
/// to `patience`. Throws Error; Locked, which names the holder, when it could not be had in time;
/// Cancelled (see checkCancelled).
class FileLock {
public:
    explicit FileLock(const std::string& path, std::chrono::milliseconds patience = lockPatience);

private:
    sys::Descriptor file_;
};

/// Whether an absolute path is the folder itself or lies in it, by their names.
[[nodiscard]] bool liesUnder(std::string_view path, std::string_view folder);

/// The path of `name` in an absolute folder.
[[nodiscard]] std::string joinPath(std::string_view folder, std::string_view name);

/// The folder part and the last part of an absolute path.
[[nodiscard]] std::string folderOf(std::string_view path);
[[nodiscard]] std::string nameOf(std::string_view path);

} // namespace manager
