// SPDX-License-Identifier: MIT
// A change of one collection or tag that can be taken back, whatever others do to it meanwhile.
#pragma once

#include "manager/cli/groups.h"

#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace manager {

struct GroupChange {
    GroupTitle title;
    std::string newName = {}; ///< empty: it stays
    std::vector<GroupMember> added = {};
    std::vector<GroupMember> removed = {}; ///< before any is added
    bool isMade = false;                   ///< if it is not there
    bool isUnmade = false;                 ///< if nothing is left in it
    bool isEmptied = false;                ///< all that it has is removed, whatever `removed` says

    /// Of one that changeGroup() gave: nothing has changed.
    [[nodiscard]] bool isEmpty() const {
        return newName.empty() && added.empty() && removed.empty() && !isMade && !isUnmade;
    }
};

/// The names of all files that a member has.
using FilesOfMember = std::function<std::set<std::string>(const GroupMember& member)>;

/// Makes the change and gives the one that takes it back: of what has changed, and nothing else.
/// Single files are taken from a member that is there as a whole only with `filesOf`.
/// Throws Error when there is no such group, or already one of the new name.
[[nodiscard]] GroupChange changeGroup(const Places& places, const GroupChange& change,
                                      const FilesOfMember& filesOf = {});

[[nodiscard]] GroupMember memberOf(const Container& container);
/// What tells a container from others, whatever its number is.
using MemberPlace = std::tuple<std::string, std::string, std::string, std::optional<FontFormat>>;
[[nodiscard]] MemberPlace placeOf(const GroupMember& member);

} // namespace manager
