// SPDX-License-Identifier: MIT
// Sharing the files among the reading processes.
#include "manager/library/fontreader.h"

#include "manager/library/cancel.h"
#include "manager/library/readerprocess.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <numeric>
#include <poll.h>
#include <utility>
#include <vector>

namespace manager {

namespace {

using Clock = ReaderProcess::Clock;

/// Hands the files out and gathers the answers.
class Round {
public:
    Round(std::span<const std::string> paths, const FontReaderLimits& limits,
          const FontFileReceiver& receive, const FontFileFunction& read)
        : paths_(paths), limits_(limits), receive_(receive), read_(read),
          readers_(std::min<std::size_t>(std::max(1U, limits.processes), paths.size())) {}

    void run() {
        for (auto& reader : readers_) {
            reader = std::make_unique<ReaderProcess>(limits_.memory, read_);
        }
        do {
            checkCancelled();
            giveAll();
        } while (wait());
    }

private:
    using ReaderSlot = std::unique_ptr<ReaderProcess>;

    [[nodiscard]] bool hasNext(std::size_t end) const {
        return !again_.empty() || next_ < std::min(end, paths_.size());
    }

    // Whoever takes the outcomes in the order of the paths keeps those that come before their turn.
    [[nodiscard]] std::size_t endOfGiving() const {
        std::size_t first = next_;
        const auto look = [&](const auto& positions) {
            first = std::accumulate(positions.begin(), positions.end(), first,
                                    [](auto a, auto b) { return std::min(a, b); });
        };
        look(again_);
        for (const auto& reader : readers_) {
            look(reader->unanswered());
        }
        return first + limits_.ahead;
    }

    std::size_t takeNext() {
        if (again_.empty()) {
            return next_++;
        }
        const std::size_t position = again_.front();
        again_.pop_front();
        return position;
    }

    // By turns: the last files are shared, too.
    void giveAll() {
        std::vector<ReaderProcess*> low;
        for (const auto& reader : readers_) {
            if (reader->isLow()) {
                low.push_back(reader.get());
            }
        }
        const std::size_t end = endOfGiving();
        for (bool given = true; given;) {
            given = false;
            for (ReaderProcess* reader : low) {
                if (reader->hasRoom() && hasNext(end)) {
                    const std::size_t position = takeNext();
                    reader->add(position, paths_[position]);
                    given = true;
                }
            }
        }
        for (ReaderProcess* reader : low) {
            reader->flush(Clock::now() + limits_.timePerFile);
        }
    }

    enum class Cause { End, TimeOut };
    void replace(ReaderSlot& reader, Cause cause, const std::string& why) {
        const std::vector<std::size_t> unanswered = reader->unanswered();
        const auto ending = reader->end();
        if (!unanswered.empty()) {
            const std::size_t position = unanswered.front();
            receive_(position, FontFileProblem{paths_[position] + ": " + why + ending.text,
                                               cause == Cause::End && ending.ofTheFile});
            again_.insert(again_.end(), unanswered.begin() + 1, unanswered.end());
        }
        reader = std::make_unique<ReaderProcess>(limits_.memory, read_);
    }

    void take(ReaderSlot& reader) {
        bool gone = false;
        for (auto& [position, outcome] :
             reader->receive(Clock::now() + limits_.timePerFile, gone)) {
            receive_(position, std::move(outcome));
        }
        if (gone) {
            replace(reader, Cause::End, "the font reader ended while reading it");
        }
    }

    // False when no reader is at work any more.
    bool wait() {
        std::vector<pollfd> sockets;
        auto deadline = Clock::time_point::max();
        for (const auto& reader : readers_) {
            sockets.push_back({reader->isIdle() ? -1 : reader->socket(), POLLIN, 0});
            if (!reader->isIdle()) {
                deadline = std::min(deadline, reader->deadline());
            }
        }
        if (deadline == Clock::time_point::max()) {
            return false;
        }
        sockets.push_back({cancelDescriptor(), POLLIN, 0});
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        poll(sockets.data(), sockets.size(),
             static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 60'000)));
        const auto now = Clock::now();
        for (std::size_t i = 0; i < readers_.size(); ++i) {
            if (sockets[i].revents != 0) {
                take(readers_[i]);
            } else if (!readers_[i]->isIdle() && readers_[i]->deadline() <= now) {
                replace(readers_[i], Cause::TimeOut,
                        "reading it took longer than " +
                            std::to_string(limits_.timePerFile.count()) + " ms");
            }
        }
        return true;
    }

    std::span<const std::string> paths_;
    const FontReaderLimits& limits_;
    const FontFileReceiver& receive_;
    const FontFileFunction& read_;
    std::vector<ReaderSlot> readers_;
    std::deque<std::size_t> again_; ///< given to a reader that is gone, and not looked at
    std::size_t next_ = 0;
};

} // namespace

void readFontFiles(std::span<const std::string> paths, const FontReaderLimits& limits,
                   const FontFileReceiver& receive, const FontFileFunction& read) {
    if (!paths.empty()) {
        Round(paths, limits, receive, read).run();
    }
}

} // namespace manager
