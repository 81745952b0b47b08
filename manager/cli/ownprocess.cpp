// SPDX-License-Identifier: MIT
#include "manager/cli/ownprocess.h"

#include "system/translation.h"

#include <glib.h>

#include <algorithm>
#include <csignal>
#include <iterator>
#include <spawn.h>
#include <unistd.h>
#include <vector>

namespace manager {

int startOwn(const OwnProcess& wanted, pid_t& process) {
    std::vector<std::string> words = {"glyphora"};
    words.insert(words.end(), wanted.words.begin(), wanted.words.end());
    std::vector<char*> arguments;
    std::transform(words.begin(), words.end(), std::back_inserter(arguments),
                   [](std::string& word) { return word.data(); });
    arguments.push_back(nullptr);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    const int session = wanted.hasOwnSession ? POSIX_SPAWN_SETSID : 0;
    posix_spawnattr_setflags(&attributes, static_cast<short>(POSIX_SPAWN_SETSIGMASK | session));
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (wanted.input) {
        posix_spawn_file_actions_adddup2(&actions, *wanted.input, STDIN_FILENO);
    }
    char** environment = g_get_environ();
    const std::optional<std::string> language = sys::userLanguage();
    environment = language ? g_environ_setenv(environment, "LANGUAGE", language->c_str(), TRUE)
                           : g_environ_unsetenv(environment, "LANGUAGE");
    const int code = posix_spawn(&process, "/proc/self/exe", &actions, &attributes,
                                 arguments.data(), environment);
    g_strfreev(environment);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    return code;
}

} // namespace manager
