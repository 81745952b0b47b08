// SPDX-License-Identifier: MIT
// One request at a time goes to the process, so that the newest is never behind older ones.
#include "preview/previewer.h"

#include "preview/wire.h"

#include <sys/epoll.h>
#include <sys/socket.h>
#include <sys/timerfd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <system_error>

namespace preview {

namespace {

SharedAnswer problem(const Request& request, const std::string& what) {
    return std::make_shared<const Answer>(Answer{request.file + ": " + what});
}

void watch(int events, int descriptor) {
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = descriptor;
    if (epoll_ctl(events, EPOLL_CTL_ADD, descriptor, &event) != 0) {
        throw std::system_error(errno, std::generic_category(), "no events of the preview process");
    }
}

/// Whether the process did it by itself. Other signals come from outside: somebody ended it, or the
/// system had no memory left.
bool isFault(int signal) {
    constexpr std::array faults = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGXCPU, SIGSYS};
    return std::ranges::find(faults, signal) != faults.end();
}

} // namespace

std::filesystem::path previewProgram() {
    std::error_code error;
    const auto folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    const auto beside = folder / "glyphora-preview";
    return std::filesystem::exists(beside, error)
               ? beside
               : folder.parent_path() / "libexec" / "glyphora" / "glyphora-preview";
}

Previewer::Previewer(PreviewSettings settings)
    : settings_(std::move(settings)), events_(epoll_create1(EPOLL_CLOEXEC)),
      timer_(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)),
      cache_(settings_.cached) {
    if (!events_ || !timer_) {
        throw std::system_error(errno, std::generic_category(), "previews");
    }
    watch(events_.get(), timer_.get());
}

RequestId Previewer::request(Request request) {
    waiting_.emplace_hint(waiting_.end(), ++lastId_, std::move(request));
    setTimer();
    return lastId_;
}

void Previewer::cancel(RequestId id) {
    waiting_.erase(id);
    isCancelled_ = isCancelled_ || (current_ && current_->id == id);
}

std::vector<Finished> Previewer::take() {
    if (child_) {
        receive();
    }
    if (current_ && current_->deadline <= Clock::now()) {
        endChild();
        fail("drawing it took longer than " + std::to_string(settings_.timePerLine.count()) + " ms",
             Fault::Delay);
    }
    while (!current_ && !waiting_.empty()) {
        begin();
    }
    setTimer();
    return std::exchange(finished_, {});
}

SharedAnswer Previewer::known(const Work& work) {
    const auto dangerous = dangerous_.find(work.face);
    if (dangerous == dangerous_.end()) {
        return cache_.find(work.key);
    }
    if (dangerous->second.end && *dangerous->second.end <= Clock::now()) {
        dangerous_.erase(dangerous);
        return cache_.find(work.key);
    }
    return dangerous->second.answer;
}

void Previewer::begin() {
    auto newest = waiting_.extract(std::prev(waiting_.end()));
    Work work{newest.key(), {}, std::move(newest.mapped()), {}, {}};
    if (const std::string text = overstepped(work.request); !text.empty()) {
        finished_.push_back({work.id, problem(work.request, text)});
        return;
    }
    const auto identity = identityOf(work.request.file);
    if (!identity) {
        finished_.push_back(
            {work.id, problem(work.request, std::generic_category().message(errno))});
        return;
    }
    work.face = {*identity, work.request.face};
    work.key = encode(work.request) +
               std::string(reinterpret_cast<const char*>(&*identity), sizeof *identity);
    if (const SharedAnswer answer = known(work)) {
        finished_.push_back({work.id, answer});
        return;
    }
    send(std::move(work));
}

void Previewer::send(Work work) {
    work.deadline = Clock::now() + settings_.timePerLine;
    current_.emplace(std::move(work));
    isCancelled_ = false;
    try {
        if (!child_) {
            child_.emplace(settings_.program,
                           std::array{std::to_string(settings_.memory),
                                      std::to_string(settings_.processorSeconds)});
            watch(events_.get(), child_->socket());
        }
    } catch (const std::system_error& error) {
        endChild();
        fail(std::string("it cannot be drawn: ") + error.what(), Fault::Other);
        return;
    }
    // It fits: a process that waits has taken all that was sent before.
    const std::string message = encode(current_->request);
    const ssize_t sent = ::send(child_->socket(), message.data(), message.size(), MSG_NOSIGNAL);
    if (sent != static_cast<ssize_t>(message.size())) {
        endChild();
        fail("the preview process takes no requests", Fault::Other);
    }
}

void Previewer::receive() {
    std::array<char, 65536> block{};
    for (;;) {
        const ssize_t count = recv(child_->socket(), block.data(), block.size(), 0);
        if (count < 0 && (errno == EINTR || errno == EAGAIN)) {
            if (errno == EAGAIN) {
                return;
            }
            continue;
        }
        if (count <= 0) {
            const sys::Ending ending = endChild();
            std::string how = " with status " + std::to_string(ending.status);
            if (ending.signal != 0) {
                how = std::string(" (") + strsignal(ending.signal) + ")";
            }
            fail("the preview process ended while drawing it" + how,
                 isFault(ending.signal) ? Fault::Face : Fault::Other);
            return;
        }
        received_.append(block.data(), static_cast<std::size_t>(count));
        understand();
        if (!child_) {
            return;
        }
    }
}

void Previewer::understand() {
    const std::size_t length = received_.size() < lengthSize ? 0 : bodyLength(received_);
    if (received_.size() < lengthSize ||
        (length <= maximumAnswerBody && received_.size() < lengthSize + length)) {
        return;
    }
    std::optional<Answer> answer;
    if (current_ && received_.size() == lengthSize + length) {
        answer = decodeAnswer(std::string_view(received_).substr(lengthSize));
    }
    if (!answer) {
        endChild();
        fail("what the preview process said of it is no answer", Fault::Face);
        return;
    }
    received_.clear();
    const auto shared = std::make_shared<const Answer>(std::move(*answer));
    // Else it may be of another file than the one that was asked for.
    if (identityOf(current_->request.file) == current_->face.first) {
        cache_.add(current_->key, shared);
    }
    finish(shared);
}

void Previewer::finish(const SharedAnswer& answer) {
    if (!isCancelled_) {
        finished_.push_back({current_->id, answer});
    }
    current_.reset();
}

void Previewer::fail(const std::string& why, Fault fault) {
    if (!current_) {
        return; // it was idle: the next request starts another one
    }
    const SharedAnswer answer = problem(current_->request, why);
    if (fault == Fault::Face) {
        dangerous_.insert_or_assign(current_->face, Danger{answer, std::nullopt});
    } else if (fault == Fault::Delay) {
        dangerous_.insert_or_assign(current_->face,
                                    Danger{answer, Clock::now() + settings_.timeUntilRetry});
    }
    finish(answer);
}

sys::Ending Previewer::endChild() {
    received_.clear();
    const sys::Ending ending = child_ ? child_->end() : sys::Ending{};
    child_.reset(); // the closed socket has left the epoll
    return ending;
}

void Previewer::setTimer() {
    itimerspec time{};
    if (!current_ && !waiting_.empty()) {
        time.it_value.tv_nsec = 1; // at once
    } else if (current_) {
        const auto left = std::max<std::chrono::nanoseconds>(current_->deadline - Clock::now(),
                                                             std::chrono::nanoseconds(1));
        const auto seconds = std::chrono::floor<std::chrono::seconds>(left);
        time.it_value.tv_sec = seconds.count();
        time.it_value.tv_nsec = (left - seconds).count();
    }
    timerfd_settime(timer_.get(), 0, &time, nullptr);
}

} // namespace preview
