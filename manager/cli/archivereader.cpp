// SPDX-License-Identifier: MIT
#include "manager/cli/archivereader.h"

#include "manager/cli/archivechild.h"
#include "manager/library/cancel.h"
#include "manager/library/fields.h"
#include "system/descriptor.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <iterator>
#include <optional>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace manager {

namespace {

/// Goes with its owner.
class ArchiveProcess {
public:
    ArchiveProcess(const std::string& archive, const ArchiveLimits& limits)
        : file_(open(archive.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
        struct stat status {};
        if (!file_ || fstat(file_.get(), &status) != 0) {
            throw systemError(archive, "cannot be read", errno);
        }
        size_ = status.st_size;
        int ends[2] = {-1, -1};
        if (pipe2(ends, O_CLOEXEC) != 0) {
            throw systemError(archive, "no pipe to its reader", errno);
        }
        output_ = sys::Descriptor(ends[0]);
        const sys::Descriptor theirs(ends[1]);
        process_ = fork();
        if (process_ < 0) {
            throw systemError(archive, "no process to read it", errno);
        }
        if (process_ == 0) {
            runArchiveChild(file_.get(), theirs.get(), limits);
        }
    }
    ArchiveProcess(const ArchiveProcess&) = delete;
    ArchiveProcess& operator=(const ArchiveProcess&) = delete;
    ~ArchiveProcess() { static_cast<void>(end()); }

    [[nodiscard]] std::int64_t archiveSize() const { return size_; }

    /// False: it has ended without a word.
    bool read(void* to, std::size_t size) {
        auto* bytes = static_cast<char*>(to);
        while (size != 0) {
            pollfd ready[] = {{output_.get(), POLLIN, 0}, {cancelDescriptor(), POLLIN, 0}};
            poll(ready, std::size(ready), -1);
            checkCancelled();
            const ssize_t count = ::read(output_.get(), bytes, size);
            if (count < 0 && errno == EINTR) {
                continue;
            }
            if (count <= 0) {
                return false;
            }
            bytes += count;
            size -= static_cast<std::size_t>(count);
        }
        return true;
    }

    /// How it ended, as waitpid tells.
    int end() {
        int status = 0;
        if (process_ > 0) {
            kill(process_, SIGKILL); // one that is ending already keeps its own cause
            while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
            }
            process_ = -1;
        }
        return status;
    }

private:
    sys::Descriptor file_;
    sys::Descriptor output_;
    std::int64_t size_ = 0;
    pid_t process_ = -1;
};

class Listening {
public:
    Listening(const std::string& archive, const ArchiveReceiver& receiver,
              const ArchiveLimits& limits)
        : archive_(archive), receiver_(receiver), limits_(limits), process_(archive, limits) {}

    void run() {
        ArchiveMessage message;
        std::string bytes;
        for (;;) {
            bool isWhole =
                process_.read(&message, sizeof message) && message.size <= maximumArchiveMessage;
            if (isWhole) {
                bytes.resize(message.size);
                isWhole = process_.read(bytes.data(), bytes.size());
            }
            if (!isWhole) {
                throw error(ending());
            }
            if (message.kind == ArchiveSays::End) {
                return;
            }
            take(message.kind, bytes);
        }
    }

private:
    [[nodiscard]] Error error(const std::string& what) const {
        return Error(archive_ + ": " + what + "; nothing of it was added");
    }

    std::string ending() {
        const int status = process_.end();
        const int signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
        if (signal == SIGXCPU) {
            return "reading it took more than " + std::to_string(limits_.seconds) +
                   " seconds of processor time";
        }
        return std::string("its reader ended while reading it") +
               (signal == 0 ? "" : std::string(" (") + strsignal(signal) + ")");
    }

    void take(ArchiveSays kind, const std::string& bytes) {
        switch (kind) {
        case ArchiveSays::Begin:
            entry_ = bytes;
            receiver_.begin(entry_);
            break;
        case ArchiveSays::Bytes:
            count(static_cast<std::int64_t>(bytes.size()));
            receiver_.take(bytes);
            break;
        case ArchiveSays::PassOver:
            if (const auto fields = splitFields(bytes); fields && fields->size() == 2) {
                receiver_.passOver((*fields)[0], (*fields)[1]);
            }
            break;
        default:
            throw error(bytes);
        }
    }

    void count(std::int64_t bytes) {
        taken_ += bytes;
        if (taken_ > limits_.bytes) {
            throw error(entry_ + ": the files are larger than " + std::to_string(limits_.bytes) +
                        " bytes together");
        }
        if (taken_ > limits_.freeBytes && taken_ / limits_.ratio > process_.archiveSize()) {
            throw error(entry_ + ": the files are more than " + std::to_string(limits_.ratio) +
                        " times as large as the archive");
        }
    }

    const std::string& archive_;
    const ArchiveReceiver& receiver_;
    const ArchiveLimits& limits_;
    ArchiveProcess process_;
    std::string entry_;
    std::int64_t taken_ = 0;
};

} // namespace

void readArchive(const std::string& archive, const ArchiveReceiver& receiver,
                 const ArchiveLimits& limits) {
    Listening(archive, receiver, limits).run();
}

} // namespace manager
