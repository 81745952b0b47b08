// SPDX-License-Identifier: MIT
// The tables of the suites that show documents and fonts.
#pragma once

#include "host/core/suiteregistry.h"

namespace host {

/// "AI Document Suite", "AI Document List Suite", "AI Layer Suite", "AI Art Suite", "AI Text Frame
/// Suite". They work on the current OpenDocuments and TextEngine.
void provideArtSuites(SuiteRegistry& suites);
/// "AI Font Suite". It works on the current TextEngine.
void provideFontSuite(SuiteRegistry& suites);

} // namespace host
