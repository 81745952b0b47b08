// SPDX-License-Identifier: MIT
// The program glyphora-protocol as a function.
#pragma once

#include <iosfwd>

namespace ProtocolTool {

enum ExitCode : int {
    done = 0,
    refused = 1,  ///< the document or the request is not valid
    unusable = 2, ///< wrong usage, a file or output that fails, or no schema
};

/// Runs the program; `input` stands for a file name of "-".
int run(int argc, const char* const* argv, std::istream& input, std::ostream& output,
        std::ostream& errors);

} // namespace ProtocolTool
