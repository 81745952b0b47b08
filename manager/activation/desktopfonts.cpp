// SPDX-License-Identifier: MIT
// Reload, and what came of it.
#include "manager/activation/desktopfonts.h"

#include "faces/fontpattern.h"

#include <functional>
#include <memory>
#include <utility>

namespace manager {

namespace {

struct StringListDeleter {
    void operator()(FcStrList* list) const { FcStrListDone(list); }
};

/// As of the last reload.
void forEachFace(const std::function<void(const FcPattern*)>& visit) {
    const FcFontSet* all = FcConfigGetFonts(nullptr, FcSetSystem);
    for (int i = 0; all != nullptr && i < all->nfont; ++i) {
        visit(all->fonts[i]);
    }
}

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
    forEachFace([&](const FcPattern* face) {
        if (std::string path = faces::textOf(face, FC_FILE, 0); path.starts_with(root)) {
            paths.insert(std::move(path));
        }
    });
    return paths;
}

void DesktopFaces::load() {
    reloadDesktopFonts();
    faces_.emplace();
    forEachFace([this](const FcPattern* face) {
        std::string name = faces::textOf(face, FC_POSTSCRIPT_NAME, 0);
        const auto type = faces::technologyOf(face);
        if (!name.empty() && type) {
            (*faces_)[std::move(name)].push_back({faces::textOf(face, FC_FILE, 0), *type});
        }
    });
}

const std::vector<DesktopFace>& DesktopFaces::find(const std::string& postScriptName) {
    static const std::vector<DesktopFace> none;
    if (!faces_) {
        load();
    }
    const auto found = faces_->find(postScriptName);
    return found == faces_->end() ? none : found->second;
}

} // namespace manager
