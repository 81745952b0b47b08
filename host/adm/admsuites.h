// SPDX-License-Identifier: MIT
// The tables of the dialog manager's suites, over Dialogs.
#pragma once

#include "host/core/suiteregistry.h"

namespace host {

/// "ADM Dialog Suite", "ADM Item Suite", "ADM Notifier Suite", "ADM Tracker Suite", and those of
/// lists, entries and drawers.
void provideDialogSuites(SuiteRegistry& suites);
/// Of these, the ones of lists and their entries.
void provideListSuites(SuiteRegistry& suites);
/// Of these, the one of drawers.
void provideDrawerSuite(SuiteRegistry& suites);

} // namespace host
