// SPDX-License-Identifier: MIT
// A display with a keyboard, where nobody sits.
#pragma once

#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <string>

namespace testsupport {

/// An X server of a test's own, which draws into memory. The constructor throws
/// std::runtime_error when none starts.
class XServer {
public:
    XServer()
        : output_(popen("echo $$; exec setpriv --pdeathsig KILL Xvfb -displayfd 1 -nolisten tcp "
                        "-screen 0 1280x1024x24 2>/dev/null",
                        "r")) {
        if (std::fscanf(output_, "%d %u", &process_, &display_) != 2) {
            throw std::runtime_error("no X server has started");
        }
    }
    ~XServer() {
        kill(process_, SIGTERM);
        pclose(output_);
    }
    XServer(const XServer&) = delete;
    XServer& operator=(const XServer&) = delete;

    [[nodiscard]] std::string display() const { return ":" + std::to_string(display_); }

private:
    FILE* output_;
    int process_ = 0;
    unsigned display_ = 0;
};

} // namespace testsupport
