// SPDX-License-Identifier: MIT
// A library over one folder, and what is told when it is opened.
#pragma once

#include "manager/library/library.h"
#include "manager/library/update.h"
#include "tests/manager/sandbox.h"
#include "tests/support/fontmaker.h"

#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace managertest {

class ALibrary : public testing::Test {
protected:
    manager::UpdateReport scan() {
        return manager::updateLibrary(*library_, std::vector{sandbox_.library()},
                                      manager::FontReaderLimits{});
    }
    void add(const std::string& path, const testsupport::FontRecipe& recipe) {
        sandbox_.write(path, testsupport::makeFont(recipe));
    }
    std::map<std::string, manager::ContainerId> ids() {
        std::map<std::string, manager::ContainerId> result;
        for (const manager::Container& container : library_->containers()) {
            const std::string path = container.path().substr(sandbox_.library().size());
            result[container.name + "@" + path] = container.id;
        }
        return result;
    }
    std::unique_ptr<manager::Library>
    open(manager::IndexCheck check = manager::IndexCheck::WhenUnclean,
         std::chrono::milliseconds patience = manager::lockPatience) {
        return manager::openLibrary(
            sandbox_.places(), [this] { return known_; },
            [this](const std::string& text) { reports_.push_back(text); }, check, patience);
    }

    Sandbox sandbox_;
    std::vector<manager::KnownContainer> known_;
    std::vector<std::string> reports_;
    std::unique_ptr<manager::Library> library_ =
        std::make_unique<manager::Library>(sandbox_.places());
};

} // namespace managertest
