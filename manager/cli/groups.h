// SPDX-License-Identifier: MIT
// Collections and tags: named groups of containers, or of single files of them, that a person made,
// in a text file of their own. A member is known by name and place, since a new index may give
// numbers anew.
#pragma once

#include "manager/library/library.h"

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace manager {

enum class GroupKind { Collection, Tag };

/// "collection", "tag".
[[nodiscard]] std::string_view wordOf(GroupKind kind);

struct GroupMember {
    ContainerId id{}; ///< when it became one
    std::string name; ///< as in Container, and so the rest
    std::string folder;
    std::string file;
    std::optional<FontFormat> format;
    std::set<std::string> files = {}; ///< names of those that are meant; empty: all
};

struct Group {
    GroupKind kind{};
    std::string name;
    std::vector<GroupMember> members; ///< in the order in which they came
};

using Groups = std::vector<Group>;

/// All of them, by kind and name. Throws Error (file, line).
[[nodiscard]] Groups readGroups(const Places& places);

/// Has `change` work on the groups and puts the outcome in place at one stroke; nobody else changes
/// them meanwhile. What `change` throws goes through, and then nothing is changed. Throws Error.
void changeGroups(const Places& places, const std::function<void(Groups&)>& change);

/// nullptr: there is none of this name.
[[nodiscard]] Group* findGroup(Groups& groups, GroupKind kind, std::string_view name);

/// The group that "collection:NAME" or "tag:NAME" means; nullopt when the text is neither.
struct GroupTitle {
    GroupKind kind{};
    std::string name;

    [[nodiscard]] std::string text() const { return std::string(wordOf(kind)) + ":" + name; }
};
[[nodiscard]] std::optional<GroupTitle> toGroupTitle(std::string_view text);
/// The group of this title. Throws Error when there is none.
[[nodiscard]] Group& existingGroup(Groups& groups, const GroupTitle& title);

/// The member as it was when it became one.
[[nodiscard]] Container containerOf(const GroupMember& member);
/// The member's number in this index. nullopt: the index does not know it.
[[nodiscard]] std::optional<ContainerId> currentNumber(Library& library, const GroupMember& member);
/// The groups with the numbers that their members have in this index; 0 of those that it does not
/// know.
[[nodiscard]] Groups currentGroups(Library& library, Groups groups);

} // namespace manager
