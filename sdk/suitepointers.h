// SPDX-License-Identifier: MIT
// The global pointers of all suites: set while they are acquired, and null otherwise. A suite that
// nothing is called of has a type without a definition, since only its pointer is held.
// [main-thread], but for the basic suite's allocation.
#pragma once

#include "adm/dialogsuites.h"
#include "adm/drawersuite.h"
#include "adm/listsuites.h"
#include "adm/suites.h"
#include "ai/suites.h"
#include "ate/suites.h"
#include "sp/basic.h"
#include "sp/suites.h"
#include "suitelist.h"

#define GLYPHORA_DECLARE_TYPE(type, pointer, name, version) struct type;
GLYPHORA_HOST_SUITES(GLYPHORA_DECLARE_TYPE)

namespace ATE {
GLYPHORA_TEXT_SUITES(GLYPHORA_DECLARE_TYPE, )
} // namespace ATE
#undef GLYPHORA_DECLARE_TYPE

/// The basic suite, taken from every message.
extern const SPBasicSuite* sSPBasic;

// NOLINTNEXTLINE(bugprone-macro-parentheses): a declaration takes none
#define GLYPHORA_DECLARE_SUITE(type, pointer, name, version) extern const type* pointer;
GLYPHORA_BASIC_SUITES(GLYPHORA_DECLARE_SUITE)
GLYPHORA_IMPORT_SUITES(GLYPHORA_DECLARE_SUITE)
#undef GLYPHORA_DECLARE_SUITE
