// SPDX-License-Identifier: MIT
// The one exception of the document model: a document cannot be read or written.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace host {

/// what() is one line: "FILE:LINE:COLUMN: reason", or "FILE: reason" when no place is known.
class DocumentError : public std::runtime_error {
public:
    /// `line` and `column` count from 1, the column in bytes; line 0 means the whole file.
    DocumentError(std::string_view file, std::string_view reason, std::size_t line = 0,
                  std::size_t column = 0);
};

} // namespace host
