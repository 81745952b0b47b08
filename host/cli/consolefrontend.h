// SPDX-License-Identifier: MIT
// The host on a terminal: what it says goes to standard error, and is kept for the report.
#pragma once

#include "host/core/frontend.h"

#include <iosfwd>
#include <mutex>
#include <string>
#include <vector>

namespace host {

class ConsoleFrontend : public Frontend {
public:
    /// `errors` outlives the frontend.
    explicit ConsoleFrontend(std::ostream& errors) : stream_(errors) {}

    void showAlert(const Alert& alert) override;
    void reportError(std::string_view text) override;
    void reportMisbehaviour(std::string_view plugin, std::string_view what) override;

    const std::vector<Alert>& alerts() const noexcept { return alerts_; }
    const std::vector<std::string>& errors() const noexcept { return errors_; }

private:
    void printLine(const std::string& line);

    std::mutex mutex_; ///< of the stream
    std::ostream& stream_;
    std::vector<Alert> alerts_;
    std::vector<std::string> errors_;
};

} // namespace host
