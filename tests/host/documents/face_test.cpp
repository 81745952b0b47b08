// SPDX-License-Identifier: MIT
// Names of faces.
#include "host/documents/face.h"

#include <gtest/gtest.h>

namespace host {
namespace {

TEST(AConventionalName, IsFamilyAndStyleWithoutBlanks) {
    EXPECT_EQ(conventionalPostScriptName("Missing Sans", "Bold Italic"), "MissingSans-BoldItalic");
    EXPECT_EQ(conventionalPostScriptName("Missing", "Regular"), "Missing-Regular");
    EXPECT_EQ(conventionalPostScriptName("Missing", ""), "Missing-Regular");
}

} // namespace
} // namespace host
