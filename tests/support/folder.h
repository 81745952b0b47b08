// SPDX-License-Identifier: MIT
// A folder of a test's own.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

class AFolder : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (std::filesystem::temp_directory_path() / "orvil-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder = pattern;
    }
    void TearDown() override { std::filesystem::remove_all(folder); }
    std::string file(const std::string& name, const std::string& content) const {
        std::string path = (folder / name).string();
        std::ofstream(path) << content;
        return path;
    }

    std::filesystem::path folder;
};
