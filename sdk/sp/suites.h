// SPDX-License-Identifier: MIT
// Suites of the plug-in manager: holding a plug-in in memory, and naming it.
#pragma once

#include "sp/types.h"

/// One use of a loaded plug-in; while it lives, the plug-in is not unloaded.
using SPAccessRef = struct SPAccess*;

/// "SP Access Suite" 3
struct SPAccessSuite {
    /// [main-thread] Keeps `plugin` loaded. The caller owns `*access` until ReleasePlugin.
    /// kBadParameterErr: not a loaded plug-in.
    SPErr (*AcquirePlugin)(SPPluginRef plugin, SPAccessRef* access);
    /// [main-thread] Ends one use; `access` is not valid afterwards. kBadParameterErr: not a live
    /// access reference.
    SPErr (*ReleasePlugin)(SPAccessRef access);
};
static_assert(isSuiteTable<SPAccessSuite, 2>);

/// "SP Plug-ins Suite" 4
struct SPPluginsSuite {
    /// [main-thread] Names the plug-in in the host's lists and messages. The host copies the text
    /// (UTF-8). kBadParameterErr: not a loaded plug-in, or not UTF-8.
    SPErr (*SetPluginName)(SPPluginRef plugin, const char* name);
};
static_assert(isSuiteTable<SPPluginsSuite, 1>);
