// SPDX-License-Identifier: MIT
// The command line of `glyphora`.
#pragma once

namespace manager {

/// What the program ends with.
enum ExitStatus : int {
    exitSuccess = 0,
    exitFailure = 1, ///< nothing of what was asked could be done; standard error says why
    exitUsage = 2,   ///< the command line is wrong
    exitPartly = 3,  ///< some of what was asked could be done; standard error says what could not
};

/// Reads the command line and does what it says. Never throws.
int runCommandLine(int argc, char** argv);

} // namespace manager
