// SPDX-License-Identifier: MIT
// The server: what it does with a command and after it. Who waits for what is in serverloop.
#pragma once

#include "manager/activation/activation.h"
#include "manager/activation/activator.h"
#include "manager/cli/folderwatch.h"
#include "manager/cli/guestprocesses.h"
#include "manager/cli/history.h"
#include "manager/cli/timer.h"
#include "manager/exchange/exchange.h"

#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace manager {

/// [main-thread] A command is answered before anybody is told of what it changed.
class Server {
public:
    /// So many commands may be under way; more are answered at once, as things stand.
    static constexpr std::size_t maximumPending = 4096;

    /// Begins to mend what a crash left. Throws Error.
    Server(const Places& places, bool verbose);

    using Clock = std::chrono::steady_clock;
    /// Takes the reply of a command.
    using Receiver = std::function<void(const std::string& reply)>;

    /// Answers one command text of a process (nullopt: it has gone). Never throws: what goes wrong
    /// stands in the reply. nullopt: the reply goes to `later`, when all is done or the time is up.
    [[nodiscard]] std::optional<std::string>
    answer(std::string command, std::optional<std::int32_t> sender, Receiver later);
    /// Takes up what the activator has done, and answers what then can be answered, or must be.
    void goOn();
    /// When goOn() is to be called at the latest.
    [[nodiscard]] std::optional<Clock::time_point> nextDeadline() const;

    /// Has active sets follow files that were replaced, unless the index is as it was when that was
    /// done last; to be called after a scan.
    void followFiles();
    /// Tells others of changes, and has fonts shown that are to be; to be called when no sender
    /// waits for an answer any more.
    void tellOthers();
    /// Settles what was done, and tells of it. Commands get no replies any more.
    void end();

    /// Whether the folders are to be scanned because the index was begun anew; asked once.
    bool takeScanNeed() {
        const bool needed = scanNeeded_;
        scanNeeded_ = false;
        return needed;
    }
    /// The reasons that will end, when they have been looked at since the last call.
    std::optional<std::vector<Reason>> takeEndingReasons() { return std::exchange(ending_, {}); }
    /// The sets that commands and updates have changed, or what they are for, since the last call.
    [[nodiscard]] std::vector<ContainerId> takeTouchedSets() { return std::exchange(touched_, {}); }
    /// Begins to watch the folders that the index knows by now, and for those recorded folders that
    /// are away, unless it is as it was when they were. False: it is not known which they are.
    [[nodiscard]] bool watchFolders(FolderWatch& watch);
    /// Tells that so many cannot be watched, when that is new.
    void noteUnwatched(std::size_t folders);

    /// Takes up how those have ended who were to show what a plug-in wanted.
    void noteGuests();

    [[nodiscard]] Activator& activator() { return activator_; }

private:
    /// A command that is being answered, or of which something is still to be done.
    struct Pending {
        std::string command;
        std::optional<std::int32_t> sender;
        Receiver receiver; ///< empty: it has its reply
        Clock::time_point begun;
        Clock::duration roundTime{}; ///< what a round of looking up takes
        bool isLookedUp = false;     ///< the last round knew all that is known by now
        bool isNoted = false;
        const char* opens = nullptr; ///< the command of this program that is to be given the text
        ActivationRun run;
        Answer answer; ///< of the last round
        Occasion occasion;
        std::set<std::string> toldProblems;
        std::vector<std::uint64_t> calls;                        ///< of the activator
        std::set<std::pair<std::uint64_t, ContainerId>> awaited; ///< of these calls
    };

    // What tells them lives that long.
    static constexpr std::chrono::milliseconds kickPeriod{2000};

    void openLibrary();
    /// The text for people. A damaged index is let go of, and a scan asked for.
    std::string takeFailure(const std::exception& error);
    /// To be called when the library was used.
    void letOthersOpen();
    void round(Pending& pending);
    /// Makes all rounds for which nothing has to be awaited. False: something has.
    bool finish(Pending& pending);
    void answerAsItStands(Pending& pending);
    [[nodiscard]] Clock::time_point deadlineOf(const Pending& pending) const;
    /// Whether nothing has to be awaited for its next round or its end.
    [[nodiscard]] bool canGoOn(const Pending& pending) const;
    /// Whether another round is done in time.
    [[nodiscard]] bool hasTimeForRound(const Pending& pending) const;
    void forgetCalls(const Pending& pending);
    void takeNews();
    void takeOutcome(Activated done, Occasion& occasion);
    void noteQuestion(Pending& pending);
    /// Records what was done lately for a command that has its reply.
    void noteProgress(Pending& pending);
    /// Records the rest of it.
    void noteOutcome(Pending& pending);

    Places places_;
    bool verbose_;
    std::unique_ptr<Library> library_;
    Activation activation_; ///< only read
    StandIns standIns_;
    Activator activator_;
    std::chrono::milliseconds replyTime_;
    std::list<Pending> pending_;
    std::unordered_map<std::uint64_t, Pending*> callers_; ///< by call
    bool isMoreToDo_ = false;
    bool desktopAwaited_ = false;
    std::vector<ChangeTarget> targets_; ///< those that asked lately, the last one at the end
    std::optional<std::vector<Reason>> ending_;
    std::vector<ContainerId> touched_;
    std::optional<Library::Generation> followed_; ///< the index that active sets follow
    bool changed_ = false;
    Paced kick_{kickPeriod};                                  ///< of the display's programs
    std::vector<std::pair<const char*, std::string>> toOpen_; ///< what for, and the command
    GuestProcesses guests_;
    bool scanNeeded_ = false;
    std::optional<Library::Generation> watched_; ///< the index whose folders are watched
    std::size_t unwatched_ = 0;                  ///< folders that could not be lately
};

/// Registers under the manager's signature and answers until told to quit: by a 'quit' event,
/// SIGTERM, SIGINT or SIGHUP, or because the bus is gone. When another server runs already, says so
/// and returns exitSuccess. Throws Error.
int serveCommand(const Places& places, bool verbose);

} // namespace manager
