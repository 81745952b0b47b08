// SPDX-License-Identifier: MIT
// "glyphora settle PROCESS NUMBER...", in a session of its own and with nothing of this process but
// its environment.
#include "manager/cli/settling.h"

#include "manager/cli/arguments.h"
#include "manager/cli/fonttimestamp.h"
#include "manager/cli/report.h"
#include "manager/library/error.h"
#include "manager/library/fields.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <glib.h>
#include <iterator>
#include <optional>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace manager {

namespace {

// Other programs compare times in whole seconds.
constexpr std::chrono::milliseconds settleDelay{1100};

// A second change comes after the folder was marked anew, at the latest.
constexpr std::chrono::milliseconds kickDelay{1400};
// What programs have to read the setting before it goes.
constexpr std::chrono::milliseconds readingTime{500};

/// Between fork and exec: nothing but async-signal-safe calls. An interrupt is not meant for it.
void leaveSession(gpointer /*data*/) {
    setsid();
}

// Who reads this command's output through a pipe must not wait for it.
void startDetached(std::vector<std::string> words) {
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    // Without G_SPAWN_DO_NOT_REAP_CHILD it is nobody's to reap; all descriptors are closed in it.
    constexpr auto flags = static_cast<GSpawnFlags>(
        G_SPAWN_FILE_AND_ARGV_ZERO | G_SPAWN_STDOUT_TO_DEV_NULL | G_SPAWN_STDERR_TO_DEV_NULL);
    GError* error = nullptr;
    if (g_spawn_async(nullptr, arguments.data(), nullptr, flags, leaveSession, nullptr, nullptr,
                      &error) == 0) {
        warn(words[2] + ": cannot be started: " + error->message);
        g_error_free(error);
    }
}

} // namespace

void settleLater(std::span<const ContainerId> changed) {
    std::vector<std::string> words = {"/proc/self/exe", "glyphora", "settle",
                                      std::to_string(getpid())};
    std::transform(changed.begin(), changed.end(), std::back_inserter(words), toText);
    startDetached(std::move(words));
}

void tellDisplay() {
    const char* const display = std::getenv("DISPLAY");
    if (display != nullptr && *display != '\0') {
        startDetached({"/proc/self/exe", "glyphora", "kick"});
    }
}

int kickCommand() {
    FontTimestamp timestamp;
    if (timestamp.isOffered()) {
        std::this_thread::sleep_for(kickDelay);
        timestamp.change();
        std::this_thread::sleep_for(readingTime);
    }
    return exitSuccess;
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
