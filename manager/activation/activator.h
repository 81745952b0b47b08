// SPDX-License-Identifier: MIT
// Changes what is active in a thread of its own, so that nobody who asks waits for a disk, a lock
// or a font.
#pragma once

#include "manager/activation/activation.h"
#include "manager/activation/outdatedsets.h"
#include "manager/library/places.h"
#include "system/descriptor.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace manager {

/// What came of one container of one call.
struct Activated {
    std::uint64_t call = 0; ///< the number that Activator::activate() gave it
    ContainerId id{};
    std::string name;
    ActivationOutcome outcome;
    bool onlyIfActive = false; ///< as was asked for
};

/// What came of it.
struct ActivatorNews {
    std::vector<Activated> activated;
    std::vector<Withdrawal> withdrawn;
    std::vector<std::string> mended;   ///< lines, see Activation::recover
    bool recovered = false;            ///< as above: others are to be told
    std::vector<std::string> problems; ///< lines
    bool isIndexDamaged = false;       ///< one of them tells how
    std::optional<DesktopFaces> desktop;
    std::optional<std::vector<Reason>> ending; ///< see Activation::endingReasons
};

/// How long the lock of the sets is waited for, and how long it is left alone then; what needs it
/// waits on, and the rest is done in between. And when a withdrawal is tried again that failed for
/// something else, which needs somebody's help.
struct ActivatorTimes {
    std::chrono::milliseconds patience{500};
    std::chrono::milliseconds pause{500};
    std::chrono::milliseconds retry{60'000};
};

/// [one-thread] Begins with what a crash left and with what is due by now. Settles a while after
/// each change.
class Activator {
public:
    /// So many containers may wait; more fail at once.
    static constexpr std::size_t maximumWaiting = 32768;

    /// Throws Error.
    explicit Activator(const Places& places, ActivatorTimes times = {});
    Activator(const Activator&) = delete;
    Activator& operator=(const Activator&) = delete;
    ~Activator();
    /// Gives up what has not been begun, and settles what was done. It can be told nothing then.
    void end();

    /// Readable when there is news.
    [[nodiscard]] int descriptor() const { return newsFlag_.get(); }
    /// The news since the last call.
    [[nodiscard]] ActivatorNews take();

    /// Activates them, in turns with those of other calls. The call's number in the news.
    std::uint64_t activate(std::vector<ContainerFonts> containers);
    /// Brings sets up to date that are outdated by what this index tells, which nobody else uses;
    /// what others want has its turn first.
    void follow(std::unique_ptr<Library> library);
    /// Has the desktop's faces told, read anew when they may be others by now.
    void readDesktop();
    /// Takes away what is due, and has the reasons told that will end. The records of the sets
    /// `changed` may be others than they were; nullopt: any may.
    void withdraw(std::optional<std::vector<ContainerId>> changed);

private:
    // As many as are done in a fraction of a second: others wait no longer for their turn.
    static constexpr std::size_t largestBatch = 200;

    using Clock = std::chrono::steady_clock;
    enum class Task { Settle, End, ReadDesktop, Withdraw, Activate, Follow, Sweep };
    enum class Ending { Done, Blocked, Failed };
    struct Call {
        std::uint64_t number;
        std::deque<ContainerFonts> containers;
    };
    /// Containers that differ, and who wants each.
    struct Batch {
        std::vector<ContainerFonts> containers;
        std::vector<std::vector<std::uint64_t>> calls;
    };

    void run();
    /// Waits until there is something to do.
    Task next();
    void takeSome();
    void activateSome(Activation& activation, ActivatorNews& news);
    void withdrawSome(Activation& activation, ActivatorNews& news);
    void followSome(Activation& activation, ActivatorNews& news);
    /// Tells what is wrong with an update once, and has one that is postponed done later.
    void noteUpdate(const ContainerFonts& container, ActivationOutcome& outcome);
    /// Leaves the outcome no problems that were told already.
    void tellOnce(ContainerId id, ActivationOutcome& outcome);
    /// Does a step that needs the lock.
    Ending tryStep(ActivatorNews& news, const std::function<void()>& step);
    void publish(ActivatorNews news);

    Places places_;
    ActivatorTimes times_;
    sys::Descriptor newsFlag_;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::list<Call> queue_;
    std::size_t waiting_ = 0; ///< containers in the queue
    std::uint64_t lastCall_ = 0;
    std::unique_ptr<Library> toFollow_;
    bool desktopWanted_ = false;
    bool withdrawalWanted_ = true;
    bool anyChanged_ = true; ///< any record may be another; else those of `changed_`
    std::vector<ContainerId> changed_;
    bool ending_ = false;
    ActivatorNews news_;
    // Of the thread.
    Batch batch_; ///< taken from the queue, and not done
    std::optional<Clock::time_point> settling_;
    std::optional<Clock::time_point> again_; ///< when a withdrawal that failed is tried again
    std::unique_ptr<OutdatedSets> outdated_; ///< while some are left to be looked at
    std::map<ContainerId, ContainerFonts> postponed_;        ///< updates, until a program ends
    std::map<ContainerId, std::vector<std::string>> failed_; ///< what was wrong when last told
    bool isToSweep_ = false;
    Clock::time_point blocked_; ///< until when the lock is left alone
    Clock::time_point resting_; ///< until when others may come before a withdrawal
    bool isRecovered_ = false;
    std::string lastProblem_;   ///< told; not told again as long as it lasts
    std::string followProblem_; ///< the same
    std::thread thread_;        ///< last: it uses the others
};

} // namespace manager
