// SPDX-License-Identifier: MIT
// What the answers to the four commands have in common.
#pragma once

#include "manager/exchange/candidates.h"
#include "manager/exchange/commandtext.h"
#include "manager/exchange/exchange.h"
#include "manager/exchange/findings.h"
#include "manager/exchange/replytext.h"

#include <chrono>
#include <string>
#include <vector>

namespace manager {

/// One round of answering a command.
struct Round {
    using Clock = std::chrono::steady_clock;

    /// Whether nobody has to activate the font.
    [[nodiscard]] static bool isShown(const Found& found);
    /// What others have had activated of it is to stay for this command, too.
    void keepShown(const Found& found);
    /// The font's own file in a container; empty: it is not known. `candidates` are those that hold
    /// the font. Throws Error when the index cannot be read.
    [[nodiscard]] std::string fileIn(ContainerId id, const CommandFont& font,
                                     const std::vector<Candidate>& candidates) const;

    [[nodiscard]] bool isLate() const { return Clock::now() >= deadline; }
    /// Whether there is no time left to look up the next font, which then counts as late.
    [[nodiscard]] bool passOver();

    Library& library;
    const Activation& activation;
    const Command& command;
    ActivationRun& run;
    Answer& answer;
    CandidateFinder finder{library, activation};
    ReplyText reply{command.word};
    Clock::time_point deadline = Clock::now() + run.lookUpTime(); ///< of looking up
    std::size_t late = 0; ///< the last fonts, which came behind it
};

/// Activates what the command names, and writes what came of it. Throws Error when the index cannot
/// be read.
void answerActivationRequest(Round& round);

} // namespace manager
