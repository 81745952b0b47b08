// SPDX-License-Identifier: MIT
// Keeps standard output for the report: what plug-ins print goes to standard error meanwhile.
#pragma once

#include <string_view>

namespace host {

/// While it lives, the process' standard output is its standard error, and only write() reaches
/// what was the standard output before.
class ReservedOutput {
public:
    /// If the system has no descriptor left, nothing is redirected.
    ReservedOutput();
    ReservedOutput(const ReservedOutput&) = delete;
    ReservedOutput& operator=(const ReservedOutput&) = delete;
    ~ReservedOutput();

    /// @return false when it could not be written as a whole
    bool write(std::string_view text) const;

private:
    int kept_ = -1;
};

} // namespace host
