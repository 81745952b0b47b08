// SPDX-License-Identifier: MIT
// What shows dialogs and alerts on a screen, without a word of the toolkit that does it.
#pragma once

#include "host/adm/dialogs.h"
#include "host/adm/dialoguser.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>

namespace host {

/// The desktop's events, which are served while a window is open. dispatch() may throw.
struct DesktopEvents {
    std::function<int()> descriptor; ///< readable while events wait; negative: none will come
    std::function<std::size_t()> dispatch;
};

/// [main-thread] Its dialogs' windows are made when they run first, and kept until they are
/// forgotten. What is wrong with a layout is reported as an error, and its dialog ends at once.
class Windows : public DialogView {
public:
    /// [main-thread, modal] Returns when the user has seen it, or a dialog around it ends.
    virtual void showAlert(const Alert& alert) = 0;
    /// Writes every window from now on into `folder`: as it is shown, and before it goes.
    virtual void savePictures(std::filesystem::path folder) = 0;
    /// Who uses the dialogs beside whoever sits before the screen; nullptr for nobody. `user`
    /// outlives its last modal run.
    virtual void setUser(DialogUser* user) = 0;
};

enum class Screen : std::uint8_t {
    User,   ///< the user's, if there is one
    Nowhere ///< in memory, for pictures
};

/// Loads the module that knows the toolkit; it stays until the program ends. Nothing when there is
/// no such screen, or no such module.
[[nodiscard]] std::unique_ptr<Windows> loadWindows(Dialogs& dialogs, DesktopEvents events,
                                                   Screen screen);

} // namespace host

/// What the module has. `dialogs` outlives what it makes, which the caller owns; nullptr when there
/// is no such screen. One at a time.
extern "C" host::Windows* glyphoraMakeWindows(host::Dialogs& dialogs, host::DesktopEvents events,
                                              host::Screen screen);
