// SPDX-License-Identifier: MIT
// The events that came in for this application, from the bus thread to the thread that dispatches.
#pragma once

#include "busconnection.h"
#include "event.h"
#include "system/descriptor.h"

#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace platform {

/// The answer that one call on the bus still owes its sender. One that was not given when this ends
/// is an error, so that no sender waits for an application that ended or a handler that threw.
class PendingAnswer {
public:
    PendingAnswer(GDBusConnection* connection, GDBusMessage* call);
    ~PendingAnswer();
    PendingAnswer(PendingAnswer&&) = default;
    PendingAnswer& operator=(PendingAnswer&&) = delete;

    void give(GVariant* body);
    void refuse(const char* errorName, const std::string& text);
    GDBusConnection* connection() const { return connection_.get(); }

private:
    void send(GDBusMessage* answer);

    ObjectHandle<GDBusConnection> connection_;
    ObjectHandle<GDBusMessage> call_; ///< null once answered, or when no answer is wanted
};

struct IncomingEvent {
    Event event;
    PendingAnswer answer;
    std::string sender; ///< its unique name on the bus
};

/// One per process. [any-thread] but for takeEvent.
class EventInbox {
public:
    /// What may wait before further events are refused.
    static constexpr std::size_t maximumWaiting = 4096;
    static constexpr std::size_t maximumWaitingBytes = 256UL * 1024 * 1024;

    static EventInbox& instance();

    /// Takes events of `connection` from now on. False: open already, or no descriptors left.
    bool open(std::shared_ptr<BusConnection> connection, OSType signature, std::string name);
    /// Refuses what waits. Returns the connection, or null when not open.
    std::shared_ptr<BusConnection> close();

    bool isOpen();
    /// Null when closed.
    std::shared_ptr<BusConnection> connection();
    OSType signature();
    std::string name();
    /// Readable while events wait or the bus is gone; -1 when closed.
    int descriptor();
    /// False when closed or the bus is gone.
    bool isConnected();
    std::size_t waiting();
    /// The event that waited longest.
    std::optional<IncomingEvent> next();

    /// Notes that the calling thread is the one that dispatches.
    void markDispatcher();
    bool isDispatcher(std::thread::id thread);

    /// [bus-thread] True when the message was a call for this application, which is then queued or
    /// refused.
    bool takeEvent(GDBusConnection* connection, GDBusMessage* message);

private:
    std::optional<std::string> nameOn(GDBusConnection* connection);
    void accept(IncomingEvent incoming);

    std::mutex mutex_;
    std::shared_ptr<BusConnection> connection_; ///< null: closed
    OSType signature_ = 0;
    std::string name_;
    std::thread::id dispatcher_;
    sys::Descriptor waitingFlag_; ///< eventfd, counts 1 while the queue is not empty
    sys::Descriptor descriptor_;  ///< epoll over waitingFlag_ and the socket's hanging up
    std::deque<IncomingEvent> queue_;
    std::size_t queuedBytes_ = 0;
};

} // namespace platform
