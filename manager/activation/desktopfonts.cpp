// SPDX-License-Identifier: MIT
// Reload, and what a folder's cache holds.
#include "manager/activation/desktopfonts.h"

#include "manager/library/places.h"

#include <fontconfig/fontconfig.h>
#include <memory>

namespace manager {

namespace {

struct StringListDeleter {
    void operator()(FcStrList* list) const { FcStrListDone(list); }
};
struct CacheDeleter {
    void operator()(FcCache* cache) const { FcDirCacheUnload(cache); }
};
struct FontSetDeleter {
    void operator()(FcFontSet* set) const { FcFontSetDestroy(set); }
};

bool isFontFolder(const std::string& folder) {
    const std::unique_ptr<FcStrList, StringListDeleter> folders(FcConfigGetFontDirs(nullptr));
    while (const FcChar8* name = folders ? FcStrListNext(folders.get()) : nullptr) {
        if (folder == reinterpret_cast<const char*>(name)) {
            return true;
        }
    }
    return false;
}

} // namespace

void reloadDesktopFonts() {
    FcInitReinitialize();
}

std::set<std::string> visibleFontFiles(const std::string& folder) {
    std::set<std::string> names;
    if (!isFontFolder(folder)) {
        return names;
    }
    const std::unique_ptr<FcCache, CacheDeleter> cache(
        FcDirCacheRead(reinterpret_cast<const FcChar8*>(folder.c_str()), FcFalse, nullptr));
    if (!cache) {
        return names;
    }
    const std::unique_ptr<FcFontSet, FontSetDeleter> set(FcCacheCopySet(cache.get()));
    for (int i = 0; set && i < set->nfont; ++i) {
        FcChar8* file = nullptr;
        if (FcPatternGetString(set->fonts[i], FC_FILE, 0, &file) == FcResultMatch) {
            names.insert(nameOf(reinterpret_cast<const char*>(file)));
        }
    }
    return names;
}

} // namespace manager
