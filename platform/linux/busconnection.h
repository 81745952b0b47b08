// SPDX-License-Identifier: MIT
// A private connection of this process to the session bus, and the process-wide one that all
// services share.
//
// GDBus' shared connection ends the whole process when the bus dies, so it is never used. Incoming
// messages are seen by a filter in GDBus' worker, the [bus-thread], which only counts or queues
// them and never blocks; nothing here needs a main loop.
#pragma once

#include "glibhandles.h"
#include "system/descriptor.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace platform {

/// [any-thread] One connection; closed by its destructor.
class BusConnection {
public:
    /// Null, with `reason` set, when there is no bus at `address`.
    static std::shared_ptr<BusConnection> open(const std::string& address, std::string& reason);
    ~BusConnection();
    BusConnection(const BusConnection&) = delete;
    BusConnection& operator=(const BusConnection&) = delete;

    GDBusConnection* get() const { return connection_.get(); }
    /// False from the moment the bus has hung up.
    bool alive() const;
    /// The connection's socket, duplicated, to watch for the bus hanging up; owned by this object.
    int socket() const { return socket_.get(); }
    /// Tells connections apart; never 0.
    std::uint64_t serial() const { return serial_; }
    /// This process' own name on the bus (":1.42").
    std::string_view uniqueName() const { return g_dbus_connection_get_unique_name(get()); }

    /// Calls a method of the bus itself. `arguments` may be floating. Null on failure.
    VariantHandle callBus(const char* method, GVariant* arguments, const char* replyType,
                          ErrorSlot& error) const;

private:
    BusConnection(ContextHandle context, ObjectHandle<GDBusConnection> connection);

    ContextHandle context_;
    ObjectHandle<GDBusConnection> connection_;
    sys::Descriptor socket_;
    std::uint64_t serial_;
};

/// One line on standard error, after the program's name.
void say(const std::string& text);

/// What is done and what is missing is said, but for Fail.
enum class WithoutBus {
    Fail,
    StartOneUnlessNamed, ///< start a private bus for this process if the session names none
    StartOne,            ///< start one even if the session's cannot be reached
};

/// The connection of this process, made when first asked for and made again when the bus went away
/// and another can be reached.
class SessionBus {
public:
    static SessionBus& instance();

    /// Null when there is no bus.
    std::shared_ptr<BusConnection> connect(WithoutBus withoutBus = WithoutBus::Fail);
    /// The connection made last, which may have been hung up since; null before the first.
    std::shared_ptr<BusConnection> current();
    /// Where the private bus is that this process started; empty when it started none. The
    /// applications that it launches are told, since the environment of a process with threads
    /// cannot be changed safely.
    std::string startedAddress();

private:
    std::mutex mutex_;
    std::shared_ptr<BusConnection> connection_;
    std::string startedAddress_;
};

} // namespace platform
