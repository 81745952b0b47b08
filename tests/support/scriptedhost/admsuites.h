// SPDX-License-Identifier: MIT
// Alerts, texts and the locale of the scripted host.
#pragma once

#include "adm/suites.h"

namespace scripted {

extern const ADMBasicSuite admBasicTable;
extern const ADMHostSuite admHostTable;

} // namespace scripted
