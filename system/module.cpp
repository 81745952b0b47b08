// SPDX-License-Identifier: MIT
#include "system/module.h"

#include <dlfcn.h>

#include <system_error>

namespace sys {

void* functionOfModule(const std::filesystem::path& module, const char* name) {
    std::error_code failed;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", failed);
    const std::filesystem::path path = program.parent_path().parent_path() / module;
    // What is built in more than one place is one all the same: the program exports it.
    void* const handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    return handle != nullptr ? dlsym(handle, name) : nullptr;
}

} // namespace sys
