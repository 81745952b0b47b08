// SPDX-License-Identifier: MIT
// Words the message of a document error, always on one line.
#include "host/documents/documenterror.h"

namespace host {
namespace {

std::string message(std::string_view file, std::string_view reason, std::size_t line,
                    std::size_t column) {
    std::string result(file);
    if (line != 0) {
        result += ':' + std::to_string(line) + ':' + std::to_string(column);
    }
    result += ": ";
    result += reason;
    for (char& c : result) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
            c = ' ';
        }
    }
    return result;
}

} // namespace

DocumentError::DocumentError(std::string_view file, std::string_view reason, std::size_t line,
                             std::size_t column)
    : std::runtime_error(message(file, reason, line, column)) {}

} // namespace host
