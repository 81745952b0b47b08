// SPDX-License-Identifier: MIT
// Answers commands: what the library holds of the fonts asked for, and activation.
#pragma once

#include "manager/activation/activation.h"
#include "manager/exchange/activationbatch.h"
#include "manager/exchange/standins.h"
#include "manager/library/library.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace manager {

/// A process that wants to hear of changes.
struct ChangeTarget {
    std::int32_t processId = 0;
    std::string eventClass = "FILC"; ///< four bytes
    bool operator==(const ChangeTarget&) const = default;
};

struct Answer {
    std::string reply;
    bool changed = false;               ///< what is active has changed: others are to be told
    std::optional<ChangeTarget> target; ///< whom the command named
    std::string word;                   ///< the command's word; empty when it was not read
    std::size_t fonts = 0;              ///< how many fonts the command named
    std::vector<std::string> done;      ///< a line for people per thing done
    std::vector<std::string> undecided; ///< and per font that nothing could be done for
    std::vector<std::string> problems;  ///< "PLACE: ..." per thing that failed; also in the reply
};

/// Answers one command text; never throws for what stands in it. Throws Error when the index cannot
/// be read (see failureReply).
///
/// fontRequest: a face in exactly one container is activated, and so is the only one of the
/// requested type; one in several is else reported with all of them and asks for the window; one in
/// none has count 0 and the requested type, or none. A font keeps the PostScript name that it was
/// asked for by. activationRequest: activates the container named; when there is none, it does not
/// hold the font or the font does not become visible, the best other one by PostScript name
/// (CandidateFinder::find tells which is best), and answers with that. Of a font that nobody holds
/// the whole container named tells whether activation succeeded; it is not active by that.
/// showRequest, buyRequest: tell what is held; whether anything is opened is the server's affair.
/// In all of them a font that the desktop shows already is active, whoever holds it, and is not
/// activated a second time.
///
/// One round of it: what is still to be activated is found in `run` afterwards, and counts as not
/// active in this answer. What is activated counts for the document of the process that a
/// fontRequest names, or of `sender`; when neither is known, as done by hand.
[[nodiscard]] Answer answerCommand(Library& library, const Activation& activation,
                                   StandIns& standIns, std::string_view command,
                                   std::optional<std::int32_t> sender, ActivationRun& run);

/// The same with all that is to be activated, however long it takes.
[[nodiscard]] Answer answerCommand(Library& library, Activation& activation,
                                   std::string_view command);

/// A reply that says only what went wrong.
[[nodiscard]] std::string failureReply(std::string_view word, std::string_view problem);

} // namespace manager
