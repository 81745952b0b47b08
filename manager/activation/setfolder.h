// SPDX-License-Identifier: MIT
// One active container on disk: its folder is put in place whole, brought up to date, or taken
// away, in steps after each of which a crash can be mended.
#pragma once

#include "manager/activation/setrecord.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace manager {

/// Told of each step on disk before it is made. Tests end the process there.
using StepObserver = std::function<void(std::string_view step)>;

/// The folder that holds all sets, with a hidden folder in it where sets are prepared: so both are
/// on one file system, and fontconfig passes the hidden one over.
class SetFolders {
public:
    SetFolders(std::string root, StepObserver observer)
        : root_(std::move(root)), observer_(std::move(observer)) {}

    [[nodiscard]] const std::string& root() const { return root_; }
    [[nodiscard]] std::string folder(ContainerId id) const { return root_ + "/" + toText(id); }

    /// What is left to do after begin().
    enum class Progress { unchanged, updated, prepared };

    /// Makes the set hold exactly `wanted.files`, each linked or copied from its source. A set that
    /// is in place is brought up to date; files there that are not the manager's stay. A new one is
    /// prepared aside. Throws Error: a source that is missing or not as stamped, a foreign file or
    /// folder in the way.
    Progress begin(const SetRecord& wanted);
    /// Syncs prepared sets to the disk, many of them in one go. Throws Error.
    void syncPrepared(std::span<const ContainerId> sets) const;
    /// Moves a prepared set into place. Throws Error.
    void place(ContainerId id);
    /// Forgets a prepared set. What cannot be removed now goes with the next preparation.
    void discard(ContainerId id) noexcept;
    /// Syncs what was placed. Throws Error.
    void syncPlaced() const;

    /// Takes the set away. Foreign files stay, and the folder with them; `leftBehind` is set then.
    /// False: there was no such set. Throws Error.
    bool remove(ContainerId id, bool* leftBehind);

    /// Finishes what a crash interrupted in one set; see Activation::recover.
    void recover(ContainerId id, const std::function<void(const std::string&)>& report);
    /// Removes what was being prepared when the process ended.
    void clearStaging();

private:
    void step(std::string_view name) const {
        if (observer_) {
            observer_(name);
        }
    }
    [[nodiscard]] std::string staging(ContainerId id) const {
        return root_ + "/.staging/" + toText(id);
    }
    void stage(const SetFile& file, const std::string& folder) const;
    void prepare(const SetRecord& wanted);
    bool update(const SetRecord& current, const SetRecord& wanted);

    std::string root_;
    StepObserver observer_;
};

} // namespace manager
