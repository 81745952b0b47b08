// SPDX-License-Identifier: MIT
// A folder that lasts as long as a test, and environment variables likewise.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>

namespace testsupport {

/// The whole file. Throws std::runtime_error when it cannot be read.
inline std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error(path.string() + ": cannot be read");
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "glyphora-test-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("no temporary folder");
        }
        path_ = pattern;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }
    /// Makes the file and the folders above it.
    std::filesystem::path write(const std::string& name, const std::string& text) const {
        std::filesystem::path path = path_ / name;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << text;
        return path;
    }

private:
    std::filesystem::path path_;
};

class Variable {
public:
    Variable(const char* name, const std::optional<std::string>& value) : name_(name) {
        if (const char* previous = std::getenv(name)) {
            previous_ = previous;
        }
        set(value);
    }
    ~Variable() { set(previous_); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    void set(const std::optional<std::string>& value) const {
        value ? setenv(name_, value->c_str(), 1) : unsetenv(name_);
    }

private:
    const char* name_;
    std::optional<std::string> previous_;
};

} // namespace testsupport
