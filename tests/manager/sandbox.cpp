// SPDX-License-Identifier: MIT
// Temporary folders and environments for tests.
#include "tests/manager/sandbox.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace managertest {

void Environment::set(const char* name, const std::string& value) {
    const char* previous = std::getenv(name);
    previous_.emplace_back(name, previous != nullptr ? std::optional<std::string>(previous)
                                                     : std::nullopt);
    setenv(name, value.c_str(), 1);
}

Environment::~Environment() {
    for (auto entry = previous_.rbegin(); entry != previous_.rend(); ++entry) {
        if (entry->second) {
            setenv(entry->first.c_str(), entry->second->c_str(), 1);
        } else {
            unsetenv(entry->first.c_str());
        }
    }
}

Sandbox::Sandbox() {
    std::string pattern = (std::filesystem::temp_directory_path() / "glyphora-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("no temporary folder");
    }
    root_ = std::filesystem::canonical(pattern).string();
    std::filesystem::create_directories(root_ + "/data/fonts");
    std::filesystem::create_directories(library());
    writeBytes(root_ + "/fonts.conf",
               "<?xml version=\"1.0\"?>\n"
               "<!DOCTYPE fontconfig SYSTEM \"fonts.dtd\">\n<fontconfig><dir>" +
                   root_ + "/data/fonts</dir><cachedir>" + root_ +
                   "/cache</cachedir></fontconfig>\n");
    environment_.set("XDG_DATA_HOME", root_ + "/data");
    environment_.set("XDG_CACHE_HOME", root_ + "/cache");
    environment_.set("FONTCONFIG_FILE", root_ + "/fonts.conf");
}

Sandbox::~Sandbox() {
    std::error_code ignored;
    std::filesystem::remove_all(root_, ignored);
}

std::string Sandbox::write(const std::string& relativePath, std::string_view bytes) const {
    std::string path = library() + "/" + relativePath;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    writeBytes(path, bytes);
    return path;
}

std::string readBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error(path + ": cannot be read");
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeBytes(const std::string& path, std::string_view bytes) {
    std::ofstream file(path, std::ios::binary);
    file << bytes;
    if (!file.flush()) {
        throw std::runtime_error(path + ": cannot be written");
    }
}

} // namespace managertest
