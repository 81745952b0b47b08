// SPDX-License-Identifier: MIT
// Making, listing and unmaking collections and tags.
#include "manager/cli/groupops.h"

#include "faces/namekey.h"
#include "manager/cli/announce.h"
#include "manager/cli/arguments.h"
#include "manager/cli/containernames.h"
#include "manager/cli/drawingfaces.h"
#include "manager/cli/groupchange.h"
#include "manager/cli/libraryops.h"
#include "manager/cli/report.h"
#include "manager/cli/tally.h"
#include "manager/library/error.h"

#include <algorithm>
#include <fnmatch.h>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>

namespace manager {

namespace {

using Json = nlohmann::ordered_json;

/// What the names mean.
std::vector<GroupMember> membersOf(const Places& places, const std::vector<std::string>& names,
                                   Tally& tally) {
    const Activation activation(places);
    ContainerNames finder(
        places, activation, [&] { return openScanned(places); }, tally);
    std::vector<GroupMember> members;
    for (const Container& container : finder.find(names)) {
        members.push_back(memberOf(container));
        members.back().files = finder.onlyFiles(container.id).value_or(std::set<std::string>());
    }
    return members;
}

} // namespace

int addToGroup(const Places& places, const GroupTitle& title, const GroupSources& sources,
               bool json) {
    if (title.name.empty()) {
        throw Error("a " + std::string(wordOf(title.kind)) + " needs a name");
    }
    Tally tally(json, "added");
    GroupChange change{.title = title, .isMade = true};
    if (!sources.names.empty()) {
        change.added = membersOf(places, sources.names, tally);
    }
    if (!sources.drawings.empty()) {
        const auto used = containersOfDrawings(places, sources.drawings, tally);
        std::transform(used.begin(), used.end(), std::back_inserter(change.added), memberOf);
    }
    if (change.added.empty()) {
        return tally.finish();
    }
    const GroupChange back = changeGroup(places, change);
    postSetsChanged();
    for (const GroupMember& member : back.removed) {
        const std::string files = member.files.empty() ? "" : " " + commaList(member.files) + " of";
        tally.add(title.text() + ": added" + files, containerOf(member));
    }
    return tally.finish("it was in there already");
}

int removeFromGroup(const Places& places, const GroupTitle& title,
                    const std::vector<std::string>& names, bool json) {
    Tally tally(json, "removed");
    std::unique_ptr<Library> library; // only a number needs it
    if (std::any_of(names.begin(), names.end(),
                    [](const std::string& name) { return toContainerId(name).has_value(); })) {
        library = openScanned(places);
    }
    const auto isMeant = [&](const GroupMember& member, const std::string& name) {
        if (const auto id = toContainerId(name)) {
            return currentNumber(*library, member) == id;
        }
        const std::string key = faces::nameKey(name);
        const std::string own = faces::nameKey(member.name);
        return own == key || fnmatch(key.c_str(), own.c_str(), 0) == 0;
    };
    std::vector<Container> removed;
    changeGroups(places, [&](Groups& groups) {
        Group& group = existingGroup(groups, title);
        if (names.empty()) {
            groups.erase(groups.begin() + (&group - groups.data()));
            return;
        }
        for (const std::string& name : names) {
            const auto rest =
                std::stable_partition(group.members.begin(), group.members.end(),
                                      [&](const GroupMember& m) { return !isMeant(m, name); });
            if (rest == group.members.end()) {
                tally.fail(title.text() + ": " + name + " is not in it");
            }
            std::transform(rest, group.members.end(), std::back_inserter(removed), containerOf);
            group.members.erase(rest, group.members.end());
        }
    });
    postSetsChanged();
    if (names.empty()) {
        tally.add("removed " + title.text(), {{"name", title.name}});
    }
    for (const Container& container : removed) {
        tally.add(title.text() + ": removed", container);
    }
    return tally.finish();
}

int renameGroup(const Places& places, const GroupTitle& title, const std::string& name, bool json) {
    if (name.empty()) {
        throw Error("a " + std::string(wordOf(title.kind)) + " needs a name");
    }
    Tally tally(json, "renamed");
    static_cast<void>(changeGroup(places, {title, name}));
    postSetsChanged();
    tally.add(title.text() + ": called " + name + " now", {{"name", name}});
    return tally.finish();
}

int listGroups(const Places& places, const GroupTitle& title, bool json) {
    Groups groups = readGroups(places);
    if (title.name.empty()) {
        Tally tally(json, title.kind == GroupKind::Collection ? "collections" : "tags");
        for (const Group& group : groups) {
            if (group.kind == title.kind) {
                tally.add(group.name + ": " + counted(group.members.size(), "container"),
                          {{"name", group.name}, {"containers", group.members.size()}});
            }
        }
        return tally.finish(title.kind == GroupKind::Collection ? "there are no collections"
                                                                : "there are no tags");
    }
    Tally tally(json, "containers");
    const Group& group = existingGroup(groups, title);
    const auto library = openScanned(places);
    const Activation activation(places);
    for (const GroupMember& member : group.members) {
        Container container = containerOf(member);
        container.away = true;
        if (const auto id = currentNumber(*library, member)) {
            container.id = *id;
            container = library->container(*id).value_or(container);
        }
        const bool active = activation.isActive(container);
        Json item = toJson(container);
        item["state"] = stateOf(container, active);
        std::string line = lineOf(container, active);
        if (!member.files.empty()) {
            item["files"] = member.files;
            line += ": " + commaList(member.files) + " only";
        }
        tally.add(line, std::move(item));
    }
    return tally.finish("there is nothing in it");
}

} // namespace manager
