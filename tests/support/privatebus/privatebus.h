// SPDX-License-Identifier: MIT
// A session bus of a test's own: a bus daemon that nobody else is connected to.
#pragma once

#include "tests/support/temporaryfolder.h"

#include <optional>
#include <string>

#include <sys/types.h>

namespace testsupport {

/// Starts a bus daemon and names it in DBUS_SESSION_BUS_ADDRESS; ends it and restores the variable
/// with its own end. The kernel ends the daemon when the thread that made this object ends, also by
/// a signal, so make it in the test's main thread. Throws std::runtime_error when there is no bus
/// to be had.
class PrivateBus {
public:
    /// `listenAddress`: where it listens ("unix:path=..."); empty: wherever it likes.
    explicit PrivateBus(const std::string& listenAddress = {});
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    const std::string& address() const { return address_; }
    pid_t processID() const { return daemon_; }
    /// Kills the daemon now, as when the session ends under its programs.
    void stop();

private:
    pid_t daemon_ = -1;
    std::string address_;
    std::optional<Variable> variable_;
};

} // namespace testsupport
