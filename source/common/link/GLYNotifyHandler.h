// SPDX-License-Identifier: MIT
// News of the font manager's library for those who want it, and the way to send it a command: the
// interfaces, and the process-wide handler.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace GLY {

/// Wants to know of library changes. Threads: told on the main thread.
class IGLYChangeNotifier {
public:
    virtual ~IGLYChangeNotifier() = default;

    /// `text` is the change's command, one XML element. May register and unregister observers.
    /// The result is 0 and is not looked at.
    virtual std::int32_t OnGLYNotify(const std::string& text) = 0;
};

/// Threads: the main thread.
class IGLYNotifyHandler {
public:
    /// Begins to listen. Throws std::runtime_error when the changes cannot be watched.
    virtual void start() = 0;
    /// Ends listening. Safe without start().
    virtual void end() = 0;
    /// Called now and then; tells the observers of at most one change that has been seen since.
    virtual void push() = 0;
    /// Queues an addition or a removal for the next notifiyAll. Observers are not owned. Who
    /// registers twice is told twice; who unregisters before the next round after registering is
    /// registered all the same, for removals go first.
    virtual void registerNotifer(IGLYChangeNotifier* notifier) = 0;
    virtual void unregisterNotifer(IGLYChangeNotifier* notifier) = 0;
    /// Forgets the active observers at once; what is queued stays queued.
    virtual void clearNotifiers() = 0;
    /// Applies the queued removals, then the additions, and hands `text` to every observer in order
    /// of registration. Throws Orvil::Exception when `text` is not XML, and what observers throw.
    virtual void notifiyAll(const std::string& text) = 0;
    /// Sends a command to the font manager and returns its reply, folded into one XML document;
    /// empty on failure. Blocks, for some 10 s when the font manager is not there. Never throws.
    /// Commands travel through the handler of the news because both need the same platform: this
    /// is the one object that knows how to reach the font manager, either way.
    virtual std::string SendToGly(const std::string& command) = 0;
    /// Always false.
    virtual bool WaitForLaunch() = 0;
    virtual ~IGLYNotifyHandler() = default;
};

/// The observers, without any channel.
class BasicGLYNotifyHandler : public IGLYNotifyHandler {
public:
    /// Does nothing.
    void push() override;
    void registerNotifer(IGLYChangeNotifier* notifier) override;
    void unregisterNotifer(IGLYChangeNotifier* notifier) override;
    void clearNotifiers() override;
    void notifiyAll(const std::string& text) override;

protected:
    /// Frees the lists, for an end without the destructor.
    void dropLists() noexcept;

private:
    std::vector<IGLYChangeNotifier*> active_;
    std::vector<IGLYChangeNotifier*> toAdd_;
    std::vector<IGLYChangeNotifier*> toRemove_;
};

class NotifiyHandlerFactory {
public:
    /// The process-wide handler, made at the first call. With `renew` the storage of the present
    /// one is released without running its destructor, and a fresh one is made: end() it first, or
    /// its channels stay open. Owned by the module, which ends and destroys it when it is unloaded.
    static IGLYNotifyHandler* getNotifyHandler(bool renew);
};

} // namespace GLY
