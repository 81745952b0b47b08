// SPDX-License-Identifier: MIT
// One line per thing said.
#include "host/cli/consolefrontend.h"

#include <algorithm>
#include <ostream>

namespace host {

void ConsoleFrontend::showAlert(const Alert& alert) {
    alerts_.push_back(alert);
    if (alert.kind != AlertKind::About) {
        std::string text = alert.text;
        std::replace(text.begin(), text.end(), '\n', ' ');
        printLine("alert: " + text);
    }
    if (alertWindow_) {
        alertWindow_(alert);
    }
}

void ConsoleFrontend::reportError(std::string_view text) {
    errors_.emplace_back(text);
    printLine("error: " + errors_.back());
}

void ConsoleFrontend::reportMisbehaviour(std::string_view plugin, std::string_view what) {
    std::string line = "the plug-in misbehaves: ";
    if (!plugin.empty()) {
        line.append(plugin).append(" ");
    }
    printLine(line.append(what));
}

void ConsoleFrontend::printLine(const std::string& line) {
    const std::lock_guard lock(mutex_);
    stream_ << line << std::endl;
}

} // namespace host
