// SPDX-License-Identifier: MIT
// The one symbol that the bundle exports.
#pragma once

#include "sp/messages.h"

/// Called by the host, on its main thread, for every message; `message` begins with SPMessageData.
/// Returns 0 or an error; the user was told of it unless it is quiet, was told just before, or
/// has no message.
/// Exceptions of the plug-in's operations pass through: the host guards its calls.
extern "C" [[gnu::visibility("default")]] SPErr PluginMain(const char* caller, const char* selector,
                                                           void* message);
