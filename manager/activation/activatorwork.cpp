// SPDX-License-Identifier: MIT
// The thread: what it does, a part at a time.
#include "manager/activation/activator.h"

#include "manager/library/error.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace manager {

namespace {

// Other programs compare times in whole seconds.
constexpr std::chrono::milliseconds settleDelay{1100};
// What other processes sleep between two tries to have the lock, and a little more.
constexpr std::chrono::milliseconds restBetweenParts{60};
// Sets, when nobody waits for anything.
constexpr std::size_t comparedAtOnce = 100;
constexpr std::size_t sweptAtOnce = 20;

/// Does a step that needs no lock. What its last try failed for, too, is not told again.
void tellThrown(ActivatorNews& news, std::string& lastProblem, const std::function<void()>& step) {
    std::string problem;
    try {
        step();
    } catch (const DamagedDatabase& error) {
        news.isIndexDamaged = true;
        problem = error.what();
    } catch (const std::exception& error) {
        problem = error.what();
    }
    if (!problem.empty() && problem != lastProblem) {
        news.problems.push_back(problem);
    }
    lastProblem = std::move(problem);
}

} // namespace

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
        if (done.containers[i].onlyIfActive || outcomes[i].postponed) {
            noteUpdate(done.containers[i], outcomes[i]);
        }
        for (const std::uint64_t call : done.calls[i]) {
            news.activated.push_back({call, done.containers[i].id, done.containers[i].name,
                                      outcomes[i], done.containers[i].onlyIfActive});
            outcomes[i].changed = false; // by one of them
        }
    }
}

void Activator::noteUpdate(const ContainerFonts& container, ActivationOutcome& outcome) {
    postponed_.erase(container.id);
    if (outcome.postponed) {
        ContainerFonts& update = postponed_.emplace(container.id, container).first->second;
        update.onlyIfActive = true;
        update.reasons.clear();
    }
    tellOnce(container.id, outcome);
}

void Activator::tellOnce(ContainerId id, ActivationOutcome& outcome) {
    const std::vector<std::string> before = std::exchange(failed_[id], outcome.problems);
    if (outcome.problems.empty()) {
        failed_.erase(id);
    } else if (outcome.problems == before) {
        outcome.problems.clear();
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
            news.recovered =
                activation.recover([&](const std::string& text) { news.mended.push_back(text); });
            isRecovered_ = true;
        }
        news.withdrawn = activation.withdrawDue(largestBatch);
        isToSweep_ = true;
    });
    bool failed = ending == Ending::Failed;
    for (Withdrawal& withdrawal : news.withdrawn) {
        if (withdrawal.outcome.success) {
            failed_.erase(withdrawal.id);
        } else {
            failed = true;
            tellOnce(withdrawal.id, withdrawal.outcome);
        }
    }
    if (failed) {
        again_ = Clock::now() + times_.retry;
    }
    if (ending == Ending::Blocked || (ending == Ending::Done && activation.isMoreDue())) {
        resting_ = Clock::now() + restBetweenParts;
        const std::scoped_lock lock(mutex_);
        withdrawalWanted_ = true;
        return;
    }
    news.ending = activation.endingReasons();
    // What they waited for may have ended.
    std::vector<ContainerFonts> again;
    for (auto& [id, container] : std::exchange(postponed_, {})) {
        again.push_back(std::move(container));
    }
    activate(std::move(again));
}

void Activator::followSome(Activation& activation, ActivatorNews& news) {
    std::unique_ptr<Library> library;
    {
        const std::scoped_lock lock(mutex_);
        library = std::exchange(toFollow_, nullptr);
    }
    tellThrown(news, followProblem_, [&] {
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
    std::string problem;
    std::string desktopProblem;
    tellThrown(begun, problem, [&] {
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
            tellThrown(news, problem, [&] { activation->settle(); });
            break;
        case Task::ReadDesktop:
            tellThrown(news, desktopProblem, [&] { activation->refreshDesktop(); });
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
