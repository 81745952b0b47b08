// SPDX-License-Identifier: MIT
#include "manager/cli/groupchange.h"

#include "faces/namekey.h"
#include "manager/library/error.h"
#include "manager/view/texts.h"

#include <algorithm>
#include <map>
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

/// Each place once, with the files of all that are of it, in the order in which they come.
std::vector<GroupMember> merged(const std::vector<GroupMember>& members) {
    std::vector<GroupMember> result;
    std::map<MemberPlace, std::size_t> known;
    for (const GroupMember& member : members) {
        const auto [place, isNew] = known.emplace(placeOf(member), result.size());
        if (isNew) {
            result.push_back(member);
            continue;
        }
        std::set<std::string>& files = result[place->second].files;
        if (member.files.empty()) {
            files.clear();
        } else if (!files.empty()) {
            files.insert(member.files.begin(), member.files.end());
        }
    }
    return result;
}

/// Takes `leaving`'s files from `files`, and gives those that went.
std::set<std::string> takeFrom(std::set<std::string>& files, const std::set<std::string>& leaving) {
    std::set<std::string> gone;
    for (const std::string& name : leaving) {
        if (const auto node = files.extract(name)) {
            gone.insert(name);
        }
    }
    return gone;
}

/// Whether anything is left of the member.
bool takeFiles(GroupMember& member, const std::set<std::string>& leaving,
               const FilesOfMember& filesOf, GroupChange& back) {
    const bool isWhole = member.files.empty();
    GroupMember before = member;
    if (isWhole && filesOf) {
        member.files = filesOf(member);
    }
    std::set<std::string> gone = takeFrom(member.files, leaving);
    if (gone.empty()) {
        member.files = std::move(before.files);
        return true;
    }
    if (!isWhole) {
        before.files = std::move(gone);
    }
    back.added.push_back(std::move(before));
    return !member.files.empty();
}

void remove(Group& group, const std::vector<GroupMember>& members, const FilesOfMember& filesOf,
            GroupChange& back) {
    std::map<MemberPlace, std::set<std::string>> leaving;
    for (GroupMember& member : merged(members)) {
        leaving.emplace(placeOf(member), std::move(member.files));
    }
    std::vector<GroupMember> rest;
    for (GroupMember& member : group.members) {
        const auto found = leaving.find(placeOf(member));
        if (found != leaving.end() && found->second.empty()) {
            back.added.push_back(std::move(member));
        } else if (found == leaving.end() || takeFiles(member, found->second, filesOf, back)) {
            rest.push_back(std::move(member));
        }
    }
    group.members = std::move(rest);
}

void add(Group& group, const std::vector<GroupMember>& coming, GroupChange& back) {
    std::map<MemberPlace, std::size_t> known;
    for (std::size_t i = 0; i < group.members.size(); ++i) {
        known.emplace(placeOf(group.members[i]), i);
    }
    for (const GroupMember& member : coming) {
        const auto [place, isNew] = known.emplace(placeOf(member), group.members.size());
        if (isNew) {
            group.members.push_back(member);
            back.removed.push_back(member);
            continue;
        }
        GroupMember& there = group.members[place->second];
        there.id = member.id;
        if (there.files.empty()) {
            continue; // all of it is there
        }
        GroupMember came = member;
        if (member.files.empty()) {
            back.added.push_back(there);
            there.files.clear();
        } else {
            static_cast<void>(takeFrom(came.files, there.files));
            if (came.files.empty()) {
                continue;
            }
            there.files.insert(came.files.begin(), came.files.end());
        }
        back.removed.push_back(std::move(came));
    }
}

} // namespace

GroupMember memberOf(const Container& container) {
    return {container.id, container.name, container.folder, container.file, container.format};
}

MemberPlace placeOf(const GroupMember& member) {
    return {faces::nameKey(member.name), member.folder, member.file, member.format};
}

GroupChange changeGroup(const Places& places, const GroupChange& change,
                        const FilesOfMember& filesOf) {
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
        if (change.isEmptied) {
            back.added = std::exchange(group->members, {});
        } else {
            remove(*group, change.removed, filesOf, back);
            add(*group, merged(change.added), back);
        }
        if (change.isUnmade && group->members.empty()) {
            groups.erase(groups.begin() + (group - groups.data()));
            back.isMade = true;
        }
    });
    return back;
}

} // namespace manager
