// SPDX-License-Identifier: MIT
// "glyphora settle PROCESS NUMBER...", in a session of its own and with nothing of this process but
// its environment.
#include "manager/cli/settling.h"

#include "manager/cli/arguments.h"
#include "manager/cli/report.h"
#include "manager/library/error.h"
#include "manager/library/fields.h"

#include <chrono>
#include <fcntl.h>
#include <optional>
#include <spawn.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

extern char** environ; // NOLINT(readability-redundant-declaration)

namespace manager {

namespace {

// Other programs compare times in whole seconds.
constexpr std::chrono::milliseconds settleDelay{1100};

} // namespace

void settleLater(std::span<const ContainerId> changed) {
    std::vector<std::string> words = {"glyphora", "settle", std::to_string(getpid())};
    for (const ContainerId id : changed) {
        words.push_back(toText(id));
    }
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_t files;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID); // an interrupt is not meant for it
    posix_spawn_file_actions_init(&files);
    // Who reads this command's output through a pipe must not wait for it.
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        posix_spawn_file_actions_addopen(&files, descriptor, "/dev/null", O_RDWR, 0);
    }
    posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);
    pid_t process = -1;
    const int code =
        posix_spawn(&process, "/proc/self/exe", &files, &attributes, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    posix_spawnattr_destroy(&attributes);
    if (code != 0) {
        warn(systemError("settle", "cannot be started", code).what());
    }
}

int settleCommand(const Places& places, const std::vector<std::string>& words) {
    const auto process = words.empty() ? std::nullopt : toNumber<pid_t>(words.front());
    if (!process) {
        return exitUsage;
    }
    std::vector<ContainerId> changed;
    for (std::size_t i = 1; i < words.size(); ++i) {
        if (const auto id = toContainerId(words[i])) {
            changed.push_back(*id);
        }
    }
    std::this_thread::sleep_for(settleDelay);
    if (access(places.fonts().c_str(), F_OK) == 0) { // else all of it was tidied up meanwhile
        Activation(places).settleFor(*process, changed);
    }
    return exitSuccess;
}

} // namespace manager
