// SPDX-License-Identifier: MIT
// One process per reader and a socket to each: a path goes there, an answer comes back.
#include "manager/library/fontreader.h"

#include "manager/library/error.h"
#include "manager/library/fontanswer.h"
#include "system/descriptor.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
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

void limitMemory(std::size_t bytes) {
// The sanitizers reserve terabytes of address space.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    const rlimit limit{bytes, bytes};
    setrlimit(RLIMIT_AS, &limit);
#else
    static_cast<void>(bytes);
#endif
}

[[noreturn]] void runReader(int socket, std::size_t memory, const FontFileFunction& read) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    limitMemory(memory);
    std::string path;
    char c = 0;
    for (;;) {
        const ssize_t count = recv(socket, &c, 1, 0);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            _exit(0);
        }
        if (c != '\0') {
            path += c;
            continue;
        }
        std::string answer;
        try {
            answer = encodeAnswer(read(path));
        } catch (const std::bad_alloc&) {
            answer = encodeAnswer(FontFileProblem{path + ": reading it takes too much memory"});
        } catch (const faces::UnreadableNow& problem) {
            answer = encodeAnswer(FontFileProblem{problem.what()});
        } catch (const std::exception& problem) {
            answer = encodeAnswer(FontFileProblem{problem.what(), true});
        }
        if (!sendAll(socket, answer)) {
            _exit(1);
        }
        path.clear();
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

    /// False: the reader is gone.
    bool begin(std::size_t position, const std::string& path, Clock::time_point deadline) {
        position_ = position;
        deadline_ = deadline;
        return sendAll(socket_.get(), std::string_view(path.c_str(), path.size() + 1));
    }

    /// Takes what has come. An outcome once it is complete; `gone` is set when the reader died.
    std::optional<FontFileOutcome> receive(bool& gone) {
        char block[16384];
        const ssize_t count = recv(socket_.get(), block, sizeof block, 0);
        if (count < 0 && errno == EINTR) {
            return std::nullopt;
        }
        ended_ = count <= 0;
        gone = ended_ || answer_.size() > maximumAnswer;
        if (gone) {
            return std::nullopt;
        }
        answer_.append(block, static_cast<std::size_t>(count));
        if (!answer_.ends_with("\n\n")) {
            return std::nullopt;
        }
        auto outcome = decodeAnswer(answer_);
        answer_.clear();
        gone = !outcome;
        return outcome;
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
    [[nodiscard]] std::size_t position() const { return position_; }
    [[nodiscard]] Clock::time_point deadline() const { return deadline_; }

private:
    static constexpr std::size_t maximumAnswer = std::size_t{16} << 20U;

    sys::Descriptor socket_;
    pid_t process_ = -1;
    std::size_t position_ = 0;
    Clock::time_point deadline_;
    std::string answer_;
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
            give(reader);
        }
        while (wait()) {
        }
    }

private:
    using ReaderSlot = std::unique_ptr<Reader>;

    // A reader with nothing left to do is ended.
    void give(ReaderSlot& reader) {
        if (next_ == paths_.size()) {
            reader.reset();
            return;
        }
        const std::size_t position = next_++;
        const auto deadline = Clock::now() + limits_.timePerFile;
        if (!reader->begin(position, paths_[position], deadline)) {
            reader = std::make_unique<Reader>(limits_.memory, read_); // it died while idle
            if (!reader->begin(position, paths_[position], deadline)) {
                throw Error(paths_[position] + ": cannot be given to a font reader");
            }
        }
    }

    enum class Cause { End, TimeOut };
    void replace(ReaderSlot& reader, Cause cause, const std::string& why) {
        const std::size_t position = reader->position();
        const auto ending = reader->end();
        receive_(position, FontFileProblem{paths_[position] + ": " + why + ending.text,
                                           cause == Cause::End && ending.ofTheFile});
        reader = std::make_unique<Reader>(limits_.memory, read_);
        give(reader);
    }

    void take(ReaderSlot& reader) {
        bool gone = false;
        auto outcome = reader->receive(gone);
        if (outcome) {
            receive_(reader->position(), std::move(*outcome));
            give(reader);
        } else if (gone) {
            replace(reader, Cause::End, "the font reader ended while reading it");
        }
    }

    // False when no reader is at work any more.
    bool wait() {
        std::vector<pollfd> sockets;
        auto deadline = Clock::time_point::max();
        for (const auto& reader : readers_) {
            sockets.push_back({reader ? reader->socket() : -1, POLLIN, 0});
            if (reader) {
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
            if (!readers_[i]) {
                continue;
            }
            if (sockets[i].revents != 0) {
                take(readers_[i]);
            } else if (readers_[i]->deadline() <= now) {
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
