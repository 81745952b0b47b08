// SPDX-License-Identifier: MIT
// A font manager that misbehaves as told: it takes one action per command from a script and notes
// every command that it gets. Started again after a death, it goes on where the script had stopped.
//
// usage: awkward-manager SCRIPT JOURNAL
// A line of SCRIPT is "die", "answer FILE" or "answer-and-die FILE"; the last line serves for ever.
#include "platform/appleevents.h"
#include "platform/application.h"

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

struct Script {
    std::vector<std::string> lines;
    std::string journal;
    std::size_t position = 0;
    bool dying = false;
    bool quitting = false;
};

std::vector<std::string> readLines(const std::string& path) {
    std::ifstream file(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string commandOf(const AppleEvent* event) {
    Size size = 0;
    if (AEGetParamPtr(event, keyDirectObject, typeChar, nullptr, nullptr, 0, &size) != noErr) {
        return {};
    }
    std::string text(static_cast<std::size_t>(size), '\0');
    AEGetParamPtr(event, keyDirectObject, typeChar, nullptr, text.data(), size, nullptr);
    return text;
}

[[noreturn]] void die() {
    kill(getpid(), SIGKILL);
    std::abort();
}

OSErr handle(const AppleEvent* event, AppleEvent* reply, void* context) {
    auto& script = *static_cast<Script*>(context);
    const std::string command = commandOf(event);
    // One line a command, so that a successor can count them.
    std::ofstream(script.journal, std::ios::app)
        << command.substr(0, command.find('\n')) << std::endl;
    const std::string& line = script.lines[std::min(script.position, script.lines.size() - 1)];
    ++script.position;
    if (line == "die") {
        die();
    }
    const std::size_t blank = line.find(' ');
    script.dying = line.substr(0, blank) == "answer-and-die";
    const std::string answer = readFile(line.substr(blank + 1));
    return AEPutParamPtr(reply, keyDirectObject, typeChar, answer.data(),
                         static_cast<Size>(answer.size()));
}

OSErr quit(const AppleEvent* /*event*/, AppleEvent* /*reply*/, void* context) {
    static_cast<Script*>(context)->quitting = true;
    return noErr;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        return 2;
    }
    Script script{readLines(argv[1]), argv[2], readLines(argv[2]).size()};
    if (script.lines.empty() ||
        PLRegisterApplication(FourCharCode("QGLY"), kPLOneInstance, "awkward") != noErr) {
        return 2;
    }
    AEEventHandlerUPP const handler = NewAEEventHandlerUPP(handle);
    AEEventHandlerUPP const quitHandler = NewAEEventHandlerUPP(quit);
    AEInstallEventHandler(FourCharCode("QGLY"), typeWildCard, handler, &script, false);
    AEInstallEventHandler(FourCharCode("aevt"), FourCharCode("quit"), quitHandler, &script, false);
    while (!script.quitting && PLWaitForEvents(-1) >= 0) {
        if (script.dying) {
            PLUnregisterApplication(); // the answer is out
            die();
        }
    }
    PLUnregisterApplication();
    DisposeAEEventHandlerUPP(handler);
    DisposeAEEventHandlerUPP(quitHandler);
    return 0;
}
