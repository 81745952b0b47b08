// SPDX-License-Identifier: MIT
// A plug-in on disk (NAME.aip/Contents/Linux/NAME.so, Contents/Resources) and its code in memory.
#pragma once

#include "sp/messages.h"

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

namespace host {

/// A plug-in cannot be loaded or started. what() is one line that names bundle or file.
class PluginError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct Bundle {
    std::filesystem::path folder;
    std::filesystem::path module;
    std::filesystem::path resources; ///< may not exist

    /// Throws PluginError when it is no folder or does not hold exactly one module for this system.
    [[nodiscard]] static Bundle open(const std::filesystem::path& folder);

    /// The folder's name without extension.
    std::string name() const { return folder.stem().string(); }
};

/// [main-thread] A module's code, mapped.
class Module {
public:
    /// Throws PluginError when it cannot be mapped or has no entry point.
    explicit Module(std::filesystem::path file);
    Module(Module&&) noexcept = default;
    Module& operator=(Module&&) noexcept = default;

    SPEntryProc entry() const noexcept { return entry_; }

    /// Gives the code back, which runs the module's static destructors. False when it is not gone
    /// from memory: a module that the system keeps would not be seen afresh when it is mapped
    /// again.
    bool unmap() noexcept;

    /// Whether a module's code is in memory now.
    [[nodiscard]] static bool isMapped(const std::filesystem::path& file) noexcept;

private:
    struct Close {
        void operator()(void* library) const noexcept;
    };
    std::filesystem::path file_;
    std::unique_ptr<void, Close> library_;
    SPEntryProc entry_ = nullptr;
};

} // namespace host
