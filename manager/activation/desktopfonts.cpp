// SPDX-License-Identifier: MIT
// Reload, and what came of it.
#include "manager/activation/desktopfonts.h"

#include <fontconfig/fontconfig.h>
#include <memory>
#include <string_view>

namespace manager {

namespace {

struct StringListDeleter {
    void operator()(FcStrList* list) const { FcStrListDone(list); }
};

} // namespace

void reloadDesktopFonts() {
    FcInitReinitialize();
}

bool isFontFolder(const std::string& folder) {
    const std::unique_ptr<FcStrList, StringListDeleter> folders(FcConfigGetFontDirs(nullptr));
    while (const FcChar8* name = folders ? FcStrListNext(folders.get()) : nullptr) {
        if (folder == reinterpret_cast<const char*>(name)) {
            return true;
        }
    }
    return false;
}

std::set<std::string> visibleFontFiles(const std::string& root) {
    std::set<std::string> paths;
    const FcFontSet* all = FcConfigGetFonts(nullptr, FcSetSystem);
    for (int i = 0; all != nullptr && i < all->nfont; ++i) {
        FcChar8* file = nullptr;
        if (FcPatternGetString(all->fonts[i], FC_FILE, 0, &file) == FcResultMatch) {
            const std::string_view path = reinterpret_cast<const char*>(file);
            if (path.starts_with(root)) {
                paths.emplace(path);
            }
        }
    }
    return paths;
}

} // namespace manager
