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
    std::string encoding; ///< of the file, by iconv's name; empty for UTF-8
    bool gzipped = false;
};

/// The whole of a regular file. @throws DocumentError, also for one larger than `limit` bytes
std::string readFile(const std::filesystem::path& file, std::size_t limit);

/// @param limit of the text in bytes @throws DocumentError
Source decodeSource(std::string bytes, std::string_view name, std::size_t limit);

/// The bytes of `text` as the source had them. @throws DocumentError
std::string encodeText(std::string text, const Source& source, bool gzip, std::string_view name);

/// Replaces or creates a file: written beside, synced, renamed. Links to it stay. A pipe or a
/// character device is written to; nothing else that is no regular file is. @throws DocumentError
void writeFile(const std::filesystem::path& file, std::string_view bytes);

} // namespace host::svg
