// SPDX-License-Identifier: MIT
// Watching for system-wide change notifications: one reader thread per name polls for postings and
// queues a mark for each, which the main thread takes when it is ready.
#pragma once

#include "misc/threads/safefifobuffer.h"
#include "misc/threads/smartpointer.h"
#include "misc/threads/thread.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <string>

namespace BSDNotification {

/// Owns the registration of one notification name. [main-thread]
class Registration {
public:
    /// Throws std::runtime_error, "token could not be registered", when the name is refused.
    explicit Registration(const std::string& name);
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;
    /// Cancels the token.
    ~Registration();

    /// [any-thread] Valid as long as this object.
    [[nodiscard]] int token() const noexcept { return token_; }

private:
    int token_ = 0;
};

/// Owns the readers. [main-thread]
class Daemon {
public:
    class ReadingThread;

    Daemon();
    Daemon(const Daemon&) = delete;
    Daemon& operator=(const Daemon&) = delete;
    /// Stops and releases all readers.
    virtual ~Daemon();

    /// Starts to watch `name`. A reader already watching it is released, with its unread marks.
    /// Throws std::runtime_error, "token could not be registered", when the name is refused.
    void addListener(const std::string& name);
    /// Stops watching `name`; with an empty name, everything. A reader that cannot be joined stays.
    void removeListener(const std::string& name);
    /// Takes one mark of `name`, or with an empty name of the first reader that has one. True if
    /// there was one, which is gone then. Never waits.
    [[nodiscard]] bool hasFired(const std::string& name);

private:
    std::map<std::string, Orvil::SmartPointer<ReadingThread>> readers_;
};

/// Polls about a thousand times a second. In between it only sleeps, so stopping it needs no
/// wake-up.
class Daemon::ReadingThread : public Orvil::Thread, public Orvil::SmartPointable {
public:
    /// Throws std::runtime_error, "token could not be registered", when the name is refused.
    explicit ReadingThread(const std::string& name);
    ReadingThread(const ReadingThread&) = delete;
    ReadingThread& operator=(const ReadingThread&) = delete;
    /// Stops the thread and waits for it, since it uses the members, and cancels the token.
    ~ReadingThread() override;

    /// [reader-thread] Returns 0 once stop() has been called.
    int run() override;

    /// [main-thread] Takes one mark without waiting; true if there was one.
    [[nodiscard]] bool checkMessage(int& mark);
    /// [main-thread] Asks the thread to end and waits for it; false if it cannot be joined.
    [[nodiscard]] bool stop();

private:
    void poll(); // [reader-thread]

    // Written by the main thread, read by the reader at each poll.
    std::atomic<std::int32_t> running_{1};
    Registration registration_;
    Orvil::SafeFIFOBuffer<int> marks_; // one per change
};

} // namespace BSDNotification
