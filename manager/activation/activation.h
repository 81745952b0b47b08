// SPDX-License-Identifier: MIT
// Activation of containers: a folder per container where fontconfig looks, then a reload that
// writes the caches for everybody. What is active is what lies there; there is no other record of
// it.
#pragma once

#include "manager/activation/desktopfonts.h"
#include "manager/activation/knownreasons.h"
#include "manager/activation/mappedfiles.h"
#include "manager/activation/setfolder.h"

#include <chrono>
#include <deque>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <sys/types.h>
#include <vector>

namespace manager {

/// What is to be activated.
struct ContainerFonts {
    ContainerId id{};
    std::string name; ///< empty, with onlyIfActive: of whatever set has the number
    std::vector<LibraryFile> files;
    std::vector<Reason> reasons = {Reason::byHand()}; ///< added to those of before
    /// Nothing is done for one that is not active. Of another the files that it has are brought up
    /// to date; it is given no more of them, and keeps those that are not among `files`.
    bool onlyIfActive = false;
    /// By the name of a file that it has: that of the one among `files` that takes its place. See
    /// successorsIn().
    std::map<std::string, std::string> successors = {};
    /// Of one that is active nothing changes but the reasons.
    bool reasonsOnly = false;
    std::vector<Reason> ended = {}; ///< taken from those of before
    /// Names of those among `files` that it is given if it does not have them; nullopt: all.
    std::optional<std::set<std::string>> only = {};
    /// Names of files that it loses; not to be all that it has.
    std::set<std::string> without = {};
};

/// The record that its set has when all of it is in place.
[[nodiscard]] SetRecord recordOf(const ContainerFonts& container);

struct ActivationOutcome {
    /// The desktop sees every file of the container, as it was wanted or as it was before.
    bool success = false;
    bool changed = false; ///< the files that lie there for it are not those of before
    /// Programs have it open: it, or files that others are to take the place of, stay under them
    /// until they end. `problems` tells which; that is no failure.
    bool postponed = false;
    /// Names of files, without their folder, that are not active as they were wanted: they could
    /// not be put in place, or the desktop did not see them and they were taken away again, so that
    /// nothing counts as active that is not. All of them when none is.
    std::set<std::string> lost;
    std::vector<std::string> problems; ///< "PATH: ..." per thing that failed or was left behind
    /// "1.0 -> 2.0": of the files that took the place of others, and those; empty when they are the
    /// same or not all known.
    std::string versions = {};
    SetChange change = {}; ///< of the set; that it is updated is none
};

/// That of a container of which nothing is active as it was wanted.
[[nodiscard]] ActivationOutcome failureOf(const ContainerFonts& container,
                                          const std::string& problem);

struct ActiveContainer {
    ContainerId id{};
    std::string name;
    std::vector<std::string> files = {}; ///< their names, in order
    std::vector<Reason> reasons = {};    ///< those that stand
};

/// A set that lost its last reason.
struct Withdrawal {
    ContainerId id{};
    std::string name;
    std::string why; ///< for people: "process 4711 (inkscape) ended"; empty: nothing tells
    ActivationOutcome outcome;
};

/// [one-thread], in which reports come, too; several processes take turns by a lock on disk.
class Activation {
public:
    /// Makes the folder that fontconfig watches, so that programs started from now on know it.
    /// Throws Error.
    explicit Activation(const Places& places, StepObserver observer = {},
                        std::filesystem::path desktop = desktopProgram(),
                        std::chrono::milliseconds patience = lockPatience);

    /// The folder of this container's set, be it there or not.
    [[nodiscard]] std::string folder(ContainerId id) const { return folders_.folder(id); }
    /// The set that a file lies in; nullopt: in none.
    [[nodiscard]] std::optional<ContainerId> setWith(const std::string& file) const;
    /// The set of this container that is active, whichever of its files are. A set of another
    /// container under its number does not count.
    [[nodiscard]] std::optional<SetRecord> setOf(const Container& container) const;
    [[nodiscard]] bool isActive(const Container& container) const {
        return setOf(container).has_value();
    }
    /// The numbers of all sets, in order, whatever they are. Throws Error.
    [[nodiscard]] std::vector<ContainerId> sets() const { return setsIn(folders_.root()); }
    /// Whether something lies there for this container that has a record, be it readable or not.
    [[nodiscard]] bool hasSet(ContainerId id) const;
    /// Whether a file is active in its container's set just as it is in the library; an older copy
    /// is not.
    [[nodiscard]] bool holds(const SetRecord& set, const LibraryFile& file) const;
    /// Those on disk, by number. A record that cannot be read is told to `report`.
    [[nodiscard]] std::vector<ActiveContainer>
    active(const std::function<void(const std::string&)>& report) const;

    /// Activates a batch, each container in it once, with one reload for all of it. A file that
    /// cannot be had or that the desktop does not see costs only itself. What is active already and
    /// not among the files wanted stays, unless it has a successor among them. Never throws for one
    /// container's fault.
    [[nodiscard]] std::vector<ActivationOutcome>
    activate(std::span<const ContainerFonts> containers);
    /// Takes them away, whatever they are active for; one that a running program has open stays
    /// until that ends.
    [[nodiscard]] std::vector<ActivationOutcome>
    deactivate(std::span<const ContainerId> containers);
    /// Has withdrawDue() read the records of these sets again, which others may have changed;
    /// nullopt: of all. The first time it reads all.
    void lookAgain(const std::optional<std::vector<ContainerId>>& changed);
    /// Ends reasons that do not stand any more, and takes away the sets that are left without one;
    /// looks at `most` at a time, so that others have their turn.
    [[nodiscard]] std::vector<Withdrawal>
    withdrawDue(std::size_t most = std::numeric_limits<std::size_t>::max());
    /// Whether the last call left sets to the next one.
    [[nodiscard]] bool isMoreDue() const { return !doubtful_.empty(); }
    /// Deletes up to `most` sets that withdrawDue() took away. Whether there are more.
    bool sweep(std::size_t most) noexcept { return folders_.sweep(most); }
    /// The reasons that will end by themselves, each once; those of which withdrawDue() did not
    /// know the end are among them, should they have ended meanwhile.
    [[nodiscard]] std::vector<Reason> endingReasons() const { return known_.ending(); }

    /// Mends what a crash left: half-prepared sets go, sets that lack files are completed (or lose
    /// the files that cannot be had), begun removals are finished. Told to `report`, a line each. A
    /// change that a killed process did not settle is unsettled again. Whether there was either,
    /// and others may not have been told of it.
    bool recover(const std::function<void(const std::string&)>& report);

    /// The desktop's faces as of the last refreshDesktop(), with this object's own changes since.
    [[nodiscard]] const DesktopFaces& desktop() const { return desktop_; }
    [[nodiscard]] DesktopFaces& desktop() { return desktop_; }
    /// Reads them when they may be others by now. Throws Error.
    void refreshDesktop();
    /// The same, for whom those of before do as well when they cannot be read.
    [[nodiscard]] const DesktopFaces& desktopNow();

    /// Whether settle() is due about a second after the last change.
    [[nodiscard]] bool isUnsettled() const { return unsettled_; }
    /// Marks the folder as changed once more. Programs compare whole seconds, and one that looked
    /// in the second of the change would miss it for good.
    void settle();
    /// The same for a change of these containers that `process` made, which has ended since.
    void settleFor(pid_t process, std::span<const ContainerId> changed);

private:
    [[nodiscard]] FileLock lock() const;
    [[nodiscard]] std::optional<SetRecord> recordInPlace(ContainerId id) const;
    [[nodiscard]] std::vector<SetFile> filesInPlace(ContainerId id) const;
    struct Leaving {
        ContainerId id{};
        std::optional<SetRecord> record; ///< nullopt: it is yet to be read
        ActivationOutcome outcome;
    };
    void takeAll(std::span<Leaving> sets);
    /// Reads its record. True: that cannot be done, and so the set was dealt with.
    bool takeUnreadable(Leaving& set, const Mappers& mappers);
    /// Whether it is postponed.
    bool keepUnderPrograms(Leaving& set, const Mappers& mappers);
    void readChangedRecords();
    [[nodiscard]] std::string endsOf(const std::vector<Reason>& reasons) const;
    void putOnDisk(std::span<const ContainerFonts> containers, std::span<SetRecord> records,
                   std::span<ActivationOutcome> outcomes);
    /// Makes `record` what its set is to be. False: nothing is to be done.
    [[nodiscard]] bool joinWithActive(const ContainerFonts& container,
                                      std::optional<Mappers>& mappers, SetRecord& record,
                                      ActivationOutcome& outcome) const;
    void takeAway(const std::set<std::string>& names, SetRecord& record,
                  ActivationOutcome& outcome);
    /// Has fontconfig read what changed in the root and in these folders of sets.
    FolderReading showChanges(std::span<const std::string> folders);
    void beginChange();
    void endChange(bool changed);

    SetFolders folders_;
    std::filesystem::path program_;
    std::chrono::milliseconds patience_;
    DesktopFaces desktop_;
    std::map<std::string, FileStamp> endless_; ///< by source
    std::vector<std::string> changedFolders_;
    KnownReasons known_;
    bool anyChanged_ = true; ///< records may be others than known; else those of `changed_`
    std::set<ContainerId> changed_;
    std::deque<ContainerId> doubtful_; ///< yet to be looked at
    bool unsettled_ = false;
    bool knowsRoot_ = false; ///< nobody else has changed what is active since desktop_ was read
};

} // namespace manager
