// SPDX-License-Identifier: MIT
// Keeps standard output for the report, whatever plug-ins print meanwhile.
#pragma once

#include "system/descriptor.h"

#include <filesystem>
#include <string_view>

namespace host {

/// What becomes of what plug-ins print.
enum class Chatter { ToStandardError, Dropped };

/// While it lives, the process' standard output is its standard error, or nothing, and only write()
/// reaches what was the standard output before.
class ReservedOutput {
public:
    /// If the system has no descriptor left, nothing is redirected.
    explicit ReservedOutput(Chatter chatter);
    ReservedOutput(const ReservedOutput&) = delete;
    ReservedOutput& operator=(const ReservedOutput&) = delete;
    ~ReservedOutput();

    /// False when it could not be written as a whole.
    [[nodiscard]] bool write(std::string_view text) const;

    /// Where what is written to `path` has to go meanwhile: for a name of the standard output
    /// another name of what it was before, else `path` itself.
    [[nodiscard]] std::filesystem::path redirected(const std::filesystem::path& path) const;

private:
    sys::Descriptor kept_;
};

} // namespace host
