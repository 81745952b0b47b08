// SPDX-License-Identifier: MIT
// Compares the records of sets with the index.
#include "manager/activation/outdatedsets.h"

#include "manager/library/error.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

namespace manager {

namespace {

using FaceNames = std::set<std::string>;

bool hasAllOf(const FaceNames& names, const FaceNames& wanted) {
    return std::includes(names.begin(), names.end(), wanted.begin(), wanted.end());
}

} // namespace

OutdatedSets::OutdatedSets(std::unique_ptr<Library> library)
    : library_(std::move(library)), ids_(setsIn(library_->places().fonts())) {}

std::map<std::string, std::string> OutdatedSets::successorsIn(const SetRecord& set,
                                                              const std::vector<LibraryFile>& files,
                                                              Activation& activation) {
    std::set<std::string> added;
    std::transform(files.begin(), files.end(), std::inserter(added, added.end()),
                   [](const LibraryFile& file) { return nameOf(file.path); });
    std::vector<std::string> gone;
    for (const SetFile& file : set.files) {
        if (added.erase(file.name) == 0 && !file.leaving) {
            gone.push_back(file.name);
        }
    }
    std::map<std::string, std::string> successors;
    if (gone.empty() || added.empty()) {
        return successors;
    }
    std::map<std::string, FaceNames> offered;
    for (const FaceDetails& face : library_->faces(set.id)) {
        if (added.contains(face.match.fileName)) {
            offered[face.match.fileName].insert(face.match.postScriptName);
        }
    }
    try {
        activation.refreshDesktop(); // the library has forgotten what was in them
    } catch (const Error&) {
        return successors; // whoever asks what the desktop shows is told
    }
    for (const std::string& name : gone) {
        const FaceNames faces =
            activation.desktop().namesIn(activation.folder(set.id) + "/" + name);
        const auto successor = std::find_if(offered.begin(), offered.end(), [&](const auto& file) {
            return hasAllOf(file.second, faces);
        });
        if (!faces.empty() && successor != offered.end()) {
            successors[name] = successor->first;
        }
    }
    return successors;
}

std::vector<ContainerFonts> OutdatedSets::takeSome(Activation& activation, std::size_t most) {
    const Reading together = library_->reading();
    std::vector<ContainerFonts> outdated;
    for (; most > 0 && !ids_.empty(); --most) {
        const ContainerId id = ids_.back();
        ids_.pop_back();
        const auto container = library_->container(id);
        const auto set =
            container && !container->away ? activation.setOf(*container) : std::nullopt;
        if (!set) {
            continue;
        }
        const FilesByName active(*set);
        std::vector<LibraryFile> files = library_->files(id);
        auto successors = successorsIn(*set, files, activation);
        if (!successors.empty() ||
            std::any_of(files.begin(), files.end(), [&](const LibraryFile& file) {
                const SetFile* copied = active.find(nameOf(file.path));
                return copied != nullptr && copied->stamp != file.stamp;
            })) {
            outdated.push_back(
                {id, container->name, std::move(files), {}, true, std::move(successors)});
        }
    }
    return outdated;
}

} // namespace manager
