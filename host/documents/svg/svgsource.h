// SPDX-License-Identifier: MIT
// The bytes of a drawing: from file to UTF-8 text and back, through gzip and other encodings.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace host::svg {

struct Source {
    std::string text;     ///< UTF-8, with the mark at its start if the file has one
    std::string file;     ///< as it was read; empty when that is the text
    std::string encoding; ///< of the file, by iconv's name; empty for UTF-8
    bool ascii = false;   ///< declared to be ASCII: nothing else may be written into it
    bool gzipped = false;

    /// Whether any character may be written into the text as it is.
    bool takesAll() const { return encoding.empty() && !ascii; }
    const std::string& asRead() const { return file.empty() ? text : file; }
};

/// The whole of a regular file. @throws DocumentError, also for one larger than `limit` bytes
std::string readFile(const std::filesystem::path& file, std::size_t limit);

/// @param limit of the text in bytes @throws DocumentError
Source decodeSource(std::string bytes, std::string_view name, std::size_t limit);

/// The bytes of an edited text in the source's encoding. Of characters that the encoding has twice,
/// as some have, the usual one is written. @throws DocumentError, also when a character would be
/// lost
std::string encodeText(std::string text, const Source& source, bool gzip, std::string_view name);

/// The file as it was read, packed if it was not and unpacked if it was. @throws DocumentError
std::string repack(const Source& source, std::string_view name);

/// Replaces or creates a file: written beside, synced, renamed. Links to it stay. A pipe or a
/// character device is written to; nothing else that is no regular file is. @throws DocumentError
void writeFile(const std::filesystem::path& file, std::string_view bytes);

} // namespace host::svg
