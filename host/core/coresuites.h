// SPDX-License-Identifier: MIT
// The tables of the suites that need neither documents nor windows.
#pragma once

#include "host/core/suiteregistry.h"

namespace host {

/// Plug-in manager: "SP Access Suite", "SP Plug-ins Suite"; and "AI Context Suite", "AI Unicode
/// String Suite".
void provideCoreSuites(SuiteRegistry& suites);
/// "AI Notifier Suite", "AI Timer Suite", "AI Menu Suite".
void provideRegistrationSuites(SuiteRegistry& suites);
/// "ADM Basic Suite" 10 and 2, "ADM Host Suite".
void provideDialogBasicSuites(SuiteRegistry& suites);

} // namespace host
