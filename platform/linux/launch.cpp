// SPDX-License-Identifier: MIT
// Starting the application of a desktop entry.
//
// GIO's own launching is not used: it opens the shared connection to the session bus, which ends
// the whole process when the bus dies.
#include "busconnection.h"
#include "desktopentry.h"

#include "platform/processes.h"
#include "system/translation.h"

#include <unistd.h>

#include <vector>

namespace {

/// Runs in the child before exec: nothing but async-signal-safe calls. In a session of its own, the
/// application outlives this one and an interrupt typed at its terminal.
void leaveSession(gpointer /*data*/) {
    setsid();
}

} // namespace

OSErr LaunchApplication(LaunchParamBlockRec* parameters) {
    if (parameters == nullptr || parameters->launchBlockID != extendedBlock ||
        parameters->launchAppSpec == nullptr || parameters->launchAppSpec->path[0] == '\0') {
        return paramErr;
    }
    const auto entry = platform::loadDesktopEntry(parameters->launchAppSpec->path);
    if (!entry) {
        return fnfErr;
    }
    std::vector<std::string> words = platform::commandOf(*entry);
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    const platform::TextHandle folder(g_desktop_app_info_get_string(entry.get(), "Path"));
    const char* workingFolder = folder && *folder != '\0' ? folder.get() : nullptr;
    // Without G_SPAWN_DO_NOT_REAP_CHILD the child is started by way of a short-lived one and so is
    // not ours to reap; all descriptors are closed in it. It must not hold the standard ones
    // either: whoever reads this program's output through a pipe would wait for the application's
    // end.
    const auto flags = static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_STDOUT_TO_DEV_NULL |
                                                G_SPAWN_STDERR_TO_DEV_NULL);
    platform::TextListHandle environment(g_get_environ());
    const std::string bus = platform::SessionBus::instance().startedAddress();
    if (!bus.empty()) {
        environment.reset(
            g_environ_setenv(environment.release(), "DBUS_SESSION_BUS_ADDRESS", bus.c_str(), TRUE));
    }
    const std::optional<std::string> language = sys::userLanguage();
    environment.reset(
        language ? g_environ_setenv(environment.release(), "LANGUAGE", language->c_str(), TRUE)
                 : g_environ_unsetenv(environment.release(), "LANGUAGE"));
    platform::ErrorSlot error;
    if (g_spawn_async(workingFolder, arguments.data(), environment.get(), flags, leaveSession,
                      nullptr, nullptr, error.out()) != 0) {
        return noErr;
    }
    return error.is(G_SPAWN_ERROR, G_SPAWN_ERROR_NOENT) ? OSErr{fnfErr} : OSErr{memFullErr};
}
