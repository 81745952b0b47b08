// SPDX-License-Identifier: MIT
// One active container on disk: its folder is put in place whole, brought up to date, or taken
// away, in steps after each of which a crash can be mended.
#pragma once

#include "manager/activation/setrecord.h"
#include "manager/activation/setstaging.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace manager {

/// [main-thread] Told of each step on disk before it is made. Tests end the process there.
using StepObserver = std::function<void(std::string_view step)>;

/// A file that could not be put in place.
struct LostFile {
    std::string name;    ///< without its folder
    std::string problem; ///< "PATH: ..."
};

/// The folder that holds all sets, with a hidden folder in it where sets are prepared.
class SetFolders {
public:
    SetFolders(std::string root, StepObserver observer)
        : root_(std::move(root)), staging_(root_), observer_(std::move(observer)) {}

    [[nodiscard]] const std::string& root() const { return root_; }
    [[nodiscard]] const SetStaging& staging() const { return staging_; }
    [[nodiscard]] std::string folder(ContainerId id) const { return root_ + "/" + toText(id); }

    /// What is left to do after begin().
    enum class Progress { Unchanged, Updated, Prepared };

    /// Makes the set hold exactly `wanted.files`, each copied from its source, and adds
    /// `wanted.reasons` to those of before that stand. A set that
    /// is in place is brought up to date; files there that are not the manager's stay. A new one is
    /// prepared aside. A file that cannot be had (a source that is missing or not as stamped, a
    /// foreign file in the way) costs only itself: it is added to `lost`, and `wanted` then tells
    /// what the set holds instead: its older copy, or nothing. When all are lost, nothing changes
    /// and `wanted` has no files or those of before. Throws Error: no folder can be had, or another
    /// container's set is in the way.
    /// `ended`: reasons of a set in place that it loses.
    Progress begin(SetRecord& wanted, std::vector<LostFile>& lost,
                   std::span<const Reason> ended = {});
    /// Syncs prepared sets to the disk, many of them in one go. Throws Error.
    void syncPrepared(std::span<const ContainerId> sets) const;
    /// Moves a prepared set into place. Throws Error.
    void place(ContainerId id);
    /// Forgets a prepared set. What cannot be removed now goes with the next preparation.
    void discard(ContainerId id) noexcept;
    /// Syncs what was placed. Throws Error.
    void syncPlaced() const;

    /// Gives a set that is in place this record, which differs from its own in the reasons alone.
    /// Throws Error.
    void changeReasons(const SetRecord& record);

    /// The record of a set that is to go, or whose removal was begun; nullopt: there is none.
    /// Throws Error.
    [[nodiscard]] std::optional<SetRecord> recordOfLeaving(ContainerId id) const;
    /// Takes the set of this record away: aside, with one rename, so that it costs nothing to hold
    /// the lock for it, and sweep() does the rest. It needs no space on the disk. False: foreign
    /// files stay, and the folder with them. Throws Error; the set is active then as it was, as far
    /// as its files are there.
    [[nodiscard]] bool remove(const SetRecord& record);
    /// Takes a set whose record cannot be read out of fontconfig's sight, whole: nothing tells
    /// which of its files are the manager's. Where it lies then. Throws Error.
    [[nodiscard]] std::string hide(ContainerId id) const;
    /// Syncs what was removed, in one go. Throws Error.
    void syncRemoved(std::span<const ContainerId> sets) const;
    /// Deletes up to `most` sets that lie aside; no lock is needed. Whether there are more.
    bool sweep(std::size_t most) noexcept;
    /// The same for all, whoever took them away. Throws Error.
    void sweepAll();

    /// Finishes what a crash interrupted in one set; see Activation::recover.
    void recover(ContainerId id, const std::function<void(const std::string&)>& report);

private:
    void step(std::string_view name) const {
        if (observer_) {
            observer_(name);
        }
    }
    void stage(const SetFile& file, const std::string& folder) const;
    Progress prepare(SetRecord& wanted, std::vector<LostFile>& lost);
    Progress update(const SetRecord& current, SetRecord& wanted, std::vector<LostFile>& lost);
    /// Stages what is not in place as wanted, and makes `wanted` what can be had. The names of the
    /// staged files.
    std::vector<std::string> stageChanged(const SetRecord& current, SetRecord& wanted,
                                          std::vector<LostFile>& lost);
    void moveIntoPlace(ContainerId id, const std::vector<std::string>& staged);
    /// Whether there was one.
    bool removeWhole(ContainerId id);
    void sweepFolder(const std::string& aside) const;

    std::string root_;
    SetStaging staging_;
    StepObserver observer_;
    std::vector<std::string> aside_; ///< folders of sets that are yet to be deleted
};

} // namespace manager
