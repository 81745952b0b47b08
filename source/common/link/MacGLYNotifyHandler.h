// SPDX-License-Identifier: MIT
// The notify handler over Apple events and Darwin notifications.
#pragma once

#include "BSDNotification.h"
#include "GLYNotifyHandler.h"
#include "platform/appleevents.h"

#include <memory>
#include <string>

namespace GLY {

/// What the font manager posts when its library has changed.
constexpr const char* libraryChangedName = "org.glyphora.Glyphora.FontLibraryChanged";

/// Listens and sends by the desktop's services. [main-thread], but for HandleEvent.
class MacGLYNotifyHandler : public BasicGLYNotifyHandler {
public:
    MacGLYNotifyHandler();
    MacGLYNotifyHandler(const MacGLYNotifyHandler&) = delete;
    MacGLYNotifyHandler& operator=(const MacGLYNotifyHandler&) = delete;
    /// Calls end(): the module may be unmapped next, and no event may find its handler then.
    ~MacGLYNotifyHandler() override;

    void start() override;
    void end() override;
    void push() override;
    std::string SendToGly(const std::string& command) override;
    bool WaitForLaunch() override;

    /// Frees what an ended handler still holds, so that its storage can be released without running
    /// the destructor.
    void dropStorage() noexcept;

private:
    /// [handler-thread], which is the main thread. Called for each event of the font manager; the
    /// events are the caller's, `handler` is the IGLYNotifyHandler that was installed. Always
    /// returns noErr.
    static OSErr HandleEvent(const AppleEvent* event, AppleEvent* reply, void* handler);

    AEEventHandlerUPP eventHandler_ = nullptr; // owned; null unless started
    std::unique_ptr<BSDNotification::Daemon> daemon_;
};

} // namespace GLY
