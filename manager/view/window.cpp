// SPDX-License-Identifier: MIT
// Loading the module, where it can be of use.
#include "manager/view/window.h"

#include "system/displays.h"
#include "system/module.h"

namespace manager {

int showWindow(const WindowOptions& options) {
    constexpr int patience = 3000; // milliseconds
    const std::string platforms =
        options.pictures.empty() ? sys::livingPlatforms(patience) : sys::offscreenPlatform;
    if (platforms.empty()) {
        throw Error("there is no display to show the library on");
    }
    void* const show = sys::functionOfModule(WINDOW_MODULE, "glyphoraShowWindow");
    if (show == nullptr) {
        throw Error("the window is not installed (" WINDOW_MODULE ")");
    }
    const int status = reinterpret_cast<decltype(&glyphoraShowWindow)>(show)(options, platforms);
    if (status < 0) {
        throw Error("no display that is named can be used");
    }
    return status;
}

} // namespace manager
