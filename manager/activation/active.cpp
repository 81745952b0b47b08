// SPDX-License-Identifier: MIT
// What is active.
#include "manager/activation/activation.h"
#include "manager/library/error.h"

#include <unistd.h>
#include <utility>

namespace manager {

std::optional<SetRecord> Activation::recordInPlace(ContainerId id) const {
    try {
        auto record = readSetRecord(folders_.folder(id));
        if (record) {
            record->id = id; // whatever stands there
        }
        return record;
    } catch (const Error&) {
        return std::nullopt; // told when something is done with the set
    }
}

std::vector<SetFile> Activation::filesInPlace(ContainerId id) const {
    auto record = recordInPlace(id);
    return record ? std::move(record->files) : std::vector<SetFile>();
}

bool Activation::isActive(const Container& container) const {
    const auto record = recordInPlace(container.id);
    return record && isSetOf(*record, container.name, container.folder);
}

std::set<std::string> Activation::activeFiles(const ContainerFonts& container) const {
    std::set<std::string> names;
    const auto record = recordInPlace(container.id);
    const SetRecord wanted = recordOf(container);
    if (!record || !isSetOf(*record, wanted.name, libraryFolder(wanted))) {
        return names;
    }
    const FilesByName inPlace(*record);
    const std::string folder = folders_.folder(container.id) + "/";
    for (const SetFile& file : wanted.files) {
        const SetFile* known = inPlace.find(file.name);
        if (known != nullptr && *known == file && access((folder + file.name).c_str(), F_OK) == 0) {
            names.insert(file.name);
        }
    }
    return names;
}

std::vector<ActiveContainer>
Activation::active(const std::function<void(const std::string&)>& report) const {
    std::vector<ActiveContainer> result;
    for (const ContainerId id : setsIn(folders_.root())) {
        try {
            if (auto record = readSetRecord(folders_.folder(id))) {
                removeEnded(record->reasons);
                result.push_back({id, std::move(record->name), record->files.size(),
                                  std::move(record->reasons)});
            }
        } catch (const Error& error) {
            report(error.what());
        }
    }
    return result;
}

} // namespace manager
