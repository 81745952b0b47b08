// SPDX-License-Identifier: MIT
#include "manager/qt/userprocess.h"
#include "manager/view/texts.h"
#include "tests/manager/sandbox.h"
#include "tests/support/await.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

TEST(AProgramOfTheUsers, IsStartedInTheUsersLanguageNotTheWindows) {
    const testsupport::TemporaryFolder folder;
    const std::string opener = folder.write(
        "xdg-open",
        "#!/bin/sh\nprintf '%s' \"$1 $LANGUAGE\" >\"$0.part\"\nmv \"$0.part\" \"$0.told\"\n");
    chmod(opener.c_str(), 0700);
    const testsupport::Variable path("PATH", folder.path().string() + ":/usr/bin:/bin");
    const testsupport::Variable language("LANGUAGE", "fr:de");
    manager::chooseLanguage("de_DE");
    manager::openFolder(QStringLiteral("/fonts/of mine"));
    EXPECT_TRUE(testsupport::await([&] { return std::filesystem::exists(opener + ".told"); }));
    EXPECT_EQ(managertest::readBytes(opener + ".told"), "/fonts/of mine fr:de");
}

} // namespace
