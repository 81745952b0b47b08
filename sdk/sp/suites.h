// SPDX-License-Identifier: MIT
// Suites of the plug-in manager: holding a plug-in in memory, and naming it.
#pragma once

#include "sp/types.h"

/// Counts one use of a loaded plug-in; while it lives the plug-in is not unloaded.
using SPAccessRef = struct SPAccess*;

/// "SP Access Suite" 3
struct SPAccessSuite {
    /// [main-thread] Keeps `plugin` loaded. `*access` is the caller's until ReleasePlugin.
    /// kBadParameterErr: not a loaded plug-in.
    SPErr (*AcquirePlugin)(SPPluginRef plugin, SPAccessRef* access);
    /// [main-thread] kBadParameterErr: not a live access reference.
    SPErr (*ReleasePlugin)(SPAccessRef access);
};

/// "SP Plug-ins Suite" 4
struct SPPluginsSuite {
    /// [main-thread] Names the plug-in in the host's lists and messages. The text (UTF-8) is
    /// copied. kBadParameterErr: not a loaded plug-in, or not UTF-8.
    SPErr (*SetPluginName)(SPPluginRef plugin, const char* name);
};
