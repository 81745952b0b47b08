// SPDX-License-Identifier: MIT
// A container of two fonts, and what of it is active.
#pragma once

#include "manager/activation/activation.h"
#include "tests/manager/sandbox.h"
#include "tests/support/fontmaker.h"

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fontconfig/fontconfig.h>
#include <gtest/gtest.h>
#include <set>
#include <span>
#include <string>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace managertest {

inline constexpr auto container = static_cast<manager::ContainerId>(7);

/// A program that has a file mapped, as those do that draw with a font.
class FontUser {
public:
    /// As another user when one is given, which takes root.
    explicit FontUser(const std::string& path, uid_t user = geteuid()) {
        int ends[2] = {};
        EXPECT_EQ(pipe(ends), 0);
        const sys::Descriptor ready(ends[0]);
        {
            const sys::Descriptor tell(ends[1]);
            process_ = fork();
            if (process_ == 0) {
                const int file = open(path.c_str(), O_RDONLY);
                static_cast<void>(mmap(nullptr, 1, PROT_READ, MAP_PRIVATE, file, 0));
                if (setuid(user) != 0) {
                    _exit(1);
                }
                static_cast<void>(write(tell.get(), "", 1));
                pause();
            }
        }
        char byte = 0;
        EXPECT_EQ(read(ready.get(), &byte, 1), 1);
    }
    FontUser(const FontUser&) = delete;
    FontUser& operator=(const FontUser&) = delete;
    ~FontUser() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    [[nodiscard]] pid_t process() const { return process_; }

private:
    pid_t process_ = -1;
};

class AnActivation : public testing::Test {
protected:
    AnActivation() {
        addFont("one.ttf", "One");
        addFont("two.ttf", "Two");
    }
    ~AnActivation() override { FcFini(); }

    void addFont(const std::string& file, const std::string& name) {
        sandbox_.write(file, testsupport::makeFont({name, "Regular", name}));
    }
    manager::ContainerFonts fonts(const std::vector<std::string>& files = {"one.ttf", "two.ttf"}) {
        manager::ContainerFonts result{container, "Both", {}};
        for (const std::string& file : files) {
            const std::string path = sandbox_.library() + "/" + file;
            result.files.push_back({path, manager::stampOf(path)});
        }
        return result;
    }
    manager::ActivationOutcome activate(const manager::ContainerFonts& wanted,
                                        manager::StepObserver observer = {}) {
        manager::Activation activation(sandbox_.places(), std::move(observer));
        return activation.activate(std::span(&wanted, 1)).at(0);
    }
    manager::ActivationOutcome deactivate(manager::StepObserver observer = {}) {
        manager::Activation activation(sandbox_.places(), std::move(observer));
        return activation.deactivate(std::span(&container, 1)).at(0);
    }
    void recover() {
        manager::Activation(sandbox_.places()).recover([this](const std::string& text) {
            reports_.push_back(text);
        });
    }
    // Of both files, as the library has them now.
    std::set<std::string> activeFiles() {
        const manager::Activation activation(sandbox_.places());
        const auto set = activation.setOf({container, "Both", sandbox_.library(), {}});
        std::set<std::string> names;
        for (const manager::LibraryFile& file : fonts().files) {
            if (set && activation.holds(*set, file)) {
                names.insert(manager::nameOf(file.path));
            }
        }
        return names;
    }

    [[nodiscard]] std::string set() const { return sandbox_.places().fonts() + "/7"; }
    // What another program sees, that starts now.
    static std::vector<std::string> visibleFamilies() {
        FcInitReinitialize();
        std::vector<std::string> families;
        const FcFontSet* all = FcConfigGetFonts(nullptr, FcSetSystem);
        for (int i = 0; all != nullptr && i < all->nfont; ++i) {
            FcChar8* family = nullptr;
            FcPatternGetString(all->fonts[i], FC_FAMILY, 0, &family);
            families.emplace_back(reinterpret_cast<const char*>(family));
        }
        std::sort(families.begin(), families.end());
        return families;
    }
    static std::vector<std::string> entries(const std::string& folder) {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    Sandbox sandbox_;
    std::vector<std::string> reports_;
};

} // namespace managertest
