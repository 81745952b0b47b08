// SPDX-License-Identifier: MIT
// Opening, watching and closing the connection to the session bus.
#include "busconnection.h"

#include "eventinbox.h"
#include "notifications.h"
#include "privatebus.h"
#include "signalmask.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <iostream>
#include <optional>
#include <system_error>

namespace platform {

namespace {

constexpr std::chrono::milliseconds busCallTimeout{15'000};

/// [bus-thread] Runs for every message in both directions.
GDBusMessage* filterMessage(GDBusConnection* connection, GDBusMessage* message, gboolean incoming,
                            gpointer /*data*/) {
    if (incoming == 0) {
        return message;
    }
    const bool taken = Notifications::instance().takePosting(message) ||
                       EventInbox::instance().takeEvent(connection, message);
    if (!taken) {
        return message;
    }
    g_object_unref(message);
    return nullptr;
}

/// Where the session's bus should be; nothing when the session names none.
std::optional<std::string> sessionAddress() {
    const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    if (address != nullptr && *address != '\0') {
        return address;
    }
    const char* runtimeFolder = std::getenv("XDG_RUNTIME_DIR");
    if (runtimeFolder == nullptr || *runtimeFolder == '\0') {
        return std::nullopt;
    }
    const std::string path = std::string(runtimeFolder) + "/bus";
    std::error_code ignored;
    if (!std::filesystem::exists(path, ignored)) {
        return std::nullopt;
    }
    const TextHandle escaped(g_dbus_address_escape_value(path.c_str()));
    return "unix:path=" + std::string(escaped.get());
}

std::shared_ptr<BusConnection> openPrivateBus(const std::string& why, std::string& startedAddress) {
    std::string reason;
    const auto address = startPrivateBus(reason);
    auto connection = address ? BusConnection::open(*address, reason) : nullptr;
    if (!connection) {
        say(why + ", and no private bus could be started: " + reason);
        return nullptr;
    }
    startedAddress = *address;
    say(why + "; started a private one for this process: " + *address);
    return connection;
}

} // namespace

void say(const std::string& text) {
    std::cerr << std::string(program_invocation_short_name) + ": " + text + "\n";
}

BusConnection::BusConnection(ContextHandle context, ObjectHandle<GDBusConnection> connection)
    : context_(std::move(context)), connection_(std::move(connection)) {
    static std::atomic<std::uint64_t> connections = 0;
    serial_ = ++connections;
    GIOStream* stream = g_dbus_connection_get_stream(get());
    if (G_IS_SOCKET_CONNECTION(stream)) {
        GSocket* socket = g_socket_connection_get_socket(G_SOCKET_CONNECTION(stream));
        socket_ = sys::Descriptor(fcntl(g_socket_get_fd(socket), F_DUPFD_CLOEXEC, 0));
    }
    // No data goes with the filter: what it uses lives as long as the process, so it may still run
    // while the connection is being closed.
    g_dbus_connection_add_filter(get(), filterMessage, nullptr, nullptr);
}

BusConnection::~BusConnection() {
    g_dbus_connection_close_sync(get(), nullptr, nullptr);
    // The notice of the closing waits in the context and holds the connection.
    while (g_main_context_iteration(context_.get(), FALSE) != 0) {
    }
}

std::shared_ptr<BusConnection> BusConnection::open(const std::string& address,
                                                   std::string& reason) {
    // A context of its own, so that nothing of the connection is ever queued on the program's main
    // loop, which may not run.
    ContextHandle context(g_main_context_new());
    const ObjectHandle<GCancellable> cancellable(g_cancellable_new());
    ErrorSlot error;
    const auto connect = [&] {
        g_main_context_push_thread_default(context.get());
        ObjectHandle<GDBusConnection> opened(g_dbus_connection_new_for_address_sync(
            address.c_str(),
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, cancellable.get(), error.out()));
        g_main_context_pop_thread_default(context.get());
        return opened;
    };
    // On a thread of its own, since it has no time-out: a bus that accepts and keeps silent must
    // neither hold the program for ever nor keep its signals from it.
    ObjectHandle<GDBusConnection> connection;
    try {
        std::future<ObjectHandle<GDBusConnection>> opening;
        {
            const SignalMask mask; // also for GDBus' worker thread, which this one makes
            opening = std::async(std::launch::async, connect);
        }
        if (opening.wait_for(busCallTimeout) == std::future_status::timeout) {
            g_cancellable_cancel(cancellable.get());
        }
        connection = opening.get();
    } catch (const std::system_error& failure) {
        reason = failure.what();
        return nullptr;
    }
    if (!connection) {
        reason = g_cancellable_is_cancelled(cancellable.get()) != 0 ? "it does not answer"
                                                                    : error.message();
        return nullptr;
    }
    g_dbus_connection_set_exit_on_close(connection.get(), FALSE);
    return std::shared_ptr<BusConnection>(
        new BusConnection(std::move(context), std::move(connection)));
}

bool BusConnection::alive() const {
    if (g_dbus_connection_is_closed(get()) != 0) {
        return false;
    }
    // GDBus tells of the end only after its thread has read up to it; the socket tells at once.
    pollfd watched{socket_.get(), POLLRDHUP, 0};
    // A signal that interrupts this tells nothing of the bus.
    return !socket_ || ::poll(&watched, 1, 0) <= 0;
}

VariantHandle BusConnection::callBus(const char* method, GVariant* arguments, const char* replyType,
                                     ErrorSlot& error) const {
    return VariantHandle(g_dbus_connection_call_sync(
        get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method,
        arguments, G_VARIANT_TYPE(replyType), G_DBUS_CALL_FLAGS_NO_AUTO_START,
        static_cast<int>(busCallTimeout.count()), nullptr, error.out()));
}

SessionBus& SessionBus::instance() {
    static Immortal<SessionBus> bus;
    return *bus;
}

std::shared_ptr<BusConnection> SessionBus::connect(WithoutBus withoutBus) {
    const std::scoped_lock lock(mutex_);
    if (connection_ && connection_->alive()) {
        return connection_;
    }
    connection_.reset();
    std::string why = "there is no session bus";
    const auto address =
        startedAddress_.empty() ? sessionAddress() : std::optional(startedAddress_);
    if (address) {
        std::string reason;
        connection_ = BusConnection::open(*address, reason);
        why = "the session bus at " + *address + " cannot be reached (" + reason + ")";
    }
    const bool named = address && startedAddress_.empty();
    if (!connection_ && named && withoutBus == WithoutBus::StartOneUnlessNamed) {
        say(why);
    } else if (!connection_ && withoutBus != WithoutBus::Fail) {
        connection_ = openPrivateBus(why, startedAddress_);
    }
    if (connection_) {
        Notifications::instance().restoreMatches(*connection_);
    }
    return connection_;
}

std::string SessionBus::startedAddress() {
    const std::scoped_lock lock(mutex_);
    return startedAddress_;
}

std::shared_ptr<BusConnection> SessionBus::current() {
    const std::scoped_lock lock(mutex_);
    return connection_;
}

} // namespace platform
