// SPDX-License-Identifier: MIT
// The other process of the platform tests: it answers, keeps silent, holds back or dies, as its
// arguments and the events it gets tell it. It speaks by lines on standard output, is spoken to by
// lines on standard input, and ends when that closes.
#include "platform/appleevents.h"
#include "platform/application.h"
#include "platform/notify.h"

#include <poll.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

namespace {

bool diesAfterAnswering = false;

void say(const std::string& line) {
    std::cout << line << std::endl;
}

/// False at the end of the input.
bool listen() {
    std::string line;
    return static_cast<bool>(std::getline(std::cin, line));
}

OSType codeOf(const std::string& text) {
    OSType code = 0;
    for (const char c : text) {
        code = (code << 8U) | static_cast<unsigned char>(c);
    }
    return code;
}

OSErr answer(AppleEvent* reply, std::int32_t number) {
    return AEPutParamPtr(reply, keyDirectObject, typeSInt32, &number, sizeof number);
}

OSErr echo(const AppleEvent* event, AppleEvent* reply) {
    DescType type = typeNull;
    Size size = 0;
    AEGetParamPtr(event, keyDirectObject, typeWildCard, &type, nullptr, 0, &size);
    std::vector<char> data(static_cast<std::size_t>(size));
    AEGetParamPtr(event, keyDirectObject, typeWildCard, nullptr, data.data(), size, nullptr);
    return AEPutParamPtr(reply, keyDirectObject, type, data.data(), size);
}

OSErr handle(const AppleEvent* event, AppleEvent* reply, void* /*refCon*/) {
    OSType what = 0;
    AEGetAttributePtr(event, keyEventIDAttr, typeType, nullptr, &what, sizeof what, nullptr);
    switch (what) {
    case FourCharCode("echo"):
        return echo(event, reply);
    case FourCharCode("who "):
        return answer(reply, getpid());
    case FourCharCode("fail"):
        return -1234;
    case FourCharCode("hold"):
        say("holding");
        return listen() ? answer(reply, 1) : OSErr{paramErr};
    case FourCharCode("die "):
        raise(SIGKILL);
        return noErr;
    case FourCharCode("last"):
        diesAfterAnswering = true;
        return answer(reply, 1);
    case FourCharCode("quit"):
        PLUnregisterApplication(); // with whatever waits behind this event
        return answer(reply, 1);
    default:
        return errAEEventNotHandled;
    }
}

int serve(OSType signature, PLInstances instances, const char* name) {
    const AEEventHandlerUPP handler = NewAEEventHandlerUPP(handle);
    AEInstallEventHandler(FourCharCode("TEST"), typeWildCard, handler, nullptr, false);
    DisposeAEEventHandlerUPP(handler);
    const OSStatus status = PLRegisterApplication(signature, instances, name);
    say(std::to_string(status));
    while (status == noErr) {
        pollfd watched[] = {{PLEventFileDescriptor(), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
        poll(watched, 2, -1);
        if (watched[0].revents != 0 && PLDispatchPendingEvents() < 0) {
            say("bus gone");
            return 0;
        }
        if (diesAfterAnswering) {
            PLUnregisterApplication();
            raise(SIGKILL);
        }
        if (watched[1].revents != 0 && !listen()) {
            break;
        }
    }
    PLUnregisterApplication();
    return 0;
}

/// Registers and never looks at an event.
int ignore(OSType signature) {
    say(std::to_string(PLRegisterApplication(signature, kPLOneInstance, nullptr)));
    listen();
    return 0;
}

int post(const char* name, int count) {
    say("ready");
    listen();
    for (int i = 0; i < count; ++i) {
        notify_post(name);
    }
    say("posted");
    return 0;
}

/// Sends one event without reply and is gone.
[[noreturn]] void tell(const std::string& target, OSType what) {
    AEAddressDesc address;
    AppleEvent event;
    AECreateDesc(typeApplSignature, target.data(), 4, &address);
    AECreateAppleEvent(FourCharCode("TEST"), what, &address, kAutoGenerateReturnID,
                       kAnyTransactionID, &event);
    const OSStatus status =
        AESend(&event, nullptr, kAENoReply, kAENormalPriority, kAEDefaultTimeout, nullptr, nullptr);
    _exit(status == noErr ? 0 : 1);
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    if (words.size() < 2) {
        return EXIT_FAILURE;
    }
    if (words[0] == "serve-one" || words[0] == "serve-many") {
        return serve(codeOf(words[1]), words[0] == "serve-one" ? kPLOneInstance : kPLManyInstances,
                     words.size() > 2 ? words[2].c_str() : nullptr);
    }
    if (words[0] == "ignore") {
        return ignore(codeOf(words[1]));
    }
    if (words[0] == "post" && words.size() == 3) {
        return post(words[1].c_str(), std::stoi(words[2]));
    }
    if (words[0] == "tell" && words.size() == 3) {
        tell(words[1], codeOf(words[2]));
    }
    return EXIT_FAILURE;
}
