// SPDX-License-Identifier: MIT
// The drawing process' side of the socket.
#pragma once

#include "preview/request.h"
#include "preview/wire.h"

#include <functional>

namespace preview {

/// [main-thread] Draws what is asked for.
using DrawFunction = std::function<Answer(const Request&)>;
/// [main-thread] Tells which file a path names by now.
using LookFunction = std::function<Look(const std::string&)>;

[[nodiscard]] Look lookAt(const std::string& file);

/// Answers the orders that come over `socket`, one after the other, until the other side is
/// gone, each within `seconds` of processor time. False: what came is no order.
[[nodiscard]] bool serve(int socket, unsigned seconds, const DrawFunction& draw,
                         const LookFunction& look);

/// `main` of a process that draws on its standard input: sets its limits, which are its two
/// arguments (bytes of memory; seconds of processor time for a line), and serves.
[[nodiscard]] int serveMain(int argc, char** argv, const DrawFunction& draw,
                            const LookFunction& look = lookAt);

} // namespace preview
