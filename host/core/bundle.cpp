// SPDX-License-Identifier: MIT
// Finding a bundle's parts, and mapping its module through the system's loader.
#include "host/core/bundle.h"

#include <dlfcn.h>
#include <sys/utsname.h>

#include <system_error>
#include <utility>
#include <vector>

namespace host {

namespace fs = std::filesystem;

namespace {

/// The folder for this system's modules is named as the system calls itself.
std::string systemName() {
    utsname system{};
    return uname(&system) == 0 ? system.sysname : "Linux";
}

std::string lastLoaderMessage() {
    const char* const message = dlerror(); // NOLINT(concurrency-mt-unsafe): main thread
    return message != nullptr ? message : "unknown reason";
}

} // namespace

Bundle Bundle::open(const fs::path& folder) {
    std::error_code error;
    Bundle bundle;
    bundle.folder = fs::absolute(folder, error).lexically_normal();
    if (!bundle.folder.has_filename()) {
        bundle.folder = bundle.folder.parent_path(); // written with a slash at its end
    }
    if (!fs::is_directory(bundle.folder, error)) {
        throw PluginError(folder.string() + ": not a plug-in bundle: no such folder");
    }
    const fs::path code = bundle.folder / "Contents" / systemName();
    std::vector<fs::path> modules;
    fs::directory_iterator entries(code, error);
    for (; !error && entries != fs::directory_iterator(); entries.increment(error)) {
        if (entries->path().extension() == ".so") {
            modules.push_back(entries->path());
        }
    }
    if (error) {
        throw PluginError(code.string() + ": " + error.message());
    }
    if (modules.size() != 1) {
        throw PluginError(code.string() + ": holds " + std::to_string(modules.size()) +
                          " modules (*.so) instead of one");
    }
    bundle.module = modules.front();
    bundle.resources = bundle.folder / "Contents" / "Resources";
    return bundle;
}

void Module::Close::operator()(void* library) const noexcept {
    dlclose(library);
}

Module::Module(fs::path file) : file_(std::move(file)) {
    library_.reset(dlopen(file_.c_str(), RTLD_NOW | RTLD_LOCAL));
    if (library_ == nullptr) {
        throw PluginError(file_.string() + ": cannot be loaded: " + lastLoaderMessage());
    }
    entry_ = reinterpret_cast<SPEntryProc>(dlsym(library_.get(), kSPEntryName));
    if (entry_ == nullptr) {
        throw PluginError(file_.string() + ": has no entry point " + kSPEntryName);
    }
}

bool Module::unmap() noexcept {
    entry_ = nullptr;
    library_.reset();
    return !isMapped(file_);
}

bool Module::isMapped(const fs::path& file) noexcept {
    const std::unique_ptr<void, Close> library(dlopen(file.c_str(), RTLD_NOLOAD | RTLD_LAZY));
    return library != nullptr;
}

} // namespace host
