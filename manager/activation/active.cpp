// SPDX-License-Identifier: MIT
// What is active, and what an update of it is to lead to.
#include "manager/activation/activation.h"
#include "manager/library/error.h"

#include <algorithm>
#include <map>
#include <unistd.h>
#include <utility>

namespace manager {

namespace {

// Leaves it the files that are there, as new as `wanted` has them.
void limitTo(const std::vector<SetFile>& current,
             const std::map<std::string, std::string>& successors, SetRecord& wanted) {
    std::vector<SetFile> files;
    const FilesByName newer(wanted);
    for (const SetFile& file : current) {
        if (file.leaving) {
            continue;
        }
        const auto successor = successors.find(file.name);
        const bool isSucceeded = successor != successors.end();
        const SetFile* version = newer.find(isSucceeded ? successor->second : file.name);
        if (!isSucceeded || version == nullptr) {
            files.push_back(version == nullptr ? file : *version);
            continue;
        }
        auto known = std::find(files.begin(), files.end(), *version); // of another, too
        if (known == files.end()) {
            known = files.insert(files.end(), *version);
        }
        known->predecessors.push_back(file.name);
    }
    wanted.files = std::move(files);
}

} // namespace

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

bool Activation::limitToActive(const ContainerFonts& container, std::optional<Mappers>& mappers,
                               SetRecord& record, ActivationOutcome& outcome) const {
    const auto current = recordInPlace(container.id);
    if (!current) {
        return false;
    }
    if (!container.successors.empty()) {
        if (!mappers) {
            mappers = mappersOfFilesBelow(folders_.root());
        }
        // With them as reasons, their end is told.
        record.reasons = usesIn(folder(container.id), *mappers);
        outcome.postponed = !record.reasons.empty();
    }
    if (outcome.postponed) {
        outcome.problems.push_back(
            inUseText(container.id, record.reasons, "files of new names take their place"));
    }
    const std::map<std::string, std::string> none;
    limitTo(current->files, outcome.postponed ? none : container.successors, record);
    return true;
}

std::vector<ActiveContainer>
Activation::active(const std::function<void(const std::string&)>& report) const {
    std::vector<ActiveContainer> result;
    for (const ContainerId id : sets()) {
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
