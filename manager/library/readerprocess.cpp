// SPDX-License-Identifier: MIT
// One process per reader and a socket to each. Paths go there many at a time, so that no reader
// waits for the next; answers come back one by one, in the same order, so that it is always known
// which file a reader is at.
//
// A path ends in a zero byte. An answer is its length, 4 bytes, and the text of encodeAnswer.
#include "manager/library/readerprocess.h"

#include "manager/library/error.h"
#include "manager/library/fontanswer.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <optional>
#include <string_view>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace manager {

namespace {

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

} // namespace

ReaderProcess::ReaderProcess(std::size_t memory, const FontFileFunction& read) {
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

void ReaderProcess::add(std::size_t position, const std::string& path) {
    fresh_ = fresh_ || waiting_.empty();
    waiting_.push_back({position, path.size() + 1});
    waitingBytes_ += path.size() + 1;
    unsent_.append(path.c_str(), path.size() + 1);
}

void ReaderProcess::flush(Clock::time_point deadline) {
    if (std::exchange(fresh_, false)) {
        deadline_ = deadline;
    }
    sendAll(socket_.get(), unsent_);
    unsent_.clear();
}

std::vector<std::pair<std::size_t, FontFileOutcome>>
ReaderProcess::receive(Clock::time_point deadline, bool& gone) {
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

std::vector<std::size_t> ReaderProcess::unanswered() const {
    std::vector<std::size_t> positions;
    for (const Waiting& file : waiting_) {
        positions.push_back(file.position);
    }
    return positions;
}

ReaderProcess::Ending ReaderProcess::end() {
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

std::size_t ReaderProcess::pop() {
    const Waiting first = waiting_.front();
    waiting_.pop_front();
    waitingBytes_ -= first.bytes;
    return first.position;
}

} // namespace manager
