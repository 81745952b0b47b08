// SPDX-License-Identifier: MIT
// The drawing process' side of the socket.
#pragma once

#include "preview/request.h"

#include <functional>

namespace preview {

/// [main-thread] Draws what is asked for.
using DrawFunction = std::function<Answer(const Request&)>;

/// Answers the requests that come over `socket`, one after the other, until the other side is
/// gone, each within `seconds` of processor time. False: what came is no request.
[[nodiscard]] bool serve(int socket, unsigned seconds, const DrawFunction& draw);

/// `main` of a process that draws on its standard input: sets its limits, which are its two
/// arguments (bytes of memory; seconds of processor time for a line), and serves.
[[nodiscard]] int serveMain(int argc, char** argv, const DrawFunction& draw);

} // namespace preview
