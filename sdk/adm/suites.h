// SPDX-License-Identifier: MIT
// Suites of the dialog manager that are called outside dialogs: alerts, string lists, the locale.
// Every call is [main-thread]; texts are UTF-8.
#pragma once

#include "sp/types.h"

/// "ADM Basic Suite" 10, also to be had as version 2 (the same table) for reporting an error before
/// the plug-in has its suites.
struct ADMBasicSuite {
    /// Reads entry `index` (from 1) of the plug-in's string list `listID`: at most `size` - 1 bytes
    /// and a terminating zero. kNoSuchStringErr: no such list or entry; `buffer` is then empty.
    ADMErr (*GetIndexString)(SPPluginRef plugin, std::int32_t listID, std::int32_t index,
                             char* buffer, std::int32_t size);
    /// Shows the plug-in's about box.
    void (*AboutBox)(SPPluginRef plugin, const char* title, const char* text);
    void (*ErrorAlert)(const char* text);
    void (*MessageAlert)(const char* text);
};

/// "ADM Host Suite" 6
struct ADMHostSuite {
    /// Writes the host application's locale, such as "de_DE", zero-terminated.
    ADMErr (*GetAppLocale)(char* buffer, std::int32_t size);
};
