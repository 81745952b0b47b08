// SPDX-License-Identifier: MIT
// What is active.
#include "manager/activation/activation.h"
#include "manager/library/error.h"

#include <algorithm>
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

std::optional<SetRecord> Activation::setOf(const Container& container) const {
    auto record = recordInPlace(container.id);
    return record && isSetOf(*record, container.name, container.folder) ? std::move(record)
                                                                        : std::nullopt;
}

bool Activation::holds(const SetRecord& set, const LibraryFile& file) const {
    const SetFile wanted{nameOf(file.path), file.path, file.stamp, false};
    return std::find(set.files.begin(), set.files.end(), wanted) != set.files.end() &&
           access((folders_.folder(set.id) + "/" + wanted.name).c_str(), F_OK) == 0;
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
