// SPDX-License-Identifier: MIT
// The one symbol that the bundle exports.
#pragma once

#include "sp/messages.h"

/// [main-thread] Called by the host for every message. `message` begins with SPMessageData; it and
/// the names are the host's and valid during the call. Returns 0 or an error, of which the user has
/// been told, unless it is quiet, was told just before, or has no text. Exceptions of the plug-in's
/// operations pass through: the host guards its calls.
extern "C" [[gnu::visibility("default")]] SPErr PluginMain(const char* caller, const char* selector,
                                                           void* message);
