// SPDX-License-Identifier: MIT
// What shows dialogs and alerts on a screen, without a word of the toolkit that does it.
#pragma once

#include "host/adm/dialogs.h"
#include "host/adm/dialoguser.h"
#include "host/fonts/fontsource.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <utility>

namespace host {

/// [main-thread] The desktop's events, which are served while a window is open. dispatch() may
/// throw.
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
    /// Writes every window from now on into `folder`: as it is shown, and a dialog before it goes,
    /// too. What cannot be written is reported as an error.
    virtual void savePictures(std::filesystem::path folder) = 0;
    /// Who uses the dialogs beside whoever sits before the screen; nullptr for nobody. `user`
    /// outlives its last modal run.
    virtual void setUser(DialogUser* user) = 0;
};

enum class Screen : std::uint8_t {
    User,   ///< the user's, if there is one
    Nowhere ///< in memory, for pictures
};

/// [main-thread] The view that is chosen when the first dialog needs one, so that nobody else pays
/// for it.
class LateView : public DialogView {
public:
    /// [main-thread] What it gives outlives the view.
    using Choose = std::function<DialogView&()>;
    explicit LateView(Choose choose) : choose_(std::move(choose)) {}

    void runModal(Dialog& dialog) override { chosen().runModal(dialog); }
    void endModal(Dialog& dialog) override { chosen().endModal(dialog); }
    void dialogChanged(Dialog& dialog) override { chosen().dialogChanged(dialog); }
    void itemChanged(Item& item) override { chosen().itemChanged(item); }
    void forget(Dialog& dialog) override { chosen().forget(dialog); }
    const TextMetrics& metrics() const override { return chosen().metrics(); }

private:
    DialogView& chosen() const {
        if (view_ == nullptr) {
            view_ = &choose_();
        }
        return *view_;
    }

    Choose choose_;
    mutable DialogView* view_ = nullptr;
};

/// Loads the module that knows the toolkit; it stays until the program ends. Nothing when there is
/// no such screen, or no such module.
[[nodiscard]] std::unique_ptr<Windows> loadWindows(Dialogs& dialogs, FontSource fonts,
                                                   DesktopEvents events, Screen screen);

} // namespace host

/// What the module has. `dialogs` outlives what it makes, which the caller owns. `platforms` are
/// the toolkit's, tried in turn; nullptr when none works but the one in memory, unless that one
/// alone is asked for. One at a time.
extern "C" host::Windows* glyphoraMakeWindows(host::Dialogs& dialogs, host::FontSource fonts,
                                              host::DesktopEvents events,
                                              const std::string& platforms);
