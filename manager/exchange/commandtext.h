// SPDX-License-Identifier: MIT
// The commands that come in. Their text looks like XML and is none: every line is an element of its
// own, `<name>value</name>`, nothing in a value is escaped, the header's element is closed at once
// and a lone closing tag ends the text. So it is read by lines.
#pragma once

#include "faces/face.h"
#include "manager/library/error.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace manager {

/// One `<font>` block. A text that is not there is nullopt; one that is there may be empty.
struct CommandFont {
    std::optional<std::string> syncId;
    std::optional<std::string> postScriptName;
    std::optional<faces::Technology> type; ///< nullopt: any
    std::optional<std::string> familyName;
    std::optional<std::string> styleName;
    std::optional<std::string> containerId;
};

enum class CommandKind { FontRequest, ActivationRequest, ShowRequest, BuyRequest, Unknown };

struct Command {
    CommandKind kind = CommandKind::Unknown;
    std::string word;
    std::optional<std::string> targetClass; ///< four bytes: the class of the events to send back
    std::optional<std::int32_t> targetPid;  ///< the process to send them to
    std::vector<CommandFont> fonts;
    std::vector<std::string> problems; ///< "command, line N: ..." per font that was passed over; at
                                       ///< most a hundred, then how many more there were
};

/// "command, line N: what is wrong". Lines count from 1.
class MalformedCommand : public Error {
public:
    MalformedCommand(std::size_t line, const std::string& what, std::string word)
        : Error("command, line " + std::to_string(line) + ": " + what), word_(std::move(word)) {}
    /// The command word as far as it was read; may be empty.
    [[nodiscard]] const std::string& word() const { return word_; }

private:
    std::string word_;
};

/// More would take too long to be answered while the sender waits.
constexpr std::size_t maximumFonts = 10'000;

/// Reads a command. Elements that are not known are passed over; of a command whose word is not
/// known only the word and the frame are looked at. A font that is malformed (a line feed in the
/// name of a document's font is enough) is passed over up to the next line that closes one, and
/// costs only itself unless its text holds such a line. So are those beyond maximumFonts, which is
/// told once. Throws MalformedCommand.
[[nodiscard]] Command parseCommand(std::string_view text);

/// The keyword of a type ("T1", "TT", "OT_T1", "OT_TT").
[[nodiscard]] std::string_view typeKeyword(faces::Technology type);

} // namespace manager
