// SPDX-License-Identifier: MIT
// What all sets are active for, kept in memory, so that to find those that are due costs what has
// ended and not what is active.
#pragma once

#include "manager/activation/reason.h"
#include "manager/library/library.h"

#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace manager {

/// [one-thread] Reasons as the records had them when they were last read.
class KnownReasons {
public:
    /// Takes the place of what was known of the set.
    void learn(ContainerId id, const std::vector<Reason>& reasons);
    void forget(ContainerId id);
    void clear() { *this = {}; }

    /// The sets that may be due: those without a reason, or with one that stands no more.
    [[nodiscard]] std::vector<ContainerId> doubtful();
    /// The reasons that will end by themselves, each once, but those that had ended when doubtful()
    /// was called last: one that has ended since is yet to be found out.
    [[nodiscard]] std::vector<Reason> ending() const;
    /// For people: what ended a reason, "process 4711 (inkscape) ended". The program's name is that
    /// of when the reason was learnt.
    [[nodiscard]] std::string endOf(const Reason& reason) const;

private:
    struct Known {
        Reason reason;
        std::string program;
        std::set<ContainerId> sets;
        bool stood = true; ///< when doubtful() was called last
    };
    std::map<std::string, Known> reasons_; ///< by the line in a record; none that lasts
    std::unordered_map<std::int32_t, std::vector<std::string>> lines_; ///< by set
    std::set<ContainerId> without_;
};

} // namespace manager
