// SPDX-License-Identifier: MIT
// The desktop's services by script, in virtual time: what a test sets up here is what the code
// under test finds behind platform/include, and what it did there can be read here. Nothing waits.
#pragma once

#include "platform/appleevents.h"
#include "platform/processes.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace scripted {

/// One typed piece of data of an event.
struct Parameter {
    DescType type = typeChar;
    std::string bytes;
};
using Parameters = std::vector<std::pair<AEKeyword, Parameter>>; // in the order they were put

/// An event as AESend got it.
struct SentEvent {
    AEEventClass eventClass = 0;
    AEEventID eventID = 0;
    Parameter target;
    AEReturnID returnID = 0;
    AETransactionID transactionID = 0;
    Parameters parameters;
    AESendMode sendMode = 0;
    AESendPriority priority = 0;
    std::int32_t timeOut = 0;

    std::string directText() const;
};

/// What one AESend comes to.
struct Answer {
    OSStatus status = noErr;
    Parameters parameters;        ///< of the reply
    OSErr fetchStatus = noErr;    ///< when a parameter's bytes are read, not only its size
    std::function<void()> effect; ///< runs inside AESend; may throw
};
/// A reply with one text.
Answer textAnswer(std::string text);
Answer failedAnswer(OSStatus status);

/// An application that Launch Services finds.
struct Application {
    std::string path;
    OSStatus lookUpStatus = noErr;
    bool givesUrl = true;
    OSErr catalogStatus = noErr;
    OSErr launchStatus = noErr;
    OSType signature = 0;   ///< of the process that a launch makes; 0: none
    double startUpTime = 0; ///< seconds from the launch until the process is seen
};

/// A process that the walk shows from `appearsAt` on.
struct Process {
    OSType signature = 0;
    std::int32_t id = 0;
    double appearsAt = 0;
};

/// The services of one test, only those that the plug-in calls. One at a time.
/// Notifications are [any-thread], everything else belongs to the test's own.
class Platform {
public:
    Platform();
    Platform(const Platform&) = delete;
    Platform& operator=(const Platform&) = delete;
    ~Platform();
    /// Null without one.
    static Platform* current();

    // Time, in seconds from 0. Pauses take as long as they say; each look at the clock takes
    // `clockStep`, as the code between two looks would.
    double now = 0;
    double clockStep = 0.001;
    std::vector<std::uint32_t> delays; ///< in ticks, as asked for

    // Processes and launching.
    std::vector<Process> processes;
    std::map<std::string, Application> applications; ///< by bundle identifier
    std::vector<std::string> lookUps;                ///< bundle identifiers asked for, in order
    std::vector<CFStringEncoding> encodings;         ///< of the texts that were made
    std::vector<LaunchParamBlockRec> launches;       ///< without the specs they point to
    std::vector<std::string> launchedPaths;
    std::vector<std::string> shown; ///< what CFShow printed
    int walks = 0;                  ///< walks over the processes that were begun

    // Apple events. An event takes the next answer, or the last one when only that is left.
    std::deque<Answer> answers;
    std::vector<SentEvent> sent;
    OSErr createDescStatus = noErr;
    OSErr createEventStatus = noErr;
    OSErr putParameterStatus = noErr;
    /// Hands an event to the installed handler; what that returned, or errAEHandlerNotFound.
    OSErr handle(AEEventClass eventClass, AEEventID eventID);
    bool hasHandler(AEEventClass eventClass, AEEventID eventID) const;

    // Notifications.
    std::uint32_t registerStatus = 0;
    std::vector<std::string> registered; ///< names, in order
    std::vector<int> cancelled;          ///< tokens, in order
    void post(const std::string& name);
    /// Blocks until every posting has been seen and whoever saw it has come back for more: what it
    /// does with a posting is done then.
    void awaitAllNoticed();

    /// What has been made and not been released yet.
    int liveDescriptors = 0;
    int liveRoutines = 0;
    int liveObjects = 0;

    // For the services.
    struct Handler {
        AEEventClass eventClass;
        AEEventID eventID;
        AEEventHandlerUPP routine;
        void* refCon;
    };
    struct Token {
        std::string name;
        int unseen = 0;
        int idleChecks = 0; // since the last posting
    };
    std::vector<Handler> handlers;
    std::mutex notificationLock;
    std::condition_variable noticed;
    std::map<int, Token> tokens;
    int lastToken = 0;
};

} // namespace scripted
