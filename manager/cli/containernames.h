// SPDX-License-Identifier: MIT
// What people call containers on the command line: numbers, names of faces and families, patterns
// of names, collections and tags, folders.
#pragma once

#include "manager/activation/activation.h"
#include "manager/cli/groups.h"
#include "manager/cli/tally.h"
#include "manager/library/library.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace manager {

/// The folder by the path under which the library has it.
[[nodiscard]] std::string placeInLibrary(Library& library, const std::string& folder);

/// Opens the library, once it is needed.
using LibraryOpener = std::function<std::unique_ptr<Library>()>;

/// [one-thread] Reads names of one command. A name that means no container, or might mean several,
/// fails in the tally and costs only itself.
class ContainerNames {
public:
    ContainerNames(const Places& places, const Activation& activation, LibraryOpener open,
                   Tally& tally)
        : places_(places), activation_(activation), open_(std::move(open)), tally_(tally) {}

    /// The containers with fonts that the names mean, each once, in the order of the names.
    [[nodiscard]] std::vector<Container> find(std::span<const std::string> names);
    /// The numbers of the active containers that the names mean, each once. A number stands for
    /// itself.
    [[nodiscard]] std::vector<ContainerId> findActive(std::span<const std::string> names);

    /// Of a container that was found: the names of the files that are meant; nullopt: all.
    [[nodiscard]] std::optional<std::set<std::string>> onlyFiles(ContainerId id) const;
    /// Whether there is one of which not all is meant.
    [[nodiscard]] bool isAnyPartial() const;

    [[nodiscard]] Library& library();

private:
    using NumberFinder = std::vector<ContainerId> (ContainerNames::*)(const std::string&);
    /// Has each number that the names mean taken once, and keeps what of it is meant.
    void forEach(std::span<const std::string> names, NumberFinder numbers,
                 const std::function<void(const std::string& name, ContainerId id)>& take);
    [[nodiscard]] std::vector<ContainerId> numbersOf(const std::string& name);
    [[nodiscard]] std::vector<ContainerId> activeNumbersOf(const std::string& name);
    /// Those that a collection, a tag, a folder or a file has; nullopt: the name is of none of
    /// these.
    [[nodiscard]] std::optional<std::vector<ContainerId>> setOf(const std::string& name);
    /// Puts the files of members that are not meant as a whole into `partial_`.
    [[nodiscard]] std::vector<ContainerId> membersOf(const GroupTitle& title);
    [[nodiscard]] std::vector<ContainerId> containersIn(const std::string& folder);
    [[nodiscard]] std::vector<ContainerId> containerOfFile(const std::string& file);
    [[nodiscard]] const std::vector<ActiveContainer>& active();

    Places places_;
    const Activation& activation_;
    LibraryOpener open_;
    Tally& tally_;
    std::unique_ptr<Library> library_;
    std::optional<std::vector<ActiveContainer>> active_;
    std::map<ContainerId, std::set<std::string>> partial_; ///< what the name at hand means
    std::map<ContainerId, std::optional<std::set<std::string>>> meant_; ///< nullopt: all
};

} // namespace manager
