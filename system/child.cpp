// SPDX-License-Identifier: MIT
// Spawned, not forked: the owner may have threads, and a window's process is large.
#include "system/child.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>

#include <csignal>
#include <mutex>
#include <system_error>
#include <utility>
#include <vector>

namespace sys {

namespace {

/// What a new process starts with: its socket and nothing else, no signal blocked or ignored.
class SpawnSettings {
public:
    SpawnSettings(int socket, Child::Output output) {
        posix_spawn_file_actions_init(&files);
        posix_spawn_file_actions_adddup2(&files, socket, STDIN_FILENO);
        posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_adddup2(
            &files, output == Child::Output::Socket ? STDIN_FILENO : STDERR_FILENO, STDOUT_FILENO);
        posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);
        posix_spawnattr_init(&attributes);
        sigset_t none;
        sigemptyset(&none);
        posix_spawnattr_setsigmask(&attributes, &none);
        sigset_t all;
        sigfillset(&all);
        posix_spawnattr_setsigdefault(&attributes, &all);
        // In a group of its own: what is typed at a terminal is for its owner alone.
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF |
                                                  POSIX_SPAWN_SETPGROUP);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;
    ~SpawnSettings() {
        posix_spawn_file_actions_destroy(&files);
        posix_spawnattr_destroy(&attributes);
    }

    posix_spawn_file_actions_t files{};
    posix_spawnattr_t attributes{};
};

struct LetGo {
    std::mutex mutex;
    std::vector<pid_t> processes;
};

LetGo& letGoProcesses() {
    static LetGo all;
    return all;
}

} // namespace

Child::Child(const std::filesystem::path& program, std::span<const std::string> arguments,
             Output output) {
    static_cast<void>(lingering());
    int ends[2] = {-1, -1};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends) != 0) {
        throw std::system_error(errno, std::generic_category(), "no socket");
    }
    socket_ = Descriptor(ends[0]);
    const Descriptor theirs(ends[1]);
    // Theirs blocks; the two ends are files apart, so this one does not.
    fcntl(theirs.get(), F_SETFL, 0);
    std::vector<std::string> words{program.string()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    const SpawnSettings settings(theirs.get(), output);
    const int error = posix_spawn(&process_, program.c_str(), &settings.files, &settings.attributes,
                                  pointers.data(), environ);
    if (error != 0) {
        process_ = -1;
        throw std::system_error(error, std::generic_category(), program.string());
    }
}

std::optional<Ending> Child::wait(int options) noexcept {
    if (process_ <= 0) {
        return Ending{};
    }
    kill(process_, SIGKILL); // one that is ending already keeps its own cause
    int status = 0;
    pid_t ended = 0;
    do {
        ended = waitpid(process_, &status, options);
    } while (ended < 0 && errno == EINTR);
    if (ended == 0) {
        return std::nullopt;
    }
    process_ = -1;
    static_cast<void>(socket_.close());
    return WIFSIGNALED(status) ? Ending{WTERMSIG(status), 0} : Ending{0, WEXITSTATUS(status)};
}

Ending Child::end() noexcept {
    return wait(0).value_or(Ending{});
}

std::optional<Ending> Child::tryEnd() noexcept {
    return wait(WNOHANG);
}

void Child::letGo() {
    const pid_t process = process_;
    if (!tryEnd()) {
        LetGo& all = letGoProcesses();
        const std::lock_guard lock(all.mutex);
        all.processes.push_back(process);
        process_ = -1;
        static_cast<void>(socket_.close());
    }
}

std::size_t Child::lingering() {
    LetGo& all = letGoProcesses();
    const std::lock_guard lock(all.mutex);
    std::erase_if(all.processes,
                  [](pid_t process) { return waitpid(process, nullptr, WNOHANG) != 0; });
    return all.processes.size();
}

void limitThisProcess(std::size_t memory) noexcept {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
// The sanitizers reserve terabytes of address space.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    const rlimit limit{memory, memory};
    setrlimit(RLIMIT_AS, &limit);
#else
    static_cast<void>(memory);
#endif
}

void allowProcessorTime(unsigned seconds) noexcept {
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    const auto fractions = used.ru_utime.tv_usec + used.ru_stime.tv_usec;
    const auto spent = used.ru_utime.tv_sec + used.ru_stime.tv_sec + fractions / 1'000'000;
    // Whole seconds are counted: the one that has begun comes on top.
    const rlimit limit{static_cast<rlim_t>(spent) + seconds + 1, RLIM_INFINITY};
    setrlimit(RLIMIT_CPU, &limit);
}

} // namespace sys
