// SPDX-License-Identifier: MIT
// A host that misbehaves on purpose, so that plug-ins can be tried out.
#pragma once

#include "host/core/core.h"

#include <string>
#include <string_view>

namespace host {

/// "missing-suite=NAME:VERSION": the suite cannot be acquired.
/// "failing-call=[SUITE/]CALL[:ERROR[:FROM]]": the call fails, from its FROMth time on (else
/// always), with ERROR, which is a number or four characters (else 'PARM').
/// Returns what is wrong with the form of a fault, or nothing.
[[nodiscard]] std::string checkSabotage(std::string_view fault);

/// Builds a fault in. Returns what is wrong with it, such as a suite that does not exist, or
/// nothing.
[[nodiscard]] std::string applySabotage(Core& core, std::string_view fault);

} // namespace host
