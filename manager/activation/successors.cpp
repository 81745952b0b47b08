// SPDX-License-Identifier: MIT
// Compares the faces of files that are active with those of the library's.
#include "manager/activation/successors.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

namespace manager {

std::map<std::string, std::string> successorsIn(const SetRecord& set, const std::string& folder,
                                                std::span<const LibraryFile> files,
                                                Library& library, const DesktopReader& desktop) {
    std::set<std::string> names;
    std::transform(files.begin(), files.end(), std::inserter(names, names.end()),
                   [](const LibraryFile& file) { return nameOf(file.path); });
    std::vector<std::string> gone;
    for (const SetFile& file : set.files) {
        if (!file.leaving && !names.contains(file.name)) {
            gone.push_back(file.name);
        }
    }
    std::map<std::string, std::string> successors;
    if (gone.empty() || names.empty()) {
        return successors;
    }
    std::map<std::string, std::string> holders; // by face
    for (const FaceDetails& face : library.faces(set.id)) {
        if (names.contains(face.match.fileName)) {
            holders.emplace(face.match.postScriptName, face.match.fileName);
        }
    }
    const DesktopFaces& shown = desktop();
    for (const std::string& name : gone) {
        const std::set<std::string> faces = shown.namesIn(joinPath(folder, name));
        if (!faces.empty() && std::all_of(faces.begin(), faces.end(), [&](const auto& face) {
                return holders.contains(face);
            })) {
            successors[name] = holders.at(*faces.begin());
        }
    }
    return successors;
}

ContainerFonts wholeOf(const Container& container, std::vector<Reason> reasons, Library& library,
                       const Activation& activation, const DesktopReader& desktop) {
    ContainerFonts whole{container.id, container.name, library.files(container.id),
                         std::move(reasons)};
    if (const auto set = activation.setOf(container)) {
        whole.successors =
            successorsIn(*set, activation.folder(set->id), whole.files, library, desktop);
    }
    return whole;
}

} // namespace manager
