// SPDX-License-Identifier: MIT
// Temporary folders and environments for tests.
#include "tests/manager/sandbox.h"

#include <fstream>
#include <stdexcept>

namespace managertest {

Sandbox::Sandbox() {
    std::filesystem::create_directories(root_ + "/data/fonts");
    std::filesystem::create_directories(library());
    setFontconfig("<dir>" + root_ + "/data/fonts</dir>");
}

void Sandbox::setFontconfig(const std::string& settings) const {
    writeBytes(root_ + "/fonts.conf", "<?xml version=\"1.0\"?>\n<fontconfig>" + settings +
                                          "<cachedir>" + root_ +
                                          "/cache</cachedir></fontconfig>\n");
}

std::string Sandbox::write(const std::string& relativePath, std::string_view bytes) const {
    std::string path = library() + "/" + relativePath;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    writeBytes(path, bytes);
    return path;
}

void writeBytes(const std::string& path, std::string_view bytes) {
    std::ofstream file(path, std::ios::binary);
    file << bytes;
    if (!file.flush()) {
        throw std::runtime_error(path + ": cannot be written");
    }
}

} // namespace managertest
