// SPDX-License-Identifier: MIT
// A folder of a test's own.
#pragma once

#include "tests/support/temporaryfolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

class AFolder : public testing::Test {
    testsupport::TemporaryFolder temporary_;

protected:
    std::string file(const std::string& name, const std::string& content) const {
        return temporary_.write(name, content).string();
    }

    const std::filesystem::path folder = temporary_.path();
};
