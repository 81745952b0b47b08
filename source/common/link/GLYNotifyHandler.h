// SPDX-License-Identifier: MIT
// News of the font manager's library for those who want it, and the way to send it a command: the
// interfaces, and where to get the one handler of the process.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace GLY {

/// An observer of library changes.
class IGLYChangeNotifier {
public:
    virtual ~IGLYChangeNotifier() = default;

    /// [main-thread] `text` is the command of the change, one XML element, valid during the call.
    /// May register and unregister observers. The result, 0, is ignored.
    virtual std::int32_t OnGLYNotify(const std::string& text) = 0;
};

/// The way to the font manager and back. [main-thread]
class IGLYNotifyHandler {
public:
    /// Begins to listen. Throws std::runtime_error when the changes cannot be watched.
    virtual void start() = 0;
    /// Ends listening. Does no harm without start().
    virtual void end() = 0;
    /// Tells the observers of one change, if one has been noticed. Called regularly, by a timer.
    virtual void push() = 0;
    /// Queue an addition and a removal for the next notifiyAll, which applies removals first. The
    /// caller goes on owning the observer. One that registers twice is told twice. One that is
    /// registered and unregistered again between two rounds is told by the next all the same, so
    /// it must still be alive then.
    virtual void registerNotifer(IGLYChangeNotifier* notifier) = 0;
    virtual void unregisterNotifer(IGLYChangeNotifier* notifier) = 0;
    /// Forgets the active observers at once. What is queued stays queued.
    virtual void clearNotifiers() = 0;
    /// Applies the queued removals, then the additions, and hands `text` to every observer, in
    /// order of registration. Throws Orvil::Exception when `text` is not XML, and what observers
    /// throw.
    virtual void notifiyAll(const std::string& text) = 0;
    /// Sends a command to the font manager and returns its reply, folded into one XML document, or
    /// an empty text on failure. Blocks, for about 10 s if the font manager is not there. Never
    /// throws. Commands travel through the handler of the news because it is the one object that
    /// knows the channel to the font manager, so exchanges do not depend on the platform.
    [[nodiscard]] virtual std::string SendToGly(const std::string& command) = 0;
    /// Always returns false: a launch is waited for where it is made, by GLYController.
    virtual bool WaitForLaunch() = 0;
    virtual ~IGLYNotifyHandler() = default;
};

/// Keeps the observers; has no channel.
class BasicGLYNotifyHandler : public IGLYNotifyHandler {
public:
    /// Does nothing.
    void push() override;
    void registerNotifer(IGLYChangeNotifier* notifier) override;
    void unregisterNotifer(IGLYChangeNotifier* notifier) override;
    void clearNotifiers() override;
    void notifiyAll(const std::string& text) override;

protected:
    /// Frees the lists of an object whose destructor will not run.
    void dropLists() noexcept;

private:
    std::vector<IGLYChangeNotifier*> active_;
    std::vector<IGLYChangeNotifier*> toAdd_;
    std::vector<IGLYChangeNotifier*> toRemove_;
};

class NotifiyHandlerFactory {
public:
    /// The process-wide handler, made at the first call. The module owns it, and ends and destroys
    /// it when it is unloaded. With `renew`, the storage of the present handler is released without
    /// running its destructor, and a fresh one is made: end() the present one first, or its
    /// channels stay open. [main-thread]
    static IGLYNotifyHandler* getNotifyHandler(bool renew);
};

} // namespace GLY
