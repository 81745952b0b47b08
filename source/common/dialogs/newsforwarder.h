// SPDX-License-Identifier: MIT
// Takes the news of the font library for a dialog, which may be gone when they come.
#pragma once

#include "GLYNotifyHandler.h"

/// Registered with the notify handler in the stead of an observer with a shorter life. One that is
/// unregistered before any round is registered by the next round all the same: so forwarders live
/// as long as the module, and serve again, which also keeps them few. Throws what the observer
/// throws. [main-thread]
class NewsForwarder : public GLY::IGLYChangeNotifier {
public:
    /// Registers a forwarder for `observer`, and returns it. It is the module's.
    static NewsForwarder* forwardTo(GLY::IGLYChangeNotifier& observer);
    /// Forgets the observer, and unregisters.
    void forget();

    std::int32_t OnGLYNotify(const std::string& text) override;

private:
    NewsForwarder() = default;

    GLY::IGLYChangeNotifier* observer_ = nullptr;
    bool isRegistered_ = false; ///< in the handler's list, or bound to get there
    bool wasTold_ = false;      ///< since the registration, so that it can be taken back
};
