// SPDX-License-Identifier: MIT
// Notifications and events that the manager sends.
#include "manager/cli/announce.h"

#include "manager/library/error.h"
#include "manager/library/places.h"
#include "platform/appleevents.h"
#include "platform/notify.h"
#include "platform/processes.h"

#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace manager {

namespace {

constexpr const char* changeNotification = "org.glyphora.Glyphora.FontLibraryChanged";
constexpr int patienceMilliseconds = 5000;

/// Disposes of itself.
struct OwnedDesc : AEDesc {
    OwnedDesc() = default;
    ~OwnedDesc() { AEDisposeDesc(this); }
    OwnedDesc(const OwnedDesc&) = delete;
    OwnedDesc& operator=(const OwnedDesc&) = delete;
};

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

std::optional<std::int32_t> findServer() {
    ProcessSerialNumber process;
    while (GetNextProcess(&process) == noErr) {
        ProcessInfoRec info;
        info.processInfoLength = sizeof info;
        if (GetProcessInformation(&process, &info) == noErr &&
            info.processSignature == FourCharCode(managerSignature)) {
            return info.processID;
        }
    }
    return std::nullopt;
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
