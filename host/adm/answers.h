// SPDX-License-Identifier: MIT
// A script that answers dialogs: one command a line, for the innermost dialog that runs, or for the
// drawing once the plug-ins' dialogs for it have ended.
//
//   # a comment
//   select TEXT             select the first row that says TEXT, and no other
//   also TEXT               select one more
//   select none
//   choose TEXT             select the row whose text is exactly TEXT
//   expand TEXT             show the rows below the first that says TEXT
//   collapse TEXT           hide them
//   press N                 press button N
//   double-click TEXT       double-click the first row that says TEXT
//   wait for news [SECONDS] until rows have come or gone, or the dialog has ended
//   wait for end [SECONDS]  until the dialog has ended
//   undo                    take back what was replaced in the drawing
//   redo                    replace it again
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// A script cannot be read. what() is one line that names file and line.
class AnswersError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct Answer {
    enum class Kind : std::uint8_t {
        Select,
        Also,
        SelectNone,
        Choose,
        Expand,
        Collapse,
        Press,
        DoubleClick,
        WaitForNews,
        WaitForEnd,
        Undo,
        Redo
    };
    Kind kind;
    std::string text;        ///< what the row says; empty where it is about none
    std::int32_t number = 0; ///< of the item; of a wait its seconds
    std::string place;       ///< "FILE:LINE", for messages
};

/// Reads commands from a script's content. `file` is its name in messages. Throws AnswersError.
[[nodiscard]] std::vector<Answer> readAnswers(std::string_view content, std::string_view file);
/// Reads them from a file. Throws AnswersError, also when the file cannot be read.
[[nodiscard]] std::vector<Answer> readAnswers(const std::filesystem::path& file);

} // namespace host
