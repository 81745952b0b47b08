// SPDX-License-Identifier: MIT
// The containers that one command wants activated, from the question to the outcome.
#pragma once

#include "manager/activation/activation.h"
#include "manager/library/library.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace manager {

struct Answer;

/// What a command has had activated so far. A command is answered in rounds: one that wants
/// containers of which the outcome is not known yet is answered anew when it is, or when its time
/// is up, with what is known by then. [one-thread]
class ActivationRun {
public:
    /// What the command's containers are to be active for from now on.
    void setReasons(std::vector<Reason> reasons) { reasons_ = std::move(reasons); }

    /// How long a round may look fonts up; those that are left are answered as nobody's, and told.
    void setLookUpTime(std::chrono::milliseconds time) { lookUpTime_ = time; }
    [[nodiscard]] std::chrono::milliseconds lookUpTime() const { return lookUpTime_; }

    /// Asks for a container. nullptr: the outcome is not known yet. Throws Error when the index
    /// cannot be read.
    const ActivationOutcome* want(const Container& container, Library& library,
                                  const Activation& activation);
    /// Whether the command has asked for it.
    [[nodiscard]] bool isWanted(ContainerId id) const {
        return byId_.contains(static_cast<std::int32_t>(id));
    }
    /// Asks that an active one stays active for the command's reasons, too; nobody waits for it.
    void use(const Container& container, Library& library);
    /// The same for a set of which the library may know nothing.
    void use(ContainerId set);

    /// What was asked for since the last call, each container once in a command.
    [[nodiscard]] std::vector<ContainerFonts> takeWanted() { return std::exchange(wanted_, {}); }
    [[nodiscard]] std::vector<ContainerFonts> takeUsed() { return std::exchange(used_, {}); }
    /// Forgets what was asked for since the last call of takeWanted(), as if it had never been.
    void giveUpWanted();
    /// The outcome of one that was wanted.
    void tell(ContainerId id, ActivationOutcome outcome);
    /// A problem of the moment, told in every answer until it is another; empty for none.
    void setRemark(std::string remark) { remark_ = std::move(remark); }
    /// Adds to the answer what was done and what failed so far.
    void report(Answer& answer) const;
    /// The same of what was told since the last call alone.
    void reportNew(Answer& answer);

private:
    struct Wanted {
        Container container;
        bool known = false;
        ActivationOutcome outcome;
    };
    static void report(const Wanted& wanted, Answer& answer);

    std::vector<Reason> reasons_ = {Reason::byHand()};
    std::string remark_;
    std::chrono::milliseconds lookUpTime_ = std::chrono::hours(1);
    std::deque<Wanted> all_; ///< in the order asked for
    std::unordered_map<std::int32_t, Wanted*> byId_;
    std::vector<const Wanted*> new_; ///< told lately
    std::vector<ContainerFonts> wanted_;
    std::vector<ContainerFonts> used_;
    std::set<ContainerId> inUse_; ///< all that were ever asked for
};

/// Gathers the containers that a step of a command activates, each once.
class ActivationBatch {
public:
    void add(const Container& container);
    /// Asks for all of them. Throws Error when the index cannot be read.
    void run(Library& library, const Activation& activation, ActivationRun& run);

    [[nodiscard]] bool holds(ContainerId id) const {
        return positions_.contains(static_cast<std::int32_t>(id));
    }
    /// Whether a file of a container in the batch is known to be active now; every file when no
    /// name is given.
    [[nodiscard]] bool succeeded(ContainerId id, const std::string& fileName) const;
    /// Whether it is known to have failed.
    [[nodiscard]] bool failed(ContainerId id, const std::string& fileName) const;

private:
    std::vector<Container> containers_;
    std::unordered_map<std::int32_t, std::size_t> positions_;
    std::vector<const ActivationOutcome*> outcomes_; ///< nullptr: not known yet
};

} // namespace manager
