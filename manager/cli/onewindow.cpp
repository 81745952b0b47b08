// SPDX-License-Identifier: MIT
// The window is an application with a signature of its own, of which only one may run.
#include "manager/cli/onewindow.h"

#include "manager/cli/announce.h"
#include "manager/library/error.h"
#include "manager/library/fields.h"
#include "platform/application.h"

#include <string>
#include <utility>

namespace manager {

namespace {

constexpr char signature[5] = "QGLW";
constexpr AEEventClass requestClass = FourCharCode("QGLW");
constexpr AEEventID requestId = FourCharCode("show");
constexpr AEKeyword commandKey = FourCharCode("cmnd");
constexpr AEKeyword filesKey = FourCharCode("file");
constexpr AEKeyword drawingsKey = FourCharCode("draw");

std::string textOf(const std::vector<std::string>& paths) {
    std::string lines;
    for (const std::string& path : paths) {
        lines += joinFields({path});
    }
    return lines;
}

std::vector<std::string> pathsOf(const std::string& lines) {
    std::vector<std::string> paths;
    for (const std::string_view line : splitLines(lines)) {
        if (auto fields = splitFields(line)) {
            paths.push_back(std::move(fields->front()));
        }
    }
    return paths;
}

OSStatus send(const WindowRequest& request) {
    OwnedDesc address;
    OwnedDesc event;
    OwnedDesc reply;
    OSStatus status = AECreateDesc(typeApplSignature, signature, 4, &address);
    if (status == noErr) {
        status = AECreateAppleEvent(requestClass, requestId, &address, kAutoGenerateReturnID,
                                    kAnyTransactionID, &event);
    }
    const std::string files = textOf(request.files);
    const std::string drawings = textOf(request.drawings);
    for (const auto& [key, text] :
         {std::pair(AEKeyword{keyDirectObject}, &request.search),
          std::pair(commandKey, &request.command), std::pair(filesKey, &files),
          std::pair(drawingsKey, &drawings)}) {
        if (status == noErr) {
            status =
                AEPutParamPtr(&event, key, typeChar, text->data(), static_cast<Size>(text->size()));
        }
    }
    return status != noErr ? status
                           : AESend(&event, &reply, kAEWaitReply, kAENormalPriority,
                                    kAEDefaultTimeout, nullptr, nullptr);
}

std::string textOf(const AppleEvent* event, AEKeyword key) {
    Size size = 0;
    if (AEGetParamPtr(event, key, typeChar, nullptr, nullptr, 0, &size) != noErr) {
        return {};
    }
    std::string text(static_cast<std::size_t>(size), '\0');
    AEGetParamPtr(event, key, typeChar, nullptr, text.data(), size, nullptr);
    return text;
}

} // namespace

bool handOver(const WindowRequest& request) {
    // One that closes leaves its place to whoever comes first.
    for (;;) {
        if (PLRegisterApplication(FourCharCode(signature), kPLOneInstance,
                                  "Glyphora Font Library") != kPLAlreadyRunningErr) {
            return false;
        }
        const OSStatus status = send(request);
        if (status == noErr) {
            return true;
        }
        if (status != procNotFound && status != connectionInvalid) {
            throw Error("the window that is open does not answer (status " +
                        std::to_string(status) + ")");
        }
    }
}

bool isWindowOpen() {
    return findApplication(signature).has_value();
}

WindowRequests::WindowRequests(std::function<void(const WindowRequest&)> take)
    : take_(std::move(take)), handler_(requestClass, requestId, handle, this) {}

OSErr WindowRequests::handle(const AppleEvent* event, AppleEvent* /*reply*/, void* own) {
    static_cast<WindowRequests*>(own)->take_(
        {textOf(event, keyDirectObject), textOf(event, commandKey),
         pathsOf(textOf(event, filesKey)), pathsOf(textOf(event, drawingsKey))});
    return noErr;
}

} // namespace manager
