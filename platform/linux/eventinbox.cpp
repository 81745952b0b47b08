// SPDX-License-Identifier: MIT
// Queueing of incoming events, and the refusal of what is malformed or too much.
#include "eventinbox.h"

#include "wire.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>

#include <utility>

namespace platform {

PendingAnswer::PendingAnswer(GDBusConnection* connection, GDBusMessage* call)
    : connection_(static_cast<GDBusConnection*>(g_object_ref(connection))) {
    if ((g_dbus_message_get_flags(call) & G_DBUS_MESSAGE_FLAGS_NO_REPLY_EXPECTED) == 0) {
        call_.reset(static_cast<GDBusMessage*>(g_object_ref(call)));
    }
}

PendingAnswer::~PendingAnswer() {
    refuse(errorEnded, "the application gave no answer");
}

void PendingAnswer::give(GVariant* body) {
    const VariantHandle owned(g_variant_ref_sink(body));
    if (call_) {
        GDBusMessage* answer = g_dbus_message_new_method_reply(call_.get());
        g_dbus_message_set_body(answer, owned.get());
        send(answer);
    }
}

void PendingAnswer::refuse(const char* errorName, const std::string& text) {
    if (call_) {
        send(g_dbus_message_new_method_error_literal(call_.get(), errorName, text.c_str()));
    }
}

void PendingAnswer::send(GDBusMessage* answer) {
    const ObjectHandle<GDBusMessage> owned(answer);
    ErrorSlot ignored; // the bus is gone, and the sender knows it
    g_dbus_connection_send_message(connection_.get(), answer, G_DBUS_SEND_MESSAGE_FLAGS_NONE,
                                   nullptr, ignored.out());
    call_.reset();
}

EventInbox& EventInbox::instance() {
    static Immortal<EventInbox> inbox;
    return *inbox;
}

bool EventInbox::open(std::shared_ptr<BusConnection> connection, OSType signature,
                      std::string name) {
    const std::scoped_lock lock(mutex_);
    if (connection_) {
        return false;
    }
    sys::Descriptor waitingFlag(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    sys::Descriptor descriptor(epoll_create1(EPOLL_CLOEXEC));
    epoll_event arrival{EPOLLIN, {}};
    epoll_event hangUp{EPOLLRDHUP, {}};
    const bool watched =
        epoll_ctl(descriptor.get(), EPOLL_CTL_ADD, waitingFlag.get(), &arrival) == 0 &&
        (connection->socket() == -1 ||
         epoll_ctl(descriptor.get(), EPOLL_CTL_ADD, connection->socket(), &hangUp) == 0);
    if (!watched) {
        return false;
    }
    waitingFlag_ = std::move(waitingFlag);
    descriptor_ = std::move(descriptor);
    connection_ = std::move(connection);
    signature_ = signature;
    name_ = std::move(name);
    dispatcher_ = std::this_thread::get_id();
    return true;
}

std::shared_ptr<BusConnection> EventInbox::close() {
    std::deque<IncomingEvent> refused; // ended outside the lock
    const std::scoped_lock lock(mutex_);
    if (!connection_) {
        return nullptr;
    }
    refused.swap(queue_);
    queuedBytes_ = 0;
    waitingFlag_.close();
    descriptor_.close();
    return std::exchange(connection_, nullptr);
}

bool EventInbox::isOpen() {
    const std::scoped_lock lock(mutex_);
    return connection_ != nullptr;
}

std::shared_ptr<BusConnection> EventInbox::connection() {
    const std::scoped_lock lock(mutex_);
    return connection_;
}

OSType EventInbox::signature() {
    const std::scoped_lock lock(mutex_);
    return signature_;
}

std::string EventInbox::name() {
    const std::scoped_lock lock(mutex_);
    return name_;
}

int EventInbox::descriptor() {
    const std::scoped_lock lock(mutex_);
    return descriptor_.get();
}

bool EventInbox::isConnected() {
    const std::scoped_lock lock(mutex_);
    return connection_ && connection_->alive();
}

std::size_t EventInbox::waiting() {
    const std::scoped_lock lock(mutex_);
    return queue_.size();
}

std::optional<IncomingEvent> EventInbox::next() {
    const std::scoped_lock lock(mutex_);
    if (queue_.empty()) {
        return std::nullopt;
    }
    std::optional<IncomingEvent> taken(std::move(queue_.front()));
    queue_.pop_front();
    queuedBytes_ -= taken->event.wireSize();
    if (queue_.empty()) {
        eventfd_t ignored = 0;
        eventfd_read(waitingFlag_.get(), &ignored);
    }
    return taken;
}

void EventInbox::markDispatcher() {
    const std::scoped_lock lock(mutex_);
    dispatcher_ = std::this_thread::get_id();
}

bool EventInbox::isDispatcher(std::thread::id thread) {
    const std::scoped_lock lock(mutex_);
    return connection_ && dispatcher_ == thread;
}

std::optional<std::string> EventInbox::nameOn(GDBusConnection* connection) {
    const std::scoped_lock lock(mutex_);
    return connection_ && connection_->get() == connection ? std::optional(name_) : std::nullopt;
}

void EventInbox::accept(IncomingEvent incoming) {
    const std::size_t size = incoming.event.wireSize();
    std::unique_lock lock(mutex_);
    if (!connection_ || connection_->get() != incoming.answer.connection()) {
        return; // closed in between: the answer says so
    }
    if (queue_.size() >= maximumWaiting || size > maximumWaitingBytes - queuedBytes_) {
        lock.unlock();
        return incoming.answer.refuse(errorLimitsExceeded,
                                      "too many events wait for this application already");
    }
    queue_.push_back(std::move(incoming));
    queuedBytes_ += size;
    if (queue_.size() == 1) {
        eventfd_write(waitingFlag_.get(), 1);
    }
}

bool EventInbox::takeEvent(GDBusConnection* connection, GDBusMessage* message) {
    if (g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL) {
        return false;
    }
    const char* interface = g_dbus_message_get_interface(message);
    const bool atOurPath = g_strcmp0(g_dbus_message_get_path(message), eventPath) == 0;
    const bool isProperties =
        atOurPath && g_strcmp0(interface, "org.freedesktop.DBus.Properties") == 0;
    const bool isEvent =
        g_strcmp0(interface, eventInterface) == 0 || (atOurPath && interface == nullptr);
    if (!isEvent && !isProperties) {
        return false; // GDBus answers what every process answers
    }
    PendingAnswer answer(connection, message);
    const auto name = nameOn(connection);
    if (!name) {
        answer.refuse(errorEnded, "this process is not registered as an application");
        return true;
    }

    const char* member = g_dbus_message_get_member(message);
    GVariant* body = g_dbus_message_get_body(message);
    if (isProperties) {
        const char* owner = nullptr;
        const char* property = nullptr;
        const bool isGet = g_strcmp0(member, "Get") == 0 && body != nullptr &&
                           g_variant_is_of_type(body, G_VARIANT_TYPE("(ss)")) != 0;
        if (isGet) {
            g_variant_get(body, "(&s&s)", &owner, &property);
        }
        if (g_strcmp0(owner, eventInterface) == 0 && g_strcmp0(property, nameProperty) == 0) {
            answer.give(g_variant_new("(v)", g_variant_new_string(name->c_str())));
        } else {
            answer.refuse(errorInvalidArguments, std::string("the only property is ") +
                                                     nameProperty + " of " + eventInterface +
                                                     ", and it can only be read by Get");
        }
        return true;
    }
    if (!atOurPath) {
        answer.refuse(errorUnknownObject, std::string("events are taken at ") + eventPath);
        return true;
    }
    if (g_strcmp0(member, eventMethod) != 0) {
        answer.refuse(errorUnknownMethod,
                      std::string(eventInterface) + " has only the method " + eventMethod);
        return true;
    }
    Event event;
    const WireFault fault = readEvent(body, event);
    if (fault.errorName != nullptr) {
        answer.refuse(fault.errorName, fault.text);
        return true;
    }
    const char* sender = g_dbus_message_get_sender(message);
    accept({std::move(event), std::move(answer), sender != nullptr ? sender : ""});
    return true;
}

} // namespace platform
