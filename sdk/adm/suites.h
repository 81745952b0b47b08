// SPDX-License-Identifier: MIT
// Suites of the dialog manager that are called outside dialogs: alerts, string lists, the locale.
// Every call is [main-thread]: off it, or while the plug-in handles no message, those with a status
// answer kWrongThreadErr or kNotRunningErr, and the others do nothing. Texts are UTF-8; those that
// go in are copied by the host.
#pragma once

#include "sp/types.h"

/// "ADM Basic Suite" 10, also to be had as version 2 (the same table) for reporting an error before
/// the plug-in has its suites.
struct ADMBasicSuite {
    /// Reads entry `index` (from 1) of the plug-in's string list `listID`: at most `size` - 1 bytes
    /// and a terminating zero. kNoSuchStringErr: no such list or entry; `buffer` is then empty.
    /// kBadParameterErr: an unknown plug-in, a null buffer, or a size below 1.
    ADMErr (*GetIndexString)(SPPluginRef plugin, std::int32_t listID, std::int32_t index,
                             char* buffer, std::int32_t size);
    /// Shows the plug-in's about box.
    void (*AboutBox)(SPPluginRef plugin, const char* title, const char* text);
    void (*ErrorAlert)(const char* text);
    void (*MessageAlert)(const char* text);
};

/// "ADM Host Suite" 6
struct ADMHostSuite {
    /// Writes the host application's locale, such as "de_DE": at most `size` - 1 bytes and a
    /// terminating zero. kBadParameterErr: a null buffer, or a size below 1.
    ADMErr (*GetAppLocale)(char* buffer, std::int32_t size);
};
