// SPDX-License-Identifier: MIT
// One process per reader and a socket to each. Paths go there many at a time, so that no reader
// waits for the next; answers come back one by one, in the same order, so that it is always known
// which file a reader is at.
//
// A path ends in a zero byte. An answer is its length, 4 bytes, and the text of encodeAnswer.
#include "manager/library/fontreader.h"

#include "manager/library/error.h"
#include "manager/library/fontanswer.h"
#include "system/descriptor.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <deque>
#include <fcntl.h>
#include <memory>
#include <new>
#include <numeric>
#include <optional>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace manager {

namespace {

using Clock = std::chrono::steady_clock;

bool sendAll(int socket, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t sent = send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR) {
            continue;
        }
        if (sent <= 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

// Of the first bytes, which in most fonts hold the checksums of all its parts. FNV-1a.
std::uint64_t headDigest(const std::string& path) {
    const sys::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    char block[4096];
    const ssize_t count = file ? read(file.get(), block, sizeof block) : -1;
    std::uint64_t digest = 0xCBF29CE484222325U;
    for (ssize_t i = 0; i < count; ++i) {
        digest = (digest ^ static_cast<unsigned char>(block[i])) * 0x100000001B3U;
    }
    return digest;
}

void limitMemory(std::size_t bytes) {
// The sanitizers reserve terabytes of address space.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    const rlimit limit{bytes, bytes};
    setrlimit(RLIMIT_AS, &limit);
#else
    static_cast<void>(bytes);
#endif
}

FontFileOutcome outcomeOf(const std::string& path, const FontFileFunction& read) {
    try {
        return ReadFont{read(path), headDigest(path)};
    } catch (const std::bad_alloc&) {
        return FontFileProblem{path + ": reading it takes too much memory"};
    } catch (const faces::UnreadableNow& problem) {
        return FontFileProblem{problem.what()};
    } catch (const std::exception& problem) {
        return FontFileProblem{problem.what(), true};
    }
}

bool sendAnswer(int socket, const std::string& path, const FontFileOutcome& outcome) {
    std::string answer = encodeAnswer(outcome);
    if (answer.size() > maximumAnswer) {
        answer = encodeAnswer(FontFileProblem{path + ": tells more than a font has to tell", true});
    }
    const auto size = static_cast<std::uint32_t>(answer.size());
    answer.insert(0, reinterpret_cast<const char*>(&size), sizeof size);
    return sendAll(socket, answer);
}

[[noreturn]] void runReader(int socket, std::size_t memory, const FontFileFunction& read) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    limitMemory(memory);
    std::string paths;
    for (;;) {
        char block[16384];
        const ssize_t count = recv(socket, block, sizeof block, 0);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            _exit(0);
        }
        paths.append(block, static_cast<std::size_t>(count));
        std::size_t begin = 0;
        for (std::size_t end = 0; (end = paths.find('\0', begin)) != std::string::npos;
             begin = end + 1) {
            const std::string path = paths.substr(begin, end - begin);
            if (!sendAnswer(socket, path, outcomeOf(path, read))) {
                _exit(1);
            }
        }
        paths.erase(0, begin);
    }
}

/// One reading process; killed with its owner.
class Reader {
public:
    Reader(std::size_t memory, const FontFileFunction& read) {
        int ends[2] = {-1, -1};
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
            throw systemError("font reader", "no socket", errno);
        }
        socket_ = sys::Descriptor(ends[0]);
        const sys::Descriptor theirs(ends[1]);
        process_ = fork();
        if (process_ < 0) {
            throw systemError("font reader", "no process", errno);
        }
        if (process_ == 0) {
            runReader(theirs.get(), memory, read);
        }
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
    ~Reader() { end(); }

    /// Whether it can be given more without waiting: what it has not taken up yet has to fit into
    /// the socket.
    [[nodiscard]] bool hasRoom() const {
        return waiting_.empty() ||
               (waiting_.size() < maximumWaiting && waitingBytes_ < maximumWaitingBytes);
    }

    /// Whether it will soon have nothing to do.
    [[nodiscard]] bool isLow() const { return waiting_.size() <= maximumWaiting / 2; }

    /// Puts a file last in its line.
    void add(std::size_t position, const std::string& path) {
        fresh_ = fresh_ || waiting_.empty();
        waiting_.push_back({position, path.size() + 1});
        waitingBytes_ += path.size() + 1;
        unsent_.append(path.c_str(), path.size() + 1);
    }

    /// Sends what was added. A reader that is gone is noticed by receive().
    void flush(Clock::time_point deadline) {
        if (std::exchange(fresh_, false)) {
            deadline_ = deadline;
        }
        sendAll(socket_.get(), unsent_);
        unsent_.clear();
    }

    /// Takes what has come, an outcome for each file from the first in line on. `gone` is set when
    /// there will be no more.
    std::vector<std::pair<std::size_t, FontFileOutcome>> receive(Clock::time_point deadline,
                                                                 bool& gone) {
        std::vector<std::pair<std::size_t, FontFileOutcome>> outcomes;
        char block[65536];
        const ssize_t count = recv(socket_.get(), block, sizeof block, 0);
        if (count < 0 && errno == EINTR) {
            return outcomes;
        }
        ended_ = count <= 0;
        gone = ended_;
        answers_.append(block, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        std::string_view left = answers_;
        std::uint32_t size = 0;
        while (!gone && left.size() >= sizeof size) {
            std::memcpy(&size, left.data(), sizeof size);
            if (size <= maximumAnswer && left.size() - sizeof size < size) {
                break;
            }
            auto outcome = size <= maximumAnswer && !waiting_.empty()
                               ? decodeAnswer(left.substr(sizeof size, size))
                               : std::nullopt;
            gone = !outcome;
            if (outcome) {
                left.remove_prefix(sizeof size + size);
                outcomes.emplace_back(pop(), std::move(*outcome));
                deadline_ = deadline;
            }
        }
        answers_.erase(0, answers_.size() - left.size());
        return outcomes;
    }

    /// The files that it was given and has not answered; the first is the one that it is at.
    [[nodiscard]] std::vector<std::size_t> unanswered() const {
        std::vector<std::size_t> positions;
        for (const Waiting& file : waiting_) {
            positions.push_back(file.position);
        }
        return positions;
    }

    /// How a reader came to its end.
    struct Ending {
        std::string text;       ///< " (the signal)", or empty
        bool ofTheFile = false; ///< the file did it, and would do it again
    };

    /// Kills the process unless it has ended by itself.
    Ending end() {
        if (process_ <= 0) {
            return {};
        }
        kill(process_, SIGKILL);
        int status = 0;
        while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
        }
        process_ = -1;
        const int signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
        if (signal == 0 || (signal == SIGKILL && !ended_)) {
            return {{}, true};
        }
        // Others come from outside: memory ran out, the disk failed under a mapped file, somebody
        // ended the scan.
        const bool fault =
            signal == SIGSEGV || signal == SIGILL || signal == SIGFPE || signal == SIGABRT;
        return {std::string(" (") + strsignal(signal) + ")", fault};
    }

    [[nodiscard]] int socket() const { return socket_.get(); }
    [[nodiscard]] bool isIdle() const { return waiting_.empty(); }
    [[nodiscard]] Clock::time_point deadline() const { return deadline_; }

private:
    // Enough to hide the way there and back. What waits here is not given to a reader that is idle.
    static constexpr std::size_t maximumWaiting = 16;
    static constexpr std::size_t maximumWaitingBytes = 16384;

    struct Waiting {
        std::size_t position;
        std::size_t bytes;
    };

    std::size_t pop() {
        const Waiting first = waiting_.front();
        waiting_.pop_front();
        waitingBytes_ -= first.bytes;
        return first.position;
    }

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

/// Hands the files out and gathers the answers.
class Round {
public:
    Round(std::span<const std::string> paths, const FontReaderLimits& limits,
          const FontFileReceiver& receive, const FontFileFunction& read)
        : paths_(paths), limits_(limits), receive_(receive), read_(read),
          readers_(std::min<std::size_t>(std::max(1U, limits.processes), paths.size())) {}

    void run() {
        for (auto& reader : readers_) {
            reader = std::make_unique<Reader>(limits_.memory, read_);
        }
        do {
            giveAll();
        } while (wait());
    }

private:
    using ReaderSlot = std::unique_ptr<Reader>;

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
        std::vector<Reader*> low;
        for (const auto& reader : readers_) {
            if (reader->isLow()) {
                low.push_back(reader.get());
            }
        }
        const std::size_t end = endOfGiving();
        for (bool given = true; given;) {
            given = false;
            for (Reader* reader : low) {
                if (reader->hasRoom() && hasNext(end)) {
                    const std::size_t position = takeNext();
                    reader->add(position, paths_[position]);
                    given = true;
                }
            }
        }
        for (Reader* reader : low) {
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
        reader = std::make_unique<Reader>(limits_.memory, read_);
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
