// SPDX-License-Identifier: MIT
// How a test sees that a thread has come to wait, without sleeping itself.
#pragma once

#include "misc/text/strings.h"

#include <fstream>
#include <string>
#include <sys/types.h>

/// Whether the thread of this process waits in the kernel.
inline bool isAsleep(pid_t thread) {
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
    const std::string status = Orvil::streamToString(file);
    const auto state = status.rfind(") ");
    return state != std::string::npos && status.compare(state + 2, 1, "S") == 0;
}
