// SPDX-License-Identifier: MIT
// What the server leaves to processes of their own, which it does not wait for.
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace manager {

/// They outlive their owner. [one-thread]
class GuestProcesses {
public:
    /// So many may run at a time.
    static constexpr std::size_t maximum = 16;

    /// Starts this program with an argument and the option --request, which has it read `command`,
    /// the text of a plug-in. Returns why it could not be started, or nothing.
    [[nodiscard]] std::string start(const char* argument, const std::string& command);
    /// Lets go of those that have ended. A line for people of each that failed.
    [[nodiscard]] std::vector<std::string> takeFailures();

private:
    struct Guest {
        pid_t process;
        std::string argument;
    };
    std::vector<Guest> running_;
};

} // namespace manager
