// SPDX-License-Identifier: MIT
// What is active, and what an update of it is to lead to.
#include "manager/activation/activation.h"
#include "manager/activation/filesteps.h"
#include "manager/library/error.h"

#include <algorithm>
#include <set>
#include <string>
#include <unistd.h>
#include <unordered_map>
#include <utility>

namespace manager {

namespace {

bool isGiven(const ContainerFonts& container, const SetFile& file) {
    return !container.only || container.only->contains(file.name);
}

/// What a set is to hold: files of those that it has, and of those that are wanted.
class Joined {
public:
    Joined(const SetRecord& current, const ContainerFonts& container, const SetRecord& wanted)
        : current_(current), container_(container), wanted_(wanted), byName_(wanted) {}

    /// Whether a file would go, or another version take its place.
    [[nodiscard]] bool replacesAny() const {
        return std::any_of(current_.files.begin(), current_.files.end(),
                           [this](const SetFile& file) {
                               const SetFile* const next = nextOf(file);
                               return !file.leaving && next != nullptr && *next != file;
                           });
    }
    /// Whether it is to have less.
    [[nodiscard]] bool losesAny() const {
        return std::any_of(current_.files.begin(), current_.files.end(),
                           [this](const SetFile& file) { return isLost(file); });
    }
    /// With all that is there as it is, when `keepsAll`.
    std::vector<SetFile> files(bool keepsAll) {
        std::set<std::string> waiting; // for their place
        for (const SetFile& file : current_.files) {
            if (file.leaving || isLost(file)) {
                continue;
            }
            const SetFile* const next = nextOf(file);
            SetFile& added = add(next == nullptr || keepsAll ? file : *next);
            if (keepsAll && next != nullptr) {
                waiting.insert(next->name);
            } else if (added.name != file.name) {
                added.predecessors.push_back(file.name);
            }
        }
        const bool isGivenMore = !container_.onlyIfActive && !container_.reasonsOnly;
        for (const SetFile& file : wanted_.files) {
            if (isGivenMore && isGiven(container_, file) && !waiting.contains(file.name)) {
                add(file);
            }
        }
        return std::move(files_);
    }

private:
    [[nodiscard]] bool isLost(const SetFile& file) const {
        return container_.without.contains(file.name);
    }
    /// nullptr: it stays.
    [[nodiscard]] const SetFile* nextOf(const SetFile& file) const {
        if (container_.reasonsOnly) {
            return nullptr;
        }
        const auto successor = container_.successors.find(file.name);
        return byName_.find(successor == container_.successors.end() ? file.name
                                                                     : successor->second);
    }
    // Each name once.
    SetFile& add(const SetFile& file) {
        const auto [position, isNew] = positions_.try_emplace(file.name, files_.size());
        if (isNew) {
            files_.push_back(file);
        }
        return files_[position->second];
    }

    const SetRecord& current_;
    const ContainerFonts& container_;
    const SetRecord& wanted_;
    FilesByName byName_;
    std::vector<SetFile> files_;
    std::unordered_map<std::string, std::size_t> positions_;
};

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

bool Activation::hasSet(ContainerId id) const {
    return exists(folders_.folder(id) + "/" + setRecordName);
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

std::optional<ContainerId> Activation::setWith(const std::string& file) const {
    const std::string place = folderOf(file);
    const auto id = toContainerId(nameOf(place));
    return id && folders_.folder(*id) == place ? id : std::nullopt;
}

bool Activation::holds(const SetRecord& set, const LibraryFile& file) const {
    const SetFile wanted{nameOf(file.path), file.path, file.stamp, false};
    return std::find(set.files.begin(), set.files.end(), wanted) != set.files.end() &&
           access((folders_.folder(set.id) + "/" + wanted.name).c_str(), F_OK) == 0;
}

bool Activation::joinWithActive(const ContainerFonts& container, std::optional<Mappers>& mappers,
                                SetRecord& record, ActivationOutcome& outcome) const {
    const auto current = recordInPlace(container.id);
    if (!current) {
        std::erase_if(record.files, [&](const SetFile& file) { return !isGiven(container, file); });
        return !container.onlyIfActive;
    }
    if (record.name.empty()) { // asked for by its number alone
        record.name = current->name;
    } else if (!isSetOf(*current, record.name, libraryFolder(record))) {
        return true; // that of another container: it is told
    }
    Joined joined(*current, container, record);
    const bool losesAny = joined.losesAny();
    if (losesAny || joined.replacesAny()) {
        if (!mappers) {
            mappers = mappersOfFilesBelow(folders_.root());
        }
        // With them as reasons, their end is told.
        const std::vector<Reason> uses = usesIn(folder(container.id), *mappers);
        if (losesAny && !uses.empty()) {
            outcome.problems.push_back(
                inUseText(container.id, uses, "single files can be taken away"));
            return false;
        }
        record.reasons.insert(record.reasons.end(), uses.begin(), uses.end());
        outcome.postponed = !uses.empty();
        if (outcome.postponed) {
            outcome.problems.push_back(
                inUseText(container.id, uses, "newer files take their place"));
        }
    }
    record.files = joined.files(outcome.postponed);
    return true;
}

std::vector<ActiveContainer>
Activation::active(const std::function<void(const std::string&)>& report) const {
    std::vector<ActiveContainer> result;
    for (const ContainerId id : sets()) {
        try {
            if (auto record = readSetRecord(folders_.folder(id))) {
                removeEnded(record->reasons);
                ActiveContainer& container = result.emplace_back(
                    ActiveContainer{id, std::move(record->name), {}, std::move(record->reasons)});
                for (SetFile& file : record->files) {
                    container.files.push_back(std::move(file.name));
                }
                std::sort(container.files.begin(), container.files.end());
            }
        } catch (const Error& error) {
            report(error.what());
        }
    }
    return result;
}

} // namespace manager
