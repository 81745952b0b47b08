// SPDX-License-Identifier: MIT
// The scan that the server runs.
#pragma once

#include <sys/types.h>

namespace manager {

/// "glyphora scan" beside the server, so that no answer waits for it and no font can harm it. Ended
/// with its owner.
class ScanProcess {
public:
    ScanProcess() = default;
    ScanProcess(const ScanProcess&) = delete;
    ScanProcess& operator=(const ScanProcess&) = delete;
    ~ScanProcess();

    [[nodiscard]] bool isRunning() const { return process_ > 0; }
    /// Not while one runs. A failure is told on standard error.
    void start();
    /// Whether it has ended since it was started; told once.
    [[nodiscard]] bool hasEnded();

private:
    pid_t process_ = -1;
};

} // namespace manager
