// SPDX-License-Identifier: MIT
// The server's one loop: events, signals, the scan in a process of its own, reasons that end, and
// timers.
#include "manager/cli/announce.h"
#include "manager/cli/arguments.h"
#include "manager/cli/events.h"
#include "manager/cli/history.h"
#include "manager/cli/reasonwatch.h"
#include "manager/cli/report.h"
#include "manager/cli/scanprocess.h"
#include "manager/cli/server.h"
#include "manager/cli/timer.h"
#include "manager/library/error.h"
#include "platform/application.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <optional>
#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>
#include <utility>

namespace manager {

namespace {

/// Blocks the signals that the loop reads, before any thread of the bus begins.
sys::Descriptor readSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGTERM, SIGINT, SIGHUP, SIGCHLD}) {
        sigaddset(&signals, number);
    }
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    sys::Descriptor descriptor(signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
    if (!descriptor) {
        throw systemError("serve", "cannot read signals", errno);
    }
    return descriptor;
}

/// What the event handlers reach through their reference constant.
struct HandlerContext {
    Server* server;
    bool quit = false;
};

OSErr putText(AppleEvent* reply, const std::string& text) {
    return AEPutParamPtr(reply, keyDirectObject, typeChar, text.data(),
                         static_cast<Size>(text.size()));
}

OSErr putReply(AppleEvent* reply, const std::string& text) {
    const OSErr status = putText(reply, text);
    return status == memFullErr
               ? putText(reply, failureReply("", "the reply is too long; ask for fewer fonts"))
               : status;
}

/// [handler-thread] Answers one command of a plug-in.
OSErr handleCommand(const AppleEvent* event, AppleEvent* reply, void* refCon) {
    auto* context = static_cast<HandlerContext*>(refCon);
    Size size = 0;
    OSErr status = AEGetParamPtr(event, keyDirectObject, typeChar, nullptr, nullptr, 0, &size);
    std::string command(status == noErr ? static_cast<std::size_t>(size) : 0, '\0');
    if (status == noErr) {
        status =
            AEGetParamPtr(event, keyDirectObject, typeChar, nullptr, command.data(), size, &size);
    }
    if (status != noErr) {
        return status;
    }
    std::int32_t sender = 0;
    const bool isSenderKnown = AEGetAttributePtr(event, keySenderPIDAttr, typeSInt32, nullptr,
                                                 &sender, sizeof sender, nullptr) == noErr;
    const auto now = context->server->answer(
        std::move(command), isSenderKnown ? std::optional(sender) : std::nullopt,
        [event, reply](const std::string& text) {
            putReply(reply, text);
            AEResumeTheCurrentEvent(event, reply, kAENoDispatch, nullptr);
        });
    return now ? putReply(reply, *now) : AESuspendTheCurrentEvent(event);
}

/// [handler-thread] Ends the loop after this event.
OSErr handleQuit(const AppleEvent* /*event*/, AppleEvent* /*reply*/, void* refCon) {
    static_cast<HandlerContext*>(refCon)->quit = true;
    return noErr;
}

// Registered while it lives.
class Registration {
public:
    Registration()
        : status_(
              PLRegisterApplication(FourCharCode(managerSignature), kPLOneInstance, "Glyphora")) {}
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;
    ~Registration() {
        if (status_ == noErr) {
            PLUnregisterApplication();
        }
    }
    [[nodiscard]] OSStatus status() const { return status_; }

private:
    OSStatus status_;
};

// After a change by whomever, reasons are looked at: one of them may be new.
constexpr std::chrono::milliseconds reasonDelay{500};
// A copy of many files into a folder is scanned once it has come to rest, or now and then while it
// does not.
constexpr std::chrono::milliseconds scanDelay{1000};
constexpr std::chrono::milliseconds longestScanDelay{5000};
// Between scans for changes of which nothing is heard; and at most this part of the time goes into
// them.
constexpr std::chrono::milliseconds usualPollTime{60'000};
constexpr int pollShare = 20;

class Loop {
public:
    Loop(const Places& places, bool verbose, sys::Descriptor signals)
        : signals_(std::move(signals)), reasons_(places.fonts()), server_(places, verbose),
          watch_(places), pollTime_(timeOr("GLYPHORA_POLL_TIME", usualPollTime)) {}

    void run() {
        HandlerContext context{&server_};
        const EventHandler commands(FourCharCode("QGLY"), typeWildCard, handleCommand, &context);
        const EventHandler quit(FourCharCode("aevt"), FourCharCode("quit"), handleQuit, &context);
        watchFolders();
        scanTimer_.restart(std::chrono::milliseconds(0), longestScanDelay);
        server_.takeScanNeed(); // met by this scan
        while (!context.quit) {
            waitForAnything();
            if (PLDispatchPendingEvents() < 0) {
                warn("the session bus is gone");
                return;
            }
            server_.goOn();
            server_.tellOthers();
            if (readSignals()) {
                return;
            }
            look();
        }
    }

    /// What is left to be done once it does not run any more.
    void end() { server_.end(); }

private:
    void waitForAnything() {
        std::array<pollfd, 7> sources = {{{PLEventFileDescriptor(), POLLIN, 0},
                                          {signals_.get(), POLLIN, 0},
                                          {watch_.descriptor(), POLLIN, 0},
                                          {watch_.mountDescriptor(), POLLPRI, 0},
                                          {server_.activator().descriptor(), POLLIN, 0},
                                          {reasons_.descriptor(), POLLIN, 0},
                                          {reasons_.changeDescriptor(), POLLIN, 0}}};
        // A scan that is due while one runs waits for the end of that, which is a signal.
        int wait = watch_.isUnderWay()
                       ? 0
                       : reasonTimer_.shorten(reasonPollTimer_.shorten(reasons_.shorten(-1)));
        if (!scan_.isRunning()) {
            wait = pollTimer_.shorten(scanTimer_.shorten(wait));
        }
        if (const auto deadline = server_.nextDeadline()) {
            Timer answering;
            answering.startAt(*deadline);
            wait = answering.shorten(wait);
        }
        poll(sources.data(), sources.size(), wait);
        if (sources[3].revents != 0) {
            watch_.checkMounts();
        }
    }

    // Whether one of them means the end.
    bool readSignals() {
        signalfd_siginfo info{};
        while (read(signals_.get(), &info, sizeof info) == sizeof info) {
            if (info.ssi_signo != SIGCHLD) {
                return true;
            }
        }
        return false;
    }

    void startScan() {
        pollTimer_.stop();
        scanBegun_ = std::chrono::steady_clock::now();
        scan_.start();
        if (!scan_.isRunning()) {
            planPoll();
        }
    }

    void planPoll() {
        if (isDeaf_) {
            const auto now = std::chrono::steady_clock::now();
            pollTimer_.startAt(now + std::max<std::chrono::steady_clock::duration>(
                                         pollTime_, pollShare * (now - scanBegun_)));
        }
    }

    void watchFolders() {
        isDeaf_ = !server_.watchFolders(watch_);
        planPoll();
    }

    // In portions, as commands come first. What changes in a folder before it is watched is found
    // by a scan after that: the first one waits for all watches, and new ones call for another.
    void goOnWatching() {
        if (const auto result = watch_.goOn()) {
            server_.noteUnwatched(result->missed);
            if (result->added != 0) {
                scanTimer_.restart(std::chrono::milliseconds(0), longestScanDelay);
            }
            isDeaf_ = result->isDeaf;
            planPoll();
        }
    }

    void look() {
        server_.noteGuests();
        if (scan_.hasEnded()) {
            server_.followFiles();
            watchFolders();
        }
        if (watch_.isUnderWay()) {
            goOnWatching();
        }
        if (watch_.drain() || server_.takeScanNeed()) {
            scanTimer_.restart(scanDelay, longestScanDelay);
        }
        if (!scan_.isRunning() && !watch_.isUnderWay() &&
            (scanTimer_.takeExpired() || pollTimer_.takeExpired())) {
            startScan();
        }
        if (auto ending = server_.takeEndingReasons()) {
            reasons_.watch(*ending);
        }
        reasons_.noteChanges(server_.takeTouchedSets());
        if (reasons_.takeChange()) {
            reasonTimer_.startUnlessRunning(reasonDelay);
        }
        bool isLook = reasonTimer_.takeExpired();
        if (reasonPollTimer_.takeExpired()) {
            reasons_.lookAgain();
            isLook = true;
        }
        if (reasons_.isDeaf()) {
            reasonPollTimer_.startUnlessRunning(pollTime_);
        }
        if (reasons_.takeEnd() || isLook) {
            server_.activator().withdraw(reasons_.takeChangedSets());
        }
    }

    sys::Descriptor signals_;
    ReasonWatch reasons_; // before the records are read for the first time
    Server server_;
    FolderWatch watch_;
    ScanProcess scan_;
    Timer scanTimer_;
    std::chrono::milliseconds pollTime_;
    std::chrono::steady_clock::time_point scanBegun_;
    bool isDeaf_ = false; ///< not all changes are heard of
    Timer pollTimer_;     ///< runs between scans then
    Timer reasonTimer_;
    Timer reasonPollTimer_; ///< runs while changes that others make are not heard of
};

} // namespace

int serveCommand(const Places& places, bool verbose) {
    sys::Descriptor signals = readSignals();
    // The signature first: whoever launched this process sees it, and its events wait for us.
    std::optional<Registration> registration(std::in_place);
    if (registration->status() == kPLAlreadyRunningErr) {
        warn("a server is running already");
        return exitSuccess;
    }
    if (registration->status() == connectionInvalid) {
        return exitFailure; // it has said why
    }
    if (registration->status() != noErr) {
        throw Error("serve: cannot be registered (status " +
                    std::to_string(registration->status()) + ")");
    }
    makeFolders(places.own());
    recordDeed(places, Deed::Started, "server started, process " + std::to_string(getpid()));
    {
        Loop loop(places, verbose, std::move(signals));
        loop.run();
        registration.reset(); // another server may begin: the rest needs no place on the bus
        loop.end();
    }
    recordDeed(places, Deed::Stopped, "server stopped");
    return exitSuccess;
}

} // namespace manager
