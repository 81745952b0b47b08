// SPDX-License-Identifier: MIT
// From names to containers.
#include "manager/cli/containernames.h"

#include "faces/namekey.h"
#include "manager/cli/report.h"
#include "manager/exchange/candidates.h"
#include "manager/library/error.h"
#include "manager/view/texts.h"

#include <algorithm>
#include <filesystem>
#include <fnmatch.h>
#include <set>
#include <string_view>

namespace manager {

namespace {

constexpr std::string_view folderPrefix = "folder:";
constexpr std::string_view filePrefix = "file:";

bool isPattern(std::string_view name) {
    return name.find_first_of("*?[") != std::string_view::npos;
}

// The containers, each with what tells it from the others.
std::string listed(Library& library, std::span<const ContainerId> ids) {
    std::string text;
    for (const ContainerId id : ids) {
        text += (text.empty() ? "" : "; ") + toText(id);
        if (const auto container = library.container(id)) {
            const auto faces = library.faces(id);
            const std::string version = faces.empty() ? "" : faces.front().match.version;
            text += " (" + formatText(*container) +
                    (version.empty() ? "" : ", version " + version) + ", " + container->path() +
                    ")";
        }
    }
    return text;
}

} // namespace

std::string placeInLibrary(Library& library, const std::string& folder) {
    namespace fs = std::filesystem;
    std::string path = fs::absolute(folder).lexically_normal().string();
    if (path.size() > 1 && path.ends_with('/')) {
        path.pop_back();
    }
    std::error_code code;
    const std::string real = fs::canonical(path, code).string();
    // A folder that is reached by a link in the library is known by that.
    return !code && library.counts(path).files == 0 ? real : path;
}

Library& ContainerNames::library() {
    if (!library_) {
        library_ = open_();
    }
    return *library_;
}

const std::vector<ActiveContainer>& ContainerNames::active() {
    if (!active_) {
        active_ = activation_.active(warn);
    }
    return *active_;
}

void ContainerNames::forEach(
    std::span<const std::string> names, NumberFinder numbers,
    const std::function<void(const std::string& name, ContainerId id)>& take) {
    meant_.clear();
    for (const std::string& name : names) {
        partial_.clear();
        try {
            for (const ContainerId id : (this->*numbers)(name)) {
                const auto part = partial_.find(id);
                const auto [known, isNew] = meant_.emplace(id, std::set<std::string>());
                if (part == partial_.end()) {
                    known->second.reset();
                } else if (known->second) {
                    known->second->merge(part->second);
                }
                if (isNew) {
                    take(name, id);
                }
            }
        } catch (const DamagedDatabase&) {
            throw;
        } catch (const Error& error) {
            tally_.fail(error.what());
        }
    }
}

std::optional<std::set<std::string>> ContainerNames::onlyFiles(ContainerId id) const {
    const auto known = meant_.find(id);
    return known == meant_.end() ? std::nullopt : known->second;
}

bool ContainerNames::isAnyPartial() const {
    return std::any_of(meant_.begin(), meant_.end(),
                       [](const auto& container) { return container.second.has_value(); });
}

std::vector<Container> ContainerNames::find(std::span<const std::string> names) {
    std::vector<Container> found;
    forEach(names, &ContainerNames::numbersOf, [&](const std::string& name, ContainerId id) {
        if (auto container = library().container(id)) {
            found.push_back(std::move(*container));
        } else {
            tally_.fail(name + ": container " + toText(id) + " has no fonts now");
        }
    });
    return found;
}

std::vector<ContainerId> ContainerNames::numbersOf(const std::string& name) {
    if (auto set = setOf(name)) {
        return std::move(*set);
    }
    if (const auto id = toContainerId(name)) {
        if (!library().container(*id)) {
            throw Error(filled(translated("container %1"), {name}) + ": " +
                        translated("not in the library"));
        }
        return {*id};
    }
    CommandFont font;
    font.postScriptName = name;
    if (const auto candidates = CandidateFinder(library(), activation_).find(font).exact;
        !candidates.empty()) {
        return {candidates.front().container.id};
    }
    auto found = library().findContainers(name);
    const bool all = found.empty() && isPattern(name);
    if (found.empty()) {
        found = library().findContainersLike(name); // a PostScript name also where it is away
    }
    if (found.empty()) {
        throw Error(name + (all ? ": no PostScript name or family of the library is like this"
                                : ": no container, PostScript name or family of the library"));
    }
    if (found.size() > 1 && !all) {
        throw Error(name +
                    ": in several containers; give the number of one: " + listed(library(), found));
    }
    return found;
}

std::optional<std::vector<ContainerId>> ContainerNames::setOf(const std::string& name) {
    if (const auto title = toGroupTitle(name)) {
        return membersOf(*title);
    }
    if (name.starts_with(folderPrefix)) {
        return containersIn(name.substr(folderPrefix.size()));
    }
    if (name.starts_with(filePrefix)) {
        return containerOfFile(name.substr(filePrefix.size()));
    }
    return std::nullopt;
}

std::vector<ContainerId> ContainerNames::containerOfFile(const std::string& file) {
    namespace fs = std::filesystem;
    fs::path path = fs::absolute(file).lexically_normal();
    auto id = library().containerOfFile(path);
    if (!id) { // the library may know the folder by another path
        std::error_code code;
        path = fs::canonical(path.parent_path(), code) / path.filename();
        id = code ? id : library().containerOfFile(path);
    }
    if (!id) {
        throw Error(file + ": " + translated("not in the library"));
    }
    partial_[*id].insert(path.filename());
    return {*id};
}

std::vector<ContainerId> ContainerNames::containersIn(const std::string& folder) {
    const std::string place = placeInLibrary(library(), folder);
    std::vector<ContainerId> ids;
    for (const Container& container : library().containers()) {
        if (liesUnder(container.folder, place)) {
            ids.push_back(container.id);
        }
    }
    if (ids.empty()) {
        throw Error(place + ": the library has no fonts there");
    }
    return ids;
}

std::vector<ContainerId> ContainerNames::membersOf(const GroupTitle& title) {
    Groups groups = readGroups(places_);
    std::vector<ContainerId> ids;
    for (const GroupMember& member : existingGroup(groups, title).members) {
        if (const auto id = currentNumber(library(), member)) {
            ids.push_back(*id);
            if (!member.files.empty()) {
                partial_[*id].insert(member.files.begin(), member.files.end());
            }
        } else {
            tally_.fail(title.text() + ": " + member.name + " of " + member.folder +
                        " is not in the library");
        }
    }
    return ids;
}

std::vector<ContainerId> ContainerNames::findActive(std::span<const std::string> names) {
    std::vector<ContainerId> found;
    forEach(names, &ContainerNames::activeNumbersOf,
            [&](const std::string& /*name*/, ContainerId id) { found.push_back(id); });
    return found;
}

std::vector<ContainerId> ContainerNames::activeNumbersOf(const std::string& name) {
    if (const auto id = toContainerId(name)) {
        return {*id};
    }
    const auto set = setOf(name);
    const std::string key = faces::nameKey(name);
    std::vector<ContainerId> ids;
    if (!set) {
        // The names on disk come first: they hold when the library has lost the container.
        for (const ActiveContainer& container : active()) {
            const std::string own = faces::nameKey(container.name);
            if (own == key || fnmatch(key.c_str(), own.c_str(), 0) == 0) {
                ids.push_back(container.id);
            }
        }
    }
    if (ids.empty()) {
        // A name without wildcards means itself.
        const auto meant = set ? *set : library().findContainersLike(name);
        for (const ContainerId id : meant) {
            const auto container = library().container(id);
            if (container && activation_.isActive(*container)) {
                ids.push_back(id);
            }
        }
    }
    if (ids.empty() && !set) {
        throw Error(name + ": no active container of this name");
    }
    return ids;
}

} // namespace manager
