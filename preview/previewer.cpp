// SPDX-License-Identifier: MIT
// One request at a time goes to the process, so that the newest is never behind older ones.
#include "preview/previewer.h"

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
        dropChild();
        fail("drawing it took longer than " + std::to_string(settings_.timePerLine.count()) + " ms",
             Fault::Delay);
    }
    while (!current_ && !waiting_.empty()) {
        begin();
    }
    setTimer();
    return std::exchange(finished_, {});
}

SharedAnswer Previewer::knownOfPath(const FaceKey& face) {
    const auto dangerous = dangerous_.find(face);
    if (dangerous == dangerous_.end() || dangerous->second.identity) {
        return nullptr;
    }
    if (dangerous->second.end <= Clock::now()) {
        dangerous_.erase(dangerous);
        return nullptr;
    }
    return dangerous->second.answer;
}

SharedAnswer Previewer::knownOfFile(const Work& work) {
    const auto dangerous = dangerous_.find(work.face());
    if (dangerous != dangerous_.end() && dangerous->second.identity == work.identity) {
        return dangerous->second.answer;
    }
    return cache_.find(work.order, *work.identity);
}

void Previewer::begin() {
    auto newest = waiting_.extract(std::prev(waiting_.end()));
    current_.emplace(Work{newest.key(), std::move(newest.mapped()), {}, {}, lastId_, {}});
    isCancelled_ = false;
    Work& work = *current_;
    if (const std::string text = overstepped(work.request); !text.empty()) {
        finish(problem(work.request, text));
        return;
    }
    if (const SharedAnswer answer = knownOfPath(work.face())) {
        finish(answer);
        return;
    }
    work.order = encode(Order{Task::Draw, work.request});
    work.deadline = Clock::now() + settings_.timePerLine;
    start();
    if (!child_) {
        return;
    }
    if (work.id <= looked_.last && work.request.file == looked_.file) {
        answerOrDraw(looked_.identity);
    } else {
        send(encode(Order{Task::Look, work.request}));
    }
}

void Previewer::start() {
    // Processes that wait for a broken disk outlive being killed; there may be a face on it in each
    // row of a window.
    constexpr std::size_t maximumLingering = 8;
    try {
        if (!child_ && sys::Child::lingering() >= maximumLingering) {
            fail("too many processes hang that were to draw others", Fault::Other);
        } else if (!child_) {
            child_.emplace(settings_.program,
                           std::array{std::to_string(settings_.memory),
                                      std::to_string(settings_.processorSeconds)});
            watch(events_.get(), child_->socket());
        }
    } catch (const std::system_error& error) {
        dropChild();
        fail(std::string("it cannot be drawn: ") + error.what(), Fault::Other);
    }
}

void Previewer::send(const std::string& order) {
    // It fits: a process that waits has taken all that was sent before.
    const ssize_t sent = ::send(child_->socket(), order.data(), order.size(), MSG_NOSIGNAL);
    if (sent != static_cast<ssize_t>(order.size())) {
        dropChild();
        fail("the preview process takes no requests", Fault::Other);
    }
}

void Previewer::receive() {
    std::array<char, 65536> block{};
    while (child_) {
        const ssize_t count = recv(child_->socket(), block.data(), block.size(), 0);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0 && errno == EAGAIN) {
            return;
        }
        if (count <= 0) {
            learnEnding();
            return;
        }
        received_.append(block.data(), static_cast<std::size_t>(count));
        understand();
    }
}

void Previewer::learnEnding() {
    if (!current_) {
        dropChild();
        return;
    }
    const std::optional<sys::Ending> ending = child_->tryEnd();
    if (!ending) {
        // The timer comes back to it; the closed socket would without pause.
        isEnding_ = true;
        epoll_ctl(events_.get(), EPOLL_CTL_DEL, child_->socket(), nullptr);
        return;
    }
    std::string how = " with status " + std::to_string(ending->status);
    if (ending->signal != 0) {
        how = std::string(" (") + strsignal(ending->signal) + ")";
    }
    dropChild();
    fail("the preview process ended while drawing it" + how,
         isFault(ending->signal) ? Fault::Face : Fault::Other);
}

void Previewer::understand() {
    const std::size_t length = received_.size() < lengthSize ? 0 : bodyLength(received_);
    if (received_.size() < lengthSize ||
        (length <= maximumAnswerBody && received_.size() < lengthSize + length)) {
        return;
    }
    const std::string message = std::exchange(received_, {});
    const std::string_view body = std::string_view(message).substr(lengthSize);
    if (!current_ || body.size() != length ||
        !(current_->identity ? takeDrawing(body) : takeLook(body))) {
        dropChild();
        fail("what the preview process said of it is no answer", Fault::Face);
    }
}

bool Previewer::takeLook(std::string_view body) {
    const auto look = decodeLook(body);
    if (!look) {
        return false;
    }
    if (!look->problem.empty()) {
        finish(std::make_shared<const Answer>(Answer{look->problem}));
        return true;
    }
    looked_ = {current_->request.file, look->identity, current_->lastAsked};
    answerOrDraw(look->identity);
    return true;
}

void Previewer::answerOrDraw(const FileIdentity& identity) {
    current_->identity = identity;
    if (const SharedAnswer answer = knownOfFile(*current_)) {
        finish(answer);
    } else {
        send(current_->order);
    }
}

bool Previewer::takeDrawing(std::string_view body) {
    auto answer = decodeAnswer(body);
    if (!answer) {
        return false;
    }
    const auto shared = std::make_shared<const Answer>(std::move(*answer));
    // Of a file that has changed since the look it is found no more: the next look differs.
    cache_.add(current_->order, *current_->identity, shared);
    finish(shared);
    return true;
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
    if (fault == Fault::Face && current_->identity) {
        dangerous_.insert_or_assign(current_->face(), Danger{answer, current_->identity, {}});
    } else if (fault == Fault::Delay) {
        dangerous_.insert_or_assign(
            current_->face(),
            Danger{answer, std::nullopt, Clock::now() + settings_.timeUntilRetry});
    }
    finish(answer);
}

void Previewer::dropChild() {
    received_.clear();
    isEnding_ = false;
    if (child_) {
        child_->letGo();
    }
    child_.reset(); // the closed socket has left the epoll
}

void Previewer::setTimer() {
    itimerspec time{};
    if (!current_ && !waiting_.empty()) {
        time.it_value.tv_nsec = 1; // at once
    } else if (current_) {
        std::chrono::nanoseconds left = current_->deadline - Clock::now();
        if (isEnding_) {
            left = std::min<std::chrono::nanoseconds>(left, std::chrono::milliseconds(1));
        }
        left = std::max(left, std::chrono::nanoseconds(1));
        const auto seconds = std::chrono::floor<std::chrono::seconds>(left);
        time.it_value.tv_sec = seconds.count();
        time.it_value.tv_nsec = (left - seconds).count();
    }
    timerfd_settime(timer_.get(), 0, &time, nullptr);
}

} // namespace preview
