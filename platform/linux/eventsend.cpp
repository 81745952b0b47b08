// SPDX-License-Identifier: MIT
// Sending events: finding the receiver, the call, and what became of it.
#include "event.h"
#include "eventinbox.h"
#include "peers.h"
#include "wire.h"

#include <cstring>
#include <limits>
#include <thread>

using platform::BusConnection;
using platform::ErrorSlot;
using platform::Event;
using platform::eventOf;
using platform::ObjectHandle;
using platform::Peer;

namespace {

constexpr std::int64_t ticksPerSecond = 60;
constexpr std::int64_t defaultTimeoutTicks = 15 * ticksPerSecond;

/// In milliseconds, rounded up; as GDBus takes it.
int timeoutOf(std::int32_t ticks) {
    if (ticks == kNoTimeOut) {
        return G_MAXINT;
    }
    const std::int64_t counted = ticks == kAEDefaultTimeout ? defaultTimeoutTicks : ticks;
    const std::int64_t milliseconds = (counted * 1000 + ticksPerSecond - 1) / ticksPerSecond;
    return static_cast<int>(std::min<std::int64_t>(milliseconds, G_MAXINT - 1));
}

Peer findTarget(const BusConnection& connection, const platform::EventItem& target) {
    gsize size = 0;
    const auto* bytes = static_cast<const unsigned char*>(
        g_bytes_get_data(target.data.get(), &size)); // four of them, see AECreateAppleEvent
    if (target.type == DescType{typeKernelProcessID}) {
        std::int32_t processID = 0;
        std::memcpy(&processID, bytes, sizeof processID);
        return platform::findByProcessID(connection, processID);
    }
    OSType signature = 0;
    for (gsize i = 0; i < size; ++i) {
        signature = (signature << 8U) | bytes[i];
    }
    return platform::findBySignature(connection, signature);
}

OSStatus sendOnly(const BusConnection& connection, GDBusMessage* call) {
    g_dbus_message_set_flags(
        call, static_cast<GDBusMessageFlags>(G_DBUS_MESSAGE_FLAGS_NO_AUTO_START |
                                             G_DBUS_MESSAGE_FLAGS_NO_REPLY_EXPECTED));
    ErrorSlot error;
    // Flushed, so that a program may send as its last deed.
    const bool sent =
        g_dbus_connection_send_message(connection.get(), call, G_DBUS_SEND_MESSAGE_FLAGS_NONE,
                                       nullptr, error.out()) != 0 &&
        g_dbus_connection_flush_sync(connection.get(), nullptr, error.out()) != 0;
    return sent ? OSStatus{noErr} : platform::statusOfError(error.get());
}

OSStatus sendAndWait(const BusConnection& connection, GDBusMessage* call, int timeout,
                     AppleEvent* reply) {
    g_dbus_message_set_flags(call, G_DBUS_MESSAGE_FLAGS_NO_AUTO_START);
    ErrorSlot error;
    const ObjectHandle<GDBusMessage> answer(g_dbus_connection_send_message_with_reply_sync(
        connection.get(), call, G_DBUS_SEND_MESSAGE_FLAGS_NONE, timeout, nullptr, nullptr,
        error.out()));
    if (!answer || g_dbus_message_to_gerror(answer.get(), error.out()) != 0) {
        return platform::statusOfError(error.get());
    }
    Event read;
    read.eventClass = FourCharCode("aevt");
    read.eventID = FourCharCode("ansr");
    if (platform::readReply(g_dbus_message_get_body(answer.get()), read).errorName != nullptr) {
        return errAEReplyNotValid;
    }
    return platform::makeEventDesc(std::move(read), *reply);
}

} // namespace

OSStatus AESend(const AppleEvent* event, AppleEvent* reply, AESendMode sendMode,
                AESendPriority /*priority*/, std::int32_t timeOutInTicks, AEIdleUPP /*idle*/,
                AEFilterUPP /*filter*/) {
    AEInitializeDesc(reply);
    const Event* sent = eventOf(event);
    if (sent == nullptr || !sent->target.data) {
        return errAENotAEDesc;
    }
    const bool waits = sendMode == kAEWaitReply;
    if ((!waits && sendMode != kAENoReply) || (waits && reply == nullptr) ||
        timeOutInTicks < kNoTimeOut) {
        return paramErr;
    }
    const auto connection = platform::SessionBus::instance().connect();
    if (!connection) {
        return connectionInvalid;
    }
    const Peer peer = findTarget(*connection, sent->target);
    if (peer.busName.empty()) {
        return connection->alive() ? procNotFound : connectionInvalid;
    }
    if (waits && peer.isSelf &&
        platform::EventInbox::instance().isDispatcher(std::this_thread::get_id())) {
        return errAETimeout; // nobody else could answer: there is no use in waiting for it
    }
    const ObjectHandle<GDBusMessage> call(
        g_dbus_message_new_method_call(peer.busName.c_str(), platform::eventPath,
                                       platform::eventInterface, platform::eventMethod));
    g_dbus_message_set_body(call.get(), platform::eventBody(*sent));
    return waits ? sendAndWait(*connection, call.get(), timeoutOf(timeOutInTicks), reply)
                 : sendOnly(*connection, call.get());
}
