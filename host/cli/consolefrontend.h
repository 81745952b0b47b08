// SPDX-License-Identifier: MIT
// The host on a terminal: what it says goes to standard error, and is kept for the report.
#pragma once

#include "host/core/frontend.h"

#include <functional>
#include <iosfwd>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace host {

class ConsoleFrontend : public Frontend {
public:
    /// `errors` outlives the frontend.
    explicit ConsoleFrontend(std::ostream& errors) : stream_(errors) {}

    /// [main-thread, modal] Shows alerts beside the line about them; must not throw.
    using AlertWindow = std::function<void(const Alert&)>;
    /// Nothing: there is no window.
    void setAlertWindow(AlertWindow window) { alertWindow_ = std::move(window); }

    void showAlert(const Alert& alert) override;
    void reportError(std::string_view text) override;
    void reportMisbehaviour(std::string_view plugin, std::string_view what) override;

    const std::vector<Alert>& alerts() const noexcept { return alerts_; }
    const std::vector<std::string>& errors() const noexcept { return errors_; }

private:
    void printLine(const std::string& line);

    std::mutex mutex_; ///< of the stream
    std::ostream& stream_;
    AlertWindow alertWindow_;
    std::vector<Alert> alerts_;
    std::vector<std::string> errors_;
};

} // namespace host
