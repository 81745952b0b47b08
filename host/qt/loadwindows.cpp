// SPDX-License-Identifier: MIT
// Loading the module, where it can be of use.
#include "host/qt/displays.h"
#include "host/qt/windows.h"

#include <dlfcn.h>

#include <cstdlib>
#include <string>
#include <system_error>
#include <utility>

namespace host {

namespace {

bool isSet(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr && *value != '\0';
}

} // namespace

bool mayHaveScreen() {
    return isSet("WAYLAND_DISPLAY") || isSet("DISPLAY") || isSet("QT_QPA_PLATFORM");
}

std::unique_ptr<Windows> loadWindows(Dialogs& dialogs, FontSource fonts, DesktopEvents events,
                                     Screen screen) {
    constexpr int patience = 3000; // milliseconds
    const std::string platforms =
        screen == Screen::Nowhere ? offscreenPlatform : livingPlatforms(patience);
    if (platforms.empty()) {
        return nullptr;
    }
    std::error_code failed;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", failed);
    const std::filesystem::path module = program.parent_path().parent_path() / WINDOWS_MODULE;
    // What is built in more than one place is one all the same: the program exports it.
    void* const handle = dlopen(module.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const make = handle != nullptr ? dlsym(handle, "glyphoraMakeWindows") : nullptr;
    return std::unique_ptr<Windows>(
        make != nullptr ? reinterpret_cast<decltype(&glyphoraMakeWindows)>(make)(
                              dialogs, std::move(fonts), std::move(events), platforms)
                        : nullptr);
}

} // namespace host
