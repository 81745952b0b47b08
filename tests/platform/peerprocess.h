// SPDX-License-Identifier: MIT
// A second process for a test: started, talked to by lines, killed and awaited.
#pragma once

#include "system/descriptor.h"

#include <string>
#include <vector>

#include <sys/types.h>

namespace platformtest {

/// Runs the program platform_test_peer; kills and reaps it at the end.
class PeerProcess {
public:
    enum class Errors { Shown, Captured };

    explicit PeerProcess(std::vector<std::string> arguments, Errors errors = Errors::Shown);
    ~PeerProcess();
    PeerProcess(const PeerProcess&) = delete;
    PeerProcess& operator=(const PeerProcess&) = delete;

    pid_t processID() const { return child_; }
    /// The next line of its standard output, waiting for it; empty at the end.
    std::string readLine() { return readLine(output_.get()); }
    /// The same of its standard error, where that is captured.
    std::string readErrorLine() { return readLine(errors_.get()); }
    /// Sends a line to its standard input.
    void prompt();
    /// Kills it and waits until it is gone.
    void kill();
    /// Closes its standard input and waits for its end; the exit status, or -1 after a signal.
    int wait();

private:
    static std::string readLine(int pipe);

    pid_t child_ = -1;
    sys::Descriptor input_;
    sys::Descriptor output_;
    sys::Descriptor errors_;
};

/// One that serves as an application, and has registered.
class RegisteredPeer : public PeerProcess {
public:
    /// Throws std::runtime_error when it could not register.
    explicit RegisteredPeer(std::vector<std::string> arguments);
};

} // namespace platformtest
