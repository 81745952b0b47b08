// SPDX-License-Identifier: MIT
// The thread, what waits for it and what it tells.
#include "manager/activation/activator.h"

#include "manager/library/error.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <sys/eventfd.h>
#include <unordered_map>
#include <utility>

namespace manager {

namespace {

// Other programs compare times in whole seconds.
constexpr std::chrono::milliseconds settleDelay{1100};
// As many as are done in a fraction of a second: others wait no longer for their turn.
constexpr std::size_t largestBatch = 200;
// What other processes sleep between two tries to have the lock, and a little more.
constexpr std::chrono::milliseconds restBetweenParts{60};
// Sets, when nobody waits for anything.
constexpr std::size_t comparedAtOnce = 100;
constexpr std::size_t sweptAtOnce = 20;
// What failed, and not for want of the lock, needs somebody's help.
constexpr std::chrono::minutes retryDelay{1};

ActivationOutcome failureOf(const ContainerFonts& container, const std::string& problem) {
    ActivationOutcome outcome;
    for (const SetFile& file : recordOf(container).files) {
        outcome.lost.insert(file.name);
    }
    outcome.problems = {problem};
    return outcome;
}

/// Whether they differ in their reasons alone.
bool isSame(const ContainerFonts& a, const ContainerFonts& b) {
    return a.name == b.name && a.onlyIfActive == b.onlyIfActive &&
           std::equal(a.files.begin(), a.files.end(), b.files.begin(), b.files.end(),
                      [](const LibraryFile& one, const LibraryFile& other) {
                          return one.path == other.path && one.stamp == other.stamp;
                      });
}

/// Does a step that needs no lock.
void tellThrown(ActivatorNews& news, const std::function<void()>& step) {
    try {
        step();
    } catch (const std::exception& error) {
        news.problems.emplace_back(error.what());
    }
}

template <class Item>
void append(std::vector<Item>& all, std::vector<Item> more) {
    std::move(more.begin(), more.end(), std::back_inserter(all));
}

} // namespace

Activator::Activator(const Places& places, LockTimes times)
    : places_(places), times_(times), newsFlag_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!newsFlag_) {
        throw systemError("activation", "no event descriptor", errno);
    }
    thread_ = std::thread([this] { run(); });
}

Activator::~Activator() {
    {
        const std::scoped_lock lock(mutex_);
        ending_ = true;
    }
    wake_.notify_one();
    thread_.join();
}

ActivatorNews Activator::take() {
    const std::scoped_lock lock(mutex_);
    eventfd_t ignored = 0;
    eventfd_read(newsFlag_.get(), &ignored);
    return std::exchange(news_, {});
}

std::uint64_t Activator::activate(std::vector<ContainerFonts> containers) {
    const std::scoped_lock lock(mutex_);
    const std::uint64_t call = ++lastCall_;
    if (waiting_ + containers.size() > maximumWaiting) {
        for (const ContainerFonts& container : containers) {
            news_.activated.push_back(
                {call, container.id, container.name,
                 failureOf(container, "container " + toText(container.id) +
                                          ": too many wait to be activated before it")});
        }
        eventfd_write(newsFlag_.get(), 1);
    } else if (!containers.empty()) {
        waiting_ += containers.size();
        queue_.push_back({call,
                          {std::make_move_iterator(containers.begin()),
                           std::make_move_iterator(containers.end())}});
        wake_.notify_one();
    }
    return call;
}

void Activator::follow(std::unique_ptr<Library> library) {
    const std::scoped_lock lock(mutex_);
    toFollow_.swap(library);
    wake_.notify_one();
}

void Activator::readDesktop() {
    const std::scoped_lock lock(mutex_);
    desktopWanted_ = true;
    wake_.notify_one();
}

void Activator::withdraw(std::optional<std::vector<ContainerId>> changed) {
    const std::scoped_lock lock(mutex_);
    withdrawalWanted_ = true;
    anyChanged_ = anyChanged_ || !changed;
    append(changed_, std::move(changed).value_or(std::vector<ContainerId>()));
    wake_.notify_one();
}

void Activator::publish(ActivatorNews news) {
    const std::scoped_lock lock(mutex_);
    append(news_.activated, std::move(news.activated));
    append(news_.withdrawn, std::move(news.withdrawn));
    append(news_.mended, std::move(news.mended));
    append(news_.problems, std::move(news.problems));
    if (news.desktop) {
        news_.desktop = std::move(news.desktop);
    }
    if (news.ending) {
        news_.ending = std::move(news.ending);
    }
    eventfd_write(newsFlag_.get(), 1);
}

// One of each call in turn. What others want of the same container otherwise waits for the next
// batch.
void Activator::takeSome() {
    std::unordered_map<std::int32_t, std::size_t> positions;
    std::size_t passedOver = 0;
    while (batch_.containers.size() < largestBatch && passedOver < queue_.size()) {
        Call& call = queue_.front();
        ContainerFonts& container = call.containers.front();
        const auto [position, isNew] = positions.try_emplace(
            static_cast<std::int32_t>(container.id), batch_.containers.size());
        const std::size_t at = position->second;
        if (!isNew && !isSame(batch_.containers[at], container)) {
            ++passedOver;
            queue_.splice(queue_.end(), queue_, queue_.begin());
            continue;
        }
        passedOver = 0;
        if (isNew) {
            batch_.containers.push_back(std::move(container));
            batch_.calls.push_back({call.number});
        } else {
            append(batch_.containers[at].reasons, std::move(container.reasons));
            batch_.calls[at].push_back(call.number);
        }
        call.containers.pop_front();
        --waiting_;
        if (call.containers.empty()) {
            queue_.pop_front();
        } else {
            queue_.splice(queue_.end(), queue_, queue_.begin());
        }
    }
}

// What is quick and waited for comes first.
Activator::Task Activator::next() {
    std::unique_lock lock(mutex_);
    for (;;) {
        const auto now = Clock::now();
        if (settling_ && *settling_ <= now) {
            return Task::Settle;
        }
        auto wakeTime = settling_.value_or(Clock::time_point::max());
        if (ending_) {
            if (!settling_) { // that is waited for all the same
                return Task::End;
            }
        } else {
            if (again_ && *again_ <= now) {
                again_.reset();
                withdrawalWanted_ = true;
            }
            const auto withdrawing = std::max(blocked_, resting_);
            const bool isToWithdraw = withdrawalWanted_ && withdrawing <= now;
            if ((isRecovered_ || !isToWithdraw) && std::exchange(desktopWanted_, false)) {
                return Task::ReadDesktop;
            }
            if (isToWithdraw) {
                withdrawalWanted_ = false;
                return Task::Withdraw;
            }
            if (batch_.containers.empty()) {
                takeSome();
            }
            const bool isAnyWaiting = !batch_.containers.empty();
            if (isAnyWaiting && blocked_ <= now) {
                return Task::Activate;
            }
            // A part once the part before is done.
            if (!isAnyWaiting && (toFollow_ || outdated_)) {
                return Task::Follow;
            }
            if (isToSweep_) {
                return Task::Sweep;
            }
            wakeTime = std::min({wakeTime, again_.value_or(wakeTime),
                                 withdrawalWanted_ ? withdrawing : wakeTime,
                                 isAnyWaiting ? blocked_ : wakeTime});
        }
        if (wakeTime == Clock::time_point::max()) {
            wake_.wait(lock);
        } else {
            wake_.wait_until(lock, wakeTime);
        }
    }
}

Activator::Ending Activator::tryStep(ActivatorNews& news, const std::function<void()>& step) {
    Ending ending = Ending::Failed;
    std::string problem;
    try {
        step();
        ending = Ending::Done;
    } catch (const Locked& locked) {
        ending = Ending::Blocked;
        blocked_ = Clock::now() + times_.pause;
        problem = std::string(locked.what()) + "; what waits for it is done when it is free";
    } catch (const std::exception& error) {
        problem = error.what();
    }
    if (!problem.empty() && problem != lastProblem_) {
        news.problems.push_back(problem);
    }
    lastProblem_ = std::move(problem);
    return ending;
}

void Activator::activateSome(Activation& activation, ActivatorNews& news) {
    std::vector<ActivationOutcome> outcomes;
    const Ending ending = tryStep(news, [&] { outcomes = activation.activate(batch_.containers); });
    if (ending == Ending::Blocked) {
        return; // it is tried again
    }
    if (ending == Ending::Failed) { // no folder: nothing was done
        std::transform(
            batch_.containers.begin(), batch_.containers.end(), std::back_inserter(outcomes),
            [&](const ContainerFonts& container) { return failureOf(container, lastProblem_); });
    }
    const Batch done = std::exchange(batch_, {});
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        for (const std::uint64_t call : done.calls[i]) {
            news.activated.push_back({call, done.containers[i].id, done.containers[i].name,
                                      outcomes[i], done.containers[i].onlyIfActive});
            outcomes[i].changed = false; // by one of them
        }
    }
}

void Activator::withdrawSome(Activation& activation, ActivatorNews& news) {
    std::vector<ContainerId> changed;
    bool any = false;
    {
        const std::scoped_lock lock(mutex_);
        changed = std::exchange(changed_, {});
        any = std::exchange(anyChanged_, false);
    }
    activation.lookAgain(any ? std::nullopt : std::optional(std::move(changed)));
    const Ending ending = tryStep(news, [&] {
        if (!isRecovered_) {
            activation.recover([&](const std::string& text) { news.mended.push_back(text); });
            isRecovered_ = true;
        }
        news.withdrawn = activation.withdrawDue(largestBatch);
        isToSweep_ = true;
    });
    if (ending == Ending::Failed) {
        again_ = Clock::now() + retryDelay;
    } else if (ending == Ending::Blocked || activation.isMoreDue()) {
        resting_ = Clock::now() + restBetweenParts;
        const std::scoped_lock lock(mutex_);
        withdrawalWanted_ = true;
        return;
    }
    news.ending = activation.endingReasons();
}

void Activator::followSome(const Activation& activation, ActivatorNews& news) {
    std::unique_ptr<Library> library;
    {
        const std::scoped_lock lock(mutex_);
        library = std::exchange(toFollow_, nullptr);
    }
    tellThrown(news, [&] {
        auto sets = std::exchange(outdated_, nullptr);
        if (library) {
            sets = std::make_unique<OutdatedSets>(std::move(library));
        }
        activate(sets->takeSome(activation, comparedAtOnce));
        if (!sets->isAtEnd()) {
            outdated_ = std::move(sets);
        }
    });
}

void Activator::run() {
    std::optional<Activation> activation;
    ActivatorNews begun;
    tellThrown(begun, [&] {
        activation.emplace(places_, StepObserver(), desktopProgram(), times_.patience);
    });
    publish(std::move(begun));
    while (activation) {
        if (!settling_ && activation->isUnsettled()) {
            settling_ = Clock::now() + settleDelay;
        }
        ActivatorNews news;
        switch (next()) {
        case Task::Settle:
            settling_.reset();
            tellThrown(news, [&] { activation->settle(); });
            break;
        case Task::ReadDesktop:
            tellThrown(news, [&] { activation->refreshDesktop(); });
            news.desktop = activation->desktop();
            break;
        case Task::Withdraw:
            withdrawSome(*activation, news);
            break;
        case Task::Activate:
            activateSome(*activation, news);
            break;
        case Task::Follow:
            followSome(*activation, news);
            break;
        case Task::Sweep:
            isToSweep_ = activation->sweep(sweptAtOnce);
            continue;
        case Task::End:
            activation->sweep(largestBatch); // the rest goes with the next recovery
            return;
        }
        publish(std::move(news));
    }
}

} // namespace manager
