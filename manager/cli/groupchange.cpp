// SPDX-License-Identifier: MIT
#include "manager/cli/groupchange.h"

#include "faces/namekey.h"
#include "manager/library/error.h"
#include "manager/view/texts.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

namespace manager {

namespace {

void rename(Groups& groups, Group& group, const std::string& name) {
    if (findGroup(groups, group.kind, name) != nullptr) {
        throw Error(name + ": " +
                    (group.kind == GroupKind::Tag
                         ? translated("there is already a tag of this name")
                         : translated("there is already a collection of this name")));
    }
    group.name = name;
}

std::set<MemberPlace> placesOf(const std::vector<GroupMember>& members) {
    std::set<MemberPlace> places;
    for (const GroupMember& member : members) {
        places.insert(placeOf(member));
    }
    return places;
}

void changeMembers(Group& group, const GroupChange& change, GroupChange& back) {
    std::set<MemberPlace> known = placesOf(group.members);
    for (const GroupMember& member : change.added) {
        if (known.insert(placeOf(member)).second) {
            group.members.push_back(member);
            back.removed.push_back(member);
        }
    }
    if (change.isEmptied) {
        back.added = std::exchange(group.members, {});
        return;
    }
    const std::set<MemberPlace> leaving = placesOf(change.removed);
    const auto rest = std::stable_partition(
        group.members.begin(), group.members.end(),
        [&](const GroupMember& member) { return !leaving.contains(placeOf(member)); });
    std::move(rest, group.members.end(), std::back_inserter(back.added));
    group.members.erase(rest, group.members.end());
}

} // namespace

GroupMember memberOf(const Container& container) {
    return {container.id, container.name, container.folder, container.file, container.format};
}

MemberPlace placeOf(const GroupMember& member) {
    return {faces::nameKey(member.name), member.folder, member.file, member.format};
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
