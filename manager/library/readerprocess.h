// SPDX-License-Identifier: MIT
// A process of its own that reads font files, with limits, and dies of those that are made to kill.
#pragma once

#include "manager/library/fontreader.h"
#include "system/descriptor.h"

#include <chrono>
#include <cstddef>
#include <deque>
#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace manager {

/// Files stand in its line by their positions. Killed with its owner.
class ReaderProcess {
public:
    using Clock = std::chrono::steady_clock;

    /// `memory` in bytes; `read` is called in the process. Throws Error.
    ReaderProcess(std::size_t memory, const FontFileFunction& read);
    ReaderProcess(const ReaderProcess&) = delete;
    ReaderProcess& operator=(const ReaderProcess&) = delete;
    ~ReaderProcess() { end(); }

    /// Whether it can be given more without waiting: what it has not taken up yet has to fit into
    /// the socket.
    [[nodiscard]] bool hasRoom() const {
        return waiting_.empty() ||
               (waiting_.size() < maximumWaiting && waitingBytes_ < maximumWaitingBytes);
    }
    /// Whether it will soon have nothing to do.
    [[nodiscard]] bool isLow() const { return waiting_.size() <= maximumWaiting / 2; }
    [[nodiscard]] bool isIdle() const { return waiting_.empty(); }
    /// When the file that it is at is to be read.
    [[nodiscard]] Clock::time_point deadline() const { return deadline_; }
    /// To be read from when answers come.
    [[nodiscard]] int socket() const { return socket_.get(); }

    /// Puts a file last in its line.
    void add(std::size_t position, const std::string& path);
    /// Sends what was added. A reader that is gone is noticed by receive().
    void flush(Clock::time_point deadline);
    /// Takes what has come, an outcome for each file from the first in line on. `gone` is set when
    /// there will be no more.
    std::vector<std::pair<std::size_t, FontFileOutcome>> receive(Clock::time_point deadline,
                                                                 bool& gone);
    /// The files that it was given and has not answered; the first is the one that it is at.
    [[nodiscard]] std::vector<std::size_t> unanswered() const;

    /// How a reader came to its end.
    struct Ending {
        std::string text;       ///< " (the signal)", or empty
        bool ofTheFile = false; ///< the file did it, and would do it again
    };
    /// Kills the process unless it has ended by itself.
    Ending end();

private:
    // Enough to hide the way there and back. What waits here is not given to a reader that is idle.
    static constexpr std::size_t maximumWaiting = 16;
    static constexpr std::size_t maximumWaitingBytes = 16384;

    struct Waiting {
        std::size_t position;
        std::size_t bytes;
    };

    std::size_t pop();

    sys::Descriptor socket_;
    pid_t process_ = -1;
    std::deque<Waiting> waiting_;
    std::size_t waitingBytes_ = 0;
    std::string unsent_;
    bool fresh_ = false;         ///< the first that waits has not been sent
    Clock::time_point deadline_; ///< for the first that waits
    std::string answers_;        ///< begun and not complete
    bool ended_ = false;
};

} // namespace manager
