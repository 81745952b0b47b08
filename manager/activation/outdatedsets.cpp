// SPDX-License-Identifier: MIT
// Compares the records of sets with the index.
#include "manager/activation/outdatedsets.h"

#include "manager/activation/successors.h"
#include "manager/library/error.h"

#include <algorithm>
#include <utility>

namespace manager {

OutdatedSets::OutdatedSets(std::unique_ptr<Library> library)
    : library_(std::move(library)), ids_(setsIn(library_->places().fonts())) {}

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
        auto successors =
            successorsIn(*set, activation.folder(id), files, *library_,
                         [&]() -> const DesktopFaces& { return activation.desktopNow(); });
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
