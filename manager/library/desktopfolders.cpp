// SPDX-License-Identifier: MIT
// Reads fontconfig's configuration, and no font.
#include "manager/library/desktopfolders.h"

#include <filesystem>
#include <fontconfig/fontconfig.h>
#include <memory>
#include <system_error>

namespace manager {

std::vector<std::string> desktopFolders() {
    const std::unique_ptr<FcConfig, void (*)(FcConfig*)> config(FcInitLoadConfig(),
                                                                FcConfigDestroy);
    std::vector<std::string> folders;
    if (!config) {
        return folders;
    }
    const std::unique_ptr<FcStrList, void (*)(FcStrList*)> list(FcConfigGetFontDirs(config.get()),
                                                                FcStrListDone);
    while (const FcChar8* folder = list ? FcStrListNext(list.get()) : nullptr) {
        std::error_code code;
        const auto path = std::filesystem::canonical(reinterpret_cast<const char*>(folder), code);
        if (!code) {
            folders.push_back(path.string());
        }
    }
    return folders;
}

} // namespace manager
