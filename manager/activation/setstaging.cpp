// SPDX-License-Identifier: MIT
// What lies in the staging folder, by its names.
#include "manager/activation/setstaging.h"

#include "manager/activation/filesteps.h"
#include "manager/library/error.h"

#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <unistd.h>

namespace manager {

namespace {

constexpr std::string_view markBeginning = "unsettled.";

std::string markPath(const std::string& folder, pid_t process) {
    return folder + "/" + std::string(markBeginning) + std::to_string(process);
}

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code code;
    for (std::filesystem::directory_iterator entry(folder, code), end; !code && entry != end;
         entry.increment(code)) {
        names.push_back(entry->path().filename().string());
    }
    if (code && code != std::errc::no_such_file_or_directory &&
        code != std::errc::not_a_directory) {
        throw systemError(folder, "cannot be read", code.value());
    }
    return names;
}

} // namespace

void SetStaging::makeFolder(ContainerId id) const {
    removeTree(folder(id));
    makeFolders(folder(id));
}

void SetStaging::replaceRecord(const std::string& place, const SetRecord& record) const {
    replaceFile(place + "/" + setRecordName, recordText(record), folder(record.id) + ".record");
}

std::vector<ContainerId> SetStaging::takenRecords() const {
    std::vector<ContainerId> ids;
    for (std::string_view name : namesIn(path_)) {
        if (name.ends_with(takenEnding)) {
            name.remove_suffix(std::string_view(takenEnding).size());
            if (const auto id = toContainerId(name)) {
                ids.push_back(*id);
            }
        }
    }
    return ids;
}

std::string SetStaging::asideFolder(ContainerId id) const {
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    return folder(id) + "." + std::to_string(getpid()) + "." + std::to_string(now) + asideEnding;
}

std::vector<std::string> SetStaging::asideFolders() const {
    std::vector<std::string> folders;
    for (const std::string& name : namesIn(path_)) {
        if (name.ends_with(asideEnding)) {
            folders.push_back(path_ + "/" + name);
        }
    }
    return folders;
}

void SetStaging::markUnsettled() const noexcept {
    const sys::Descriptor mark(
        open(markPath(path_, getpid()).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
}

void SetStaging::unmarkUnsettled(pid_t process) const noexcept {
    unlink(markPath(path_, process).c_str());
}

bool SetStaging::clear() const {
    bool unsettled = false;
    for (const std::string& name : namesIn(path_)) {
        unsettled = unsettled || name.starts_with(markBeginning);
        if (!name.ends_with(takenEnding) && !name.ends_with(asideEnding)) {
            removeTree(path_ + "/" + name);
        }
    }
    return unsettled;
}

} // namespace manager
