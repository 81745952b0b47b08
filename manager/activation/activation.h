// SPDX-License-Identifier: MIT
// Activation of containers: a folder per container where fontconfig looks, then a reload that
// writes the caches for everybody. What is active is what lies there; there is no other record of
// it.
#pragma once

#include "manager/activation/setfolder.h"

#include <functional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace manager {

/// What is to be activated.
struct ContainerFonts {
    ContainerId id{};
    std::string name;
    std::vector<LibraryFile> files;
};

struct ActivationOutcome {
    bool success = false; ///< the desktop sees every file of the container
    bool changed = false; ///< the files that lie there for it are not those of before
    /// Names of files, without their folder, that were put in place and not seen by the desktop.
    /// They were taken away again, so that nothing counts as active that is not.
    std::set<std::string> invisible;
    std::string problem; ///< "PATH: ..." when it failed, or what was left behind
};

struct ActiveContainer {
    ContainerId id{};
    std::string name;
    std::size_t files = 0;
};

/// Used from one thread; several processes take turns by a lock on disk.
class Activation {
public:
    /// Makes the folder that fontconfig watches, so that programs started from now on know it.
    /// Throws Error.
    explicit Activation(const Places& places, StepObserver observer = {});

    /// Whether a font file of a container is active.
    [[nodiscard]] bool isActive(ContainerId id, const std::string& fileName) const;
    [[nodiscard]] bool isActive(ContainerId id) const;
    /// Those on disk, by number. A record that cannot be read is told to `report`.
    [[nodiscard]] std::vector<ActiveContainer>
    active(const std::function<void(const std::string&)>& report) const;

    /// Activates a batch, each container in it once, with one reload for all of it. A file that the
    /// desktop does not see costs only itself. Never throws for one container's fault.
    std::vector<ActivationOutcome> activate(std::span<const ContainerFonts> containers);
    std::vector<ActivationOutcome> deactivate(std::span<const ContainerId> containers);

    /// Mends what a crash left: half-prepared sets go, sets that lack files are completed (or lose
    /// the files that cannot be had), sets that were leaving go. Told to `report`, a line each.
    void recover(const std::function<void(const std::string&)>& report);

    /// Whether settle() is due about a second after the last change.
    [[nodiscard]] bool isUnsettled() const { return unsettled_; }
    /// Marks the folder as changed once more. Programs compare whole seconds, and one that looked
    /// in the second of the change would miss it for good.
    void settle();

private:
    [[nodiscard]] FileLock lock() const;
    [[nodiscard]] std::vector<ContainerId> setsOnDisk() const;
    void putOnDisk(std::span<const SetRecord> records, std::span<ActivationOutcome> outcomes);
    [[nodiscard]] std::vector<SetFile> filesInPlace(ContainerId id) const;
    void takeInvisibleAway(SetRecord record, ActivationOutcome& outcome);

    SetFolders folders_;
    std::vector<std::string> changedFolders_;
    bool unsettled_ = false;
};

} // namespace manager
