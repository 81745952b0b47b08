// SPDX-License-Identifier: MIT
// Notifications and events that the manager sends.
#include "manager/cli/announce.h"

#include "manager/cli/events.h"
#include "manager/library/error.h"
#include "manager/library/places.h"
#include "platform/notify.h"
#include "platform/processes.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <gio/gio.h>
#include <memory>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace manager {

namespace {

constexpr int patienceMilliseconds = 5000;

struct Releaser {
    void operator()(gpointer object) const { g_object_unref(object); }
};
template <class Object>
using Held = std::unique_ptr<Object, Releaser>;

OSType codeOf(const std::string& fourBytes) {
    OSType code = 0;
    for (const char c : fourBytes) {
        code = (code << 8U) | static_cast<unsigned char>(c);
    }
    return code;
}

} // namespace

void postLibraryChanged() {
    notify_post(changeNotification);
}

void postSetsChanged() {
    notify_post(setsNotification);
}

bool sendLibraryChanged(const ChangeTarget& target) {
    OwnedDesc address;
    OwnedDesc event;
    AEDesc noReply;
    if (AECreateDesc(typeKernelProcessID, &target.processId, sizeof target.processId, &address) !=
            noErr ||
        AECreateAppleEvent(codeOf(target.eventClass), FourCharCode("FSBC"), &address,
                           kAutoGenerateReturnID, kAnyTransactionID, &event) != noErr) {
        return false;
    }
    // Never with a reply: the receiver may be waiting for this process.
    return AESend(&event, &noReply, kAENoReply, kAENormalPriority, kAEDefaultTimeout, nullptr,
                  nullptr) == noErr;
}

std::optional<std::int32_t> findApplication(const char* signature) {
    ProcessSerialNumber process;
    while (GetNextProcess(&process) == noErr) {
        ProcessInfoRec info;
        info.processInfoLength = sizeof info;
        if (GetProcessInformation(&process, &info) == noErr &&
            info.processSignature == codeOf(signature)) {
            return info.processID;
        }
    }
    return std::nullopt;
}

bool startServer() {
    const char* const address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    if (address == nullptr) {
        return false;
    }
    // One of its own: the shared one ends the process with the bus.
    const Held<GDBusConnection> bus(g_dbus_connection_new_for_address_sync(
        address,
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr));
    if (!bus) {
        return false;
    }
    const std::unique_ptr<GVariant, void (*)(GVariant*)> started(
        g_dbus_connection_call_sync(
            bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
            "StartServiceByName",
            g_variant_new("(su)", "org.glyphora.AppleEvents1.QGLY", guint32{0}), nullptr,
            G_DBUS_CALL_FLAGS_NONE, patienceMilliseconds, nullptr, nullptr),
        g_variant_unref);
    return started != nullptr;
}

void askServerToQuit() {
    const auto server = findServer();
    const sys::Descriptor process(server ? static_cast<int>(syscall(SYS_pidfd_open, *server, 0))
                                         : -1);
    OwnedDesc address;
    OwnedDesc event;
    OwnedDesc reply;
    OSStatus status = AECreateDesc(typeApplSignature, managerSignature, 4, &address);
    if (status == noErr) {
        status = AECreateAppleEvent(FourCharCode("aevt"), FourCharCode("quit"), &address,
                                    kAutoGenerateReturnID, kAnyTransactionID, &event);
    }
    if (status == noErr) {
        status = AESend(&event, &reply, kAEWaitReply, kAENormalPriority, kAEDefaultTimeout, nullptr,
                        nullptr);
    }
    if (status == procNotFound || status == connectionInvalid) {
        throw Error("no server is running");
    }
    if (status != noErr) {
        throw Error("the server did not answer (status " + std::to_string(status) + ")");
    }
    // Whoever starts the next one must not meet this one still leaving.
    pollfd ended{process.get(), POLLIN, 0};
    while (process && poll(&ended, 1, patienceMilliseconds) < 0 && errno == EINTR) {
    }
}

} // namespace manager
