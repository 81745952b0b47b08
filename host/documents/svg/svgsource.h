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

/// The whole of a regular file. Throws DocumentError, also for one larger than `limit` bytes.
[[nodiscard]] std::string readFile(const std::filesystem::path& file, std::size_t limit);

/// Throws DocumentError when the bytes are no text, or one of more than `limit` bytes.
[[nodiscard]] Source decodeSource(std::string bytes, std::string_view name, std::size_t limit);

/// The bytes of an edited text in the source's encoding. Of characters that the encoding has twice,
/// as some have, the usual one is written. Throws DocumentError when a character would be lost.
[[nodiscard]] std::string encodeText(std::string text, const Source& source, bool gzip,
                                     std::string_view name);

/// The file as it was read, packed if it was not and unpacked if it was. Throws DocumentError
/// when it cannot.
[[nodiscard]] std::string repack(const Source& source, std::string_view name);

/// Replaces or creates a file: written beside, synced, renamed. Links to it stay. A pipe, a
/// character device or an open descriptor ("/dev/fd/5") is written to; nothing else that is no
/// regular file is. Throws DocumentError when it cannot.
void writeFile(const std::filesystem::path& file, std::string_view bytes);

} // namespace host::svg
