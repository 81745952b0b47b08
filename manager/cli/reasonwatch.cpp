// SPDX-License-Identifier: MIT
// Descriptors of processes, and a watch on the folder through which every change of a set passes.
#include "manager/cli/reasonwatch.h"

#include "manager/activation/setstaging.h"
#include "manager/library/error.h"
#include "manager/library/places.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <sys/epoll.h>
#include <sys/inotify.h>
#include <sys/syscall.h>
#include <utility>

namespace manager {

namespace {

// DATA/fonts/glyphora/.staging: what is above them stays where it is while somebody is logged in.
constexpr int watchedLevels = 4;

} // namespace

ReasonWatch::ReasonWatch(const std::string& sets)
    : staging_(SetStaging(sets).path()), ended_(epoll_create1(EPOLL_CLOEXEC)) {
    watchStaging();
}

void ReasonWatch::watchStaging() {
    try {
        makeFolders(staging_);
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): then there are no sets either
    }
    if (!changes_) {
        changes_ = sys::Descriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    }
    // A watch stays with its folder when one above that gets another name.
    std::set<int> watches;
    std::string path = staging_;
    std::uint32_t events = IN_MOVED_FROM | IN_MOVE_SELF;
    for (int level = 0; level < watchedLevels; ++level) {
        watches.insert(inotify_add_watch(changes_.get(), path.c_str(), events | IN_ONLYDIR));
        path = folderOf(path);
        events = IN_MOVE_SELF;
    }
    isDeaf_ = watches.erase(-1) != 0;
    if (watches != watches_) {
        anyChanged_ = anyChanged_ || !watches_.empty();
        for (const int old : std::exchange(watches_, watches)) {
            if (!watches.contains(old)) {
                inotify_rm_watch(changes_.get(), old);
            }
        }
    }
}

int ReasonWatch::shorten(int wait) const {
    if (earliest_ == 0) {
        return wait;
    }
    constexpr std::time_t longest = 3600; // the clock may be set
    const auto left = std::clamp<std::time_t>(earliest_ - std::time(nullptr), 0, longest);
    const int rest = static_cast<int>(left) * 1000;
    return wait < 0 ? rest : std::min(wait, rest);
}

void ReasonWatch::watch(const std::vector<Reason>& reasons) {
    processes_.clear(); // closed, they are not waited for any more
    earliest_ = 0;
    std::set<std::int32_t> known;
    for (const Reason& reason : reasons) {
        if (reason.kind == Reason::Kind::UntilTime) {
            earliest_ =
                earliest_ == 0 ? reason.time : std::min<std::time_t>(earliest_, reason.time);
        } else if (reason.process.id != 0 && known.insert(reason.process.id).second) {
            sys::Descriptor process(
                static_cast<int>(syscall(SYS_pidfd_open, reason.process.id, 0)));
            epoll_event end{EPOLLIN, {}};
            if (process && epoll_ctl(ended_.get(), EPOLL_CTL_ADD, process.get(), &end) == 0) {
                processes_.push_back(std::move(process));
            } else {
                earliest_ = std::time(nullptr) + 1; // it has ended by now
            }
        }
    }
}

bool ReasonWatch::takeEnd() {
    epoll_event event{};
    const bool isDue = earliest_ != 0 && earliest_ <= std::time(nullptr);
    const bool ended = epoll_wait(ended_.get(), &event, 1, 0) > 0;
    if (isDue || ended) {
        watch({}); // until the reasons that are left are told
        return true;
    }
    return false;
}

bool ReasonWatch::takeChange() {
    alignas(inotify_event) std::array<char, 16384> block{};
    bool changed = false; // by others
    for (ssize_t count = 0; (count = read(changes_.get(), block.data(), block.size())) > 0;) {
        changed = true;
        for (ssize_t position = 0; position < count;) {
            inotify_event event{};
            std::memcpy(&event, block.data() + position, sizeof event);
            // "7", a set that takes its place, or "7.record", which takes another's.
            const std::string_view name =
                event.len > 0 ? block.data() + position + sizeof event : "";
            if (const auto id = toContainerId(name.substr(0, name.find('.')))) {
                changed_.push_back(*id);
            }
            anyChanged_ = anyChanged_ || (event.mask & IN_Q_OVERFLOW) != 0;
            position += static_cast<ssize_t>(sizeof event + event.len);
        }
    }
    if (changed || changedHere_) { // the folder may be another one by now
        watchStaging();
    }
    return std::exchange(changedHere_, false) || changed;
}

void ReasonWatch::noteChanges(const std::vector<ContainerId>& sets) {
    changedHere_ = changedHere_ || !sets.empty();
    changed_.insert(changed_.end(), sets.begin(), sets.end());
}

void ReasonWatch::lookAgain() {
    watchStaging();
    anyChanged_ = true;
}

std::optional<std::vector<ContainerId>> ReasonWatch::takeChangedSets() {
    auto sets = std::exchange(changed_, {});
    return std::exchange(anyChanged_, false) ? std::nullopt : std::optional(std::move(sets));
}

} // namespace manager
