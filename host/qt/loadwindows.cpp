// SPDX-License-Identifier: MIT
// Loading the module, where it can be of use.
#include "host/qt/windows.h"

#include "system/displays.h"
#include "system/module.h"

#include <string>
#include <utility>

namespace host {

std::unique_ptr<Windows> loadWindows(Dialogs& dialogs, FontSource fonts, DesktopEvents events,
                                     Screen screen) {
    constexpr int patience = 3000; // milliseconds
    const std::string platforms =
        screen == Screen::Nowhere ? sys::offscreenPlatform : sys::livingPlatforms(patience);
    if (platforms.empty()) {
        return nullptr;
    }
    void* const make = sys::functionOfModule(WINDOWS_MODULE, "glyphoraMakeWindows");
    return std::unique_ptr<Windows>(
        make != nullptr ? reinterpret_cast<decltype(&glyphoraMakeWindows)>(make)(
                              dialogs, std::move(fonts), std::move(events), platforms)
                        : nullptr);
}

} // namespace host
