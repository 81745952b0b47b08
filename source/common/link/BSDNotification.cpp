// SPDX-License-Identifier: MIT
// The readers of change notifications and the daemon that owns them.
#include "BSDNotification.h"

#include "platform/notify.h"

#include <exception>
#include <stdexcept>
#include <tuple>

namespace BSDNotification {

Registration::Registration(const std::string& name) {
    if (notify_register_check(name.c_str(), &token_) != NOTIFY_STATUS_OK) {
        throw std::runtime_error("token could not be registered");
    }
}

Registration::~Registration() {
    notify_cancel(token_);
}

Daemon::ReadingThread::ReadingThread(const std::string& name)
    : registration_(name), marks_(Orvil::SafeFIFOBuffer<int>::unboundedCapacity) {}

Daemon::ReadingThread::~ReadingThread() {
    if (!stop()) {
        destroy();
    }
}

int Daemon::ReadingThread::run() {
    constexpr unsigned pauseInMilliseconds = 1;
    while (running_ != 0) {
        poll();
        Thread::sleep(pauseInMilliseconds);
    }
    return 0;
}

void Daemon::ReadingThread::poll() {
    int check = -1;
    if (notify_check(registration_.token(), &check) != NOTIFY_STATUS_OK || check == 0) {
        return;
    }
    try {
        marks_.enqueue(1);
    } catch (const std::exception&) {
        // More marks wait than the queue can count. The mark is queued, behind those that count.
    }
}

bool Daemon::ReadingThread::checkMessage(int& mark) {
    return marks_.tryDequeue(mark);
}

bool Daemon::ReadingThread::stop() {
    running_ = 0;
    return join();
}

Daemon::Daemon() = default;

Daemon::~Daemon() {
    Daemon::removeListener("");
}

void Daemon::addListener(const std::string& name) {
    const Orvil::SmartPointer<ReadingThread> reader(new ReadingThread(name));
    readers_[name] = reader;
    std::ignore = reader->start(false, -1); // without it, events alone bring news
}

void Daemon::removeListener(const std::string& name) {
    if (name.empty()) {
        readers_.clear();
        return;
    }
    const auto found = readers_.find(name);
    if (found == readers_.end() || !found->second || !found->second->stop()) {
        return;
    }
    readers_.erase(found); // and with the reader its registration
}

bool Daemon::hasFired(const std::string& name) {
    int mark = 0;
    if (!name.empty()) {
        const auto found = readers_.find(name);
        return found != readers_.end() && found->second->checkMessage(mark);
    }
    for (const auto& [watched, reader] : readers_) {
        if (reader->checkMessage(mark)) {
            return true;
        }
    }
    return false;
}

} // namespace BSDNotification
