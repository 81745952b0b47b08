// SPDX-License-Identifier: MIT
// The suite pointers themselves.
#include "suitepointers.h"

const SPBasicSuite* sSPBasic = nullptr;

#define GLYPHORA_DEFINE_SUITE(type, pointer, name, version) const type* pointer = nullptr;
GLYPHORA_BASIC_SUITES(GLYPHORA_DEFINE_SUITE)
GLYPHORA_IMPORT_SUITES(GLYPHORA_DEFINE_SUITE)
#undef GLYPHORA_DEFINE_SUITE
