// SPDX-License-Identifier: MIT
// What waits for the thread, and what it tells.
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

/// Whether they differ in their reasons alone.
bool isSame(const ContainerFonts& a, const ContainerFonts& b) {
    return a.name == b.name && a.onlyIfActive == b.onlyIfActive && a.reasonsOnly == b.reasonsOnly &&
           a.successors == b.successors &&
           std::equal(a.files.begin(), a.files.end(), b.files.begin(), b.files.end(),
                      [](const LibraryFile& one, const LibraryFile& other) {
                          return one.path == other.path && one.stamp == other.stamp;
                      });
}

template <class Item>
void append(std::vector<Item>& all, std::vector<Item> more) {
    std::move(more.begin(), more.end(), std::back_inserter(all));
}

} // namespace

Activator::Activator(const Places& places, ActivatorTimes times)
    : places_(places), times_(times), newsFlag_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!newsFlag_) {
        throw systemError("activation", "no event descriptor", errno);
    }
    thread_ = std::thread([this] { run(); });
}

Activator::~Activator() {
    end();
}

void Activator::end() {
    {
        const std::scoped_lock lock(mutex_);
        ending_ = true;
    }
    wake_.notify_one();
    if (thread_.joinable()) {
        thread_.join();
    }
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
    news_.recovered = news_.recovered || news.recovered;
    append(news_.problems, std::move(news.problems));
    news_.isIndexDamaged = news_.isIndexDamaged || news.isIndexDamaged;
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

} // namespace manager
