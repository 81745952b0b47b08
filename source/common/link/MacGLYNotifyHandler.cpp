// SPDX-License-Identifier: MIT
// Both channels of the library's news, and the way to the font manager.
#include "MacGLYNotifyHandler.h"

#include "Logger.h"
#include "transport.h"

#include <exception>
#include <utility>

namespace GLY {

namespace {

constexpr AEEventClass newsClass = FourCharCode("FILC");
constexpr AEEventID setsChanged = FourCharCode("FSBC");
constexpr AEEventID fontsChanged = FourCharCode("FFSC");
constexpr const char* changeText = "<cmd cmd=\"fontChanged\"></cmd>";

} // namespace

MacGLYNotifyHandler::MacGLYNotifyHandler() = default;

MacGLYNotifyHandler::~MacGLYNotifyHandler() {
    MacGLYNotifyHandler::end();
}

void MacGLYNotifyHandler::start() {
    AEEventHandlerUPP routine = NewAEEventHandlerUPP(HandleEvent);
    if (AEInstallEventHandler(newsClass, typeWildCard, routine,
                              static_cast<IGLYNotifyHandler*>(this), false) == noErr) {
        std::swap(eventHandler_, routine); // that of an earlier start was replaced just now
    }
    if (routine != nullptr) {
        DisposeAEEventHandlerUPP(routine);
    }
    if (!daemon_) {
        daemon_ = std::make_unique<BSDNotification::Daemon>();
        daemon_->addListener(libraryChangedName);
    }
}

void MacGLYNotifyHandler::end() {
    // Without a routine the call would remove anybody's handler.
    if (eventHandler_ != nullptr) {
        AERemoveEventHandler(newsClass, typeWildCard, eventHandler_, false);
        DisposeAEEventHandlerUPP(eventHandler_);
        eventHandler_ = nullptr;
    }
    daemon_.reset();
}

void MacGLYNotifyHandler::push() {
    if (daemon_ && daemon_->hasFired("")) {
        notifiyAll(changeText);
    }
}

std::string MacGLYNotifyHandler::SendToGly(const std::string& command) {
    try {
        return exchangeCommand(command);
    } catch (const std::exception&) {
        return {};
    }
}

bool MacGLYNotifyHandler::WaitForLaunch() {
    return false;
}

void MacGLYNotifyHandler::dropStorage() noexcept {
    dropLists();
}

OSErr MacGLYNotifyHandler::HandleEvent(const AppleEvent* event, AppleEvent* /*reply*/,
                                       void* handler) {
    AEEventID eventID = 0;
    AEGetAttributePtr(event, keyEventIDAttr, typeType, nullptr, &eventID, sizeof eventID, nullptr);
    if (handler == nullptr || (eventID != setsChanged && eventID != fontsChanged)) {
        return noErr;
    }
    // The dispatcher would tell the sender of what it catches; that is not the sender's concern.
    // Observers throw the host's error codes too.
    constexpr const char* context = "MacGLYNotifyHandler-HandleEvent";
    try {
        static_cast<IGLYNotifyHandler*>(handler)->notifiyAll(changeText);
    } catch (const std::exception& error) {
        Logger::log(error.what(), context, 0);
    } catch (...) {
        Logger::log("an observer failed", context, 0);
    }
    return noErr;
}

} // namespace GLY
