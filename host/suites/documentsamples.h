// SPDX-License-Identifier: MIT
// The current document's own words, and the faces of its fonts, for windows.
#pragma once

#include "host/fonts/fontsource.h"
#include "host/suites/application.h"

namespace host {

/// `application` outlives it.
[[nodiscard]] FontSource fontSourceOf(Application& application);

} // namespace host
