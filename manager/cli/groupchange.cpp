// SPDX-License-Identifier: MIT
#include "manager/cli/groupchange.h"

#include "faces/namekey.h"
#include "manager/library/error.h"

#include <algorithm>
#include <utility>

namespace manager {

namespace {

auto findMember(std::vector<GroupMember>& members, const GroupMember& member) {
    return std::find_if(members.begin(), members.end(),
                        [&](const GroupMember& other) { return isSamePlace(member, other); });
}

void rename(Groups& groups, Group& group, const std::string& name) {
    if (findGroup(groups, group.kind, name) != nullptr) {
        throw Error(name + ": there is already a " + std::string(wordOf(group.kind)) +
                    " of this name");
    }
    group.name = name;
}

void changeMembers(Group& group, const GroupChange& change, GroupChange& back) {
    for (const GroupMember& member : change.added) {
        if (findMember(group.members, member) == group.members.end()) {
            group.members.push_back(member);
            back.removed.push_back(member);
        }
    }
    if (change.isEmptied) {
        back.added = std::exchange(group.members, {});
        return;
    }
    for (const GroupMember& member : change.removed) {
        const auto place = findMember(group.members, member);
        if (place != group.members.end()) {
            back.added.push_back(*place);
            group.members.erase(place);
        }
    }
}

} // namespace

GroupMember memberOf(const Container& container) {
    return {container.id, container.name, container.folder, container.file, container.format};
}

bool isSamePlace(const GroupMember& a, const GroupMember& b) {
    return faces::nameKey(a.name) == faces::nameKey(b.name) && a.folder == b.folder &&
           a.file == b.file && a.format == b.format;
}

GroupChange changeGroup(const Places& places, const GroupChange& change) {
    GroupChange back;
    changeGroups(places, [&](Groups& groups) {
        back = {change.title};
        Group* group = findGroup(groups, change.title.kind, change.title.name);
        if (group == nullptr && change.isMade) {
            group = &groups.emplace_back(Group{change.title.kind, change.title.name, {}});
            back.isUnmade = true;
        } else {
            group = &existingGroup(groups, change.title);
        }
        if (!change.newName.empty() && change.newName != group->name) {
            back.newName = std::exchange(back.title.name, change.newName);
            rename(groups, *group, change.newName);
        }
        changeMembers(*group, change, back);
        if (change.isUnmade && group->members.empty()) {
            groups.erase(groups.begin() + (group - groups.data()));
            back.isMade = true;
        }
    });
    return back;
}

} // namespace manager
