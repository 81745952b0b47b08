// SPDX-License-Identifier: MIT
// The commands `collection` and `tag`.
#pragma once

#include "manager/cli/groups.h"

#include <string>
#include <vector>

namespace manager {

/// Each returns an ExitStatus and throws Error. Nothing becomes active or inactive by them.

/// What is put into a group.
struct GroupSources {
    std::vector<std::string> names;    ///< of containers
    std::vector<std::string> drawings; ///< files: what they use
};
/// Puts the containers into the group, which is made if need be.
int addToGroup(const Places& places, const GroupTitle& title, const GroupSources& sources,
               bool json);
/// Takes the containers out of the group; with no names the group itself goes.
int removeFromGroup(const Places& places, const GroupTitle& title,
                    const std::vector<std::string>& names, bool json);
int renameGroup(const Places& places, const GroupTitle& title, const std::string& name, bool json);
/// Lists the groups of this kind; with a name the containers of that one.
int listGroups(const Places& places, const GroupTitle& title, bool json);

} // namespace manager
