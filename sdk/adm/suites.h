// SPDX-License-Identifier: MIT
// The dialog manager's suites that are used outside dialogs: alerts, string lists, the locale.
// Texts are UTF-8; the host copies those that it is given. A call off the main thread, or made
// while the plug-in handles no message, answers kWrongThreadErr or kNotRunningErr if it has a
// status, and does nothing otherwise.
#pragma once

#include "sp/types.h"

/// "ADM Basic Suite" 10. Version 2 is the same table; it serves to report an error before the
/// plug-in has acquired its suites.
struct ADMBasicSuite {
    /// [main-thread] Reads entry `index` (from 1) of the plug-in's string list `listID` into the
    /// caller's `buffer`: at most `size` - 1 bytes and a terminating zero. kNoSuchStringErr: there
    /// is no such list or entry, and `buffer` is empty. kBadParameterErr: an unknown plug-in, a
    /// null buffer, or a size below 1.
    ADMErr (*GetIndexString)(SPPluginRef plugin, std::int32_t listID, std::int32_t index,
                             char* buffer, std::int32_t size);
    /// [main-thread, modal] Shows the plug-in's about box; returns when it has been closed.
    void (*AboutBox)(SPPluginRef plugin, const char* title, const char* text);
    /// [main-thread, modal] Shows an error; returns when the user has dismissed it.
    void (*ErrorAlert)(const char* text);
    /// [main-thread, modal] Shows a message; returns when the user has dismissed it.
    void (*MessageAlert)(const char* text);
};
static_assert(isSuiteTable<ADMBasicSuite, 4>);

/// "ADM Host Suite" 6
struct ADMHostSuite {
    /// [main-thread] Writes the host application's locale, such as "de_DE", into the caller's
    /// `buffer`: at most `size` - 1 bytes and a terminating zero. kBadParameterErr: a null buffer,
    /// or a size below 1.
    ADMErr (*GetAppLocale)(char* buffer, std::int32_t size);
};
static_assert(isSuiteTable<ADMHostSuite, 1>);
