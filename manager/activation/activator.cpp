// SPDX-License-Identifier: MIT
// The thread, what waits for it and what it tells.
#include "manager/activation/activator.h"

#include "manager/library/error.h"

#include <cerrno>
#include <iterator>
#include <sys/eventfd.h>
#include <unordered_map>

namespace manager {

namespace {

// Other programs compare times in whole seconds.
constexpr std::chrono::milliseconds settleDelay{1100};
// As many as are done in a fraction of a second: others wait no longer for their turn.
constexpr std::size_t largestBatch = 200;
// What failed was most likely locked for longer than anybody waits for it.
constexpr std::chrono::minutes retryDelay{1};

void activateBatch(Activation& activation, std::vector<ContainerFonts> batch, ActivatorNews& news) {
    std::vector<ActivationOutcome> outcomes(batch.size());
    try {
        outcomes = activation.activate(batch);
    } catch (const std::exception& error) { // no lock, no folder: nothing was done
        for (std::size_t i = 0; i < batch.size(); ++i) {
            for (const SetFile& file : recordOf(batch[i]).files) {
                outcomes[i].lost.insert(file.name);
            }
            outcomes[i].problems = {error.what()};
        }
    }
    for (std::size_t i = 0; i < batch.size(); ++i) {
        news.activated.emplace_back(batch[i].id, std::move(outcomes[i]));
    }
}

/// Tells what a step throws as a problem. Whether it threw nothing.
bool guarded(ActivatorNews& news, const std::function<void()>& step) {
    try {
        step();
        return true;
    } catch (const std::exception& error) {
        news.problems.emplace_back(error.what());
        return false;
    }
}

template <class Item>
void append(std::vector<Item>& all, std::vector<Item> more) {
    std::move(more.begin(), more.end(), std::back_inserter(all));
}

} // namespace

Activator::Activator(const Places& places)
    : places_(places), newsFlag_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!newsFlag_) {
        throw systemError("activation", "no event descriptor", errno);
    }
    thread_ = std::thread([this] { run(); });
}

Activator::~Activator() {
    {
        const std::scoped_lock lock(mutex_);
        ending_ = true;
        queue_.clear();
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

void Activator::activate(std::vector<ContainerFonts> containers) {
    if (containers.empty()) {
        return;
    }
    const std::scoped_lock lock(mutex_);
    queue_.emplace_back(std::make_move_iterator(containers.begin()),
                        std::make_move_iterator(containers.end()));
    wake_.notify_one();
}

void Activator::readDesktop() {
    const std::scoped_lock lock(mutex_);
    desktopWanted_ = true;
    wake_.notify_one();
}

void Activator::withdraw() {
    const std::scoped_lock lock(mutex_);
    withdrawalWanted_ = true;
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

std::vector<ContainerFonts> Activator::takeSome() {
    std::vector<ContainerFonts> batch;
    std::unordered_map<std::int32_t, std::size_t> positions;
    while (!queue_.empty() && batch.size() < largestBatch) {
        auto& call = queue_.front();
        const auto [position, isNew] =
            positions.try_emplace(static_cast<std::int32_t>(call.front().id), batch.size());
        if (isNew) {
            batch.push_back(std::move(call.front()));
        } else {
            append(batch[position->second].reasons, std::move(call.front().reasons));
        }
        call.pop_front();
        if (call.empty()) {
            queue_.pop_front();
        } else {
            queue_.splice(queue_.end(), queue_, queue_.begin());
        }
    }
    return batch;
}

// What is quick and waited for comes first.
std::function<void(Activation&, ActivatorNews&)> Activator::next() {
    std::unique_lock lock(mutex_);
    const auto isAwake = [this] {
        return ending_ || desktopWanted_ || withdrawalWanted_ || !queue_.empty();
    };
    // At the end the settling is waited for all the same.
    const auto isToGoOn = [&] { return ending_ ? !settling_ : isAwake(); };
    do {
        const bool isRetryNext = retry_ && (!settling_ || *retry_ < *settling_);
        if (const auto due = isRetryNext ? retry_ : settling_) {
            wake_.wait_until(lock, *due, isToGoOn);
        } else {
            wake_.wait(lock, isToGoOn);
        }
        if (settling_ && *settling_ <= Clock::now()) {
            return {};
        }
        if (retry_ && *retry_ <= Clock::now()) {
            retry_.reset();
            withdrawalWanted_ = true;
        }
    } while (!isToGoOn());
    if (ending_) {
        return {};
    }
    if (std::exchange(desktopWanted_, false)) {
        return [](Activation& activation, ActivatorNews& news) {
            guarded(news, [&] { activation.refreshDesktop(); });
            news.desktop = activation.desktop();
        };
    }
    if (std::exchange(withdrawalWanted_, false)) {
        return [this](Activation& activation, ActivatorNews& news) {
            const bool done = recover(activation, news) &&
                              guarded(news, [&] { news.withdrawn = activation.withdrawDue(); });
            guarded(news, [&] { news.ending = activation.endingReasons(); });
            if (!done) {
                retry_ = Clock::now() + retryDelay;
            }
        };
    }
    return [batch = takeSome()](Activation& activation, ActivatorNews& news) mutable {
        activateBatch(activation, std::move(batch), news);
    };
}

bool Activator::recover(Activation& activation, ActivatorNews& news) {
    isRecovered_ =
        isRecovered_ || guarded(news, [&] {
            activation.recover([&](const std::string& text) { news.mended.push_back(text); });
        });
    return isRecovered_;
}

void Activator::run() {
    std::optional<Activation> activation;
    ActivatorNews begun;
    if (guarded(begun, [&] { activation.emplace(places_); })) {
        recover(*activation, begun);
    }
    publish(std::move(begun));
    while (activation) {
        if (!settling_ && activation->isUnsettled()) {
            settling_ = Clock::now() + settleDelay;
        }
        ActivatorNews news;
        if (auto step = next()) {
            step(*activation, news);
        } else if (settling_) {
            settling_.reset();
            guarded(news, [&] { activation->settle(); });
        } else {
            return;
        }
        publish(std::move(news));
    }
}

} // namespace manager
