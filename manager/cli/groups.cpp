// SPDX-License-Identifier: MIT
// Field lines: a header, a line of kind and name for each group, and after it a "container" line of
// number, name, folder, file and format for each member, and the names of the files that are meant
// when these are not all.
#include "manager/cli/groups.h"

#include "manager/library/error.h"
#include "manager/library/fields.h"
#include "manager/view/texts.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <tuple>
#include <unistd.h>
#include <utility>

namespace manager {

namespace {

constexpr std::string_view header = "glyphora-groups 1";
constexpr std::size_t maximumLength = std::size_t{64} << 20U;
/// By their numbers.
constexpr std::array<std::string_view, 4> formats = {"type1", "truetype", "postscript",
                                                     "collection"};
constexpr std::array kinds = {GroupKind::Collection, GroupKind::Tag};

std::string pathOf(const Places& places) {
    return places.own() + "/groups";
}

bool readLine(std::string_view line, Groups& groups) {
    auto fields = splitFields(line);
    if (!fields) {
        return false;
    }
    auto& parts = *fields;
    if (parts[0] == "container") {
        const auto id = parts.size() >= 6 ? toContainerId(parts[1]) : std::nullopt;
        if (!id || groups.empty()) {
            return false;
        }
        const auto* const format = std::find(formats.begin(), formats.end(), parts[5]);
        if (format == formats.end() && !parts[5].empty()) {
            return false;
        }
        groups.back().members.push_back(
            {*id,
             std::move(parts[2]),
             std::move(parts[3]),
             std::move(parts[4]),
             format == formats.end()
                 ? std::nullopt
                 : std::optional(static_cast<FontFormat>(format - formats.begin())),
             {std::make_move_iterator(parts.begin() + 6), std::make_move_iterator(parts.end())}});
        return true;
    }
    const auto* const kind = std::find_if(kinds.begin(), kinds.end(), [&](GroupKind candidate) {
        return wordOf(candidate) == parts[0];
    });
    if (kind == kinds.end() || parts.size() != 2 || parts[1].empty()) {
        return false;
    }
    groups.push_back({*kind, std::move(parts[1]), {}});
    return true;
}

std::string textOf(const Groups& groups) {
    std::string text(header);
    text += '\n';
    for (const Group& group : groups) {
        text += joinFields({wordOf(group.kind), group.name});
        for (const auto& [id, name, folder, file, format, files] : group.members) {
            const std::string number = toText(id);
            std::vector<std::string_view> fields{
                "container", number, name,
                folder,      file,   format ? formats.at(static_cast<std::size_t>(*format)) : ""};
            fields.insert(fields.end(), files.begin(), files.end());
            text += joinFields(std::span<const std::string_view>(fields));
        }
    }
    return text;
}

} // namespace

std::string_view wordOf(GroupKind kind) {
    return kind == GroupKind::Collection ? "collection" : "tag";
}

Groups readGroups(const Places& places) {
    const std::string path = pathOf(places);
    Groups groups;
    if (access(path.c_str(), F_OK) != 0 && errno == ENOENT) {
        return groups;
    }
    const std::string text = readFile(path, maximumLength);
    const auto lines = splitLines(text);
    if (lines.empty() || lines.front() != header) {
        throw Error(path + ": line 1: expected \"" + std::string(header) + "\"");
    }
    for (std::size_t i = 1; i < lines.size(); ++i) {
        if (!readLine(lines[i], groups)) {
            throw Error(path + ": line " + std::to_string(i + 1) +
                        ": not a line of collections and tags");
        }
    }
    return groups;
}

void changeGroups(const Places& places, const std::function<void(Groups&)>& change) {
    makeFolders(places.own());
    const FileLock lock(pathOf(places) + ".lock");
    Groups groups = readGroups(places);
    change(groups);
    std::sort(groups.begin(), groups.end(), [](const Group& a, const Group& b) {
        return std::tie(a.kind, a.name) < std::tie(b.kind, b.name);
    });
    replaceFile(pathOf(places), textOf(groups));
}

Group* findGroup(Groups& groups, GroupKind kind, std::string_view name) {
    const auto found = std::find_if(groups.begin(), groups.end(), [&](const Group& group) {
        return group.kind == kind && group.name == name;
    });
    return found == groups.end() ? nullptr : &*found;
}

Group& existingGroup(Groups& groups, const GroupTitle& title) {
    Group* group = findGroup(groups, title.kind, title.name);
    if (group == nullptr) {
        throw Error(title.name + ": " +
                    (title.kind == GroupKind::Tag
                         ? translated("there is no tag of this name")
                         : translated("there is no collection of this name")));
    }
    return *group;
}

std::optional<GroupTitle> toGroupTitle(std::string_view text) {
    for (const GroupKind kind : kinds) {
        const std::string_view word = wordOf(kind);
        if (text.starts_with(word) && text.substr(word.size()).starts_with(':')) {
            return GroupTitle{kind, std::string(text.substr(word.size() + 1))};
        }
    }
    return std::nullopt;
}

Container containerOf(const GroupMember& member) {
    Container container{member.id, member.name, member.folder, member.file};
    container.format = member.format;
    return container;
}

std::optional<ContainerId> currentNumber(Library& library, const GroupMember& member) {
    return library.findPlace(containerOf(member));
}

Groups currentGroups(Library& library, Groups groups) {
    for (Group& group : groups) {
        for (GroupMember& member : group.members) {
            member.id = currentNumber(library, member).value_or(ContainerId{});
        }
    }
    return groups;
}

} // namespace manager
