// SPDX-License-Identifier: MIT
// A table of reasons with their sets, and the way back.
#include "manager/activation/knownreasons.h"

#include <algorithm>

namespace manager {

void KnownReasons::learn(ContainerId id, const std::vector<Reason>& reasons) {
    // A process that has ended meanwhile keeps the name that it had.
    std::map<std::string, std::string> programs;
    for (const std::string& line : lines_[static_cast<std::int32_t>(id)]) {
        programs[line] = reasons_.at(line).program;
    }
    forget(id);
    if (reasons.empty()) {
        without_.insert(id);
    }
    for (const Reason& reason : reasons) {
        if (reason.kind == Reason::Kind::ByHand) {
            continue;
        }
        const std::string line = reasonLine(reason);
        const auto [known, isNew] = reasons_.try_emplace(line, Known{reason, {}, {}, true});
        if (isNew) {
            known->second.program =
                isRunning(reason.process) ? programName(reason.process.id) : programs[line];
        }
        known->second.sets.insert(id);
        lines_[static_cast<std::int32_t>(id)].push_back(line);
    }
}

void KnownReasons::forget(ContainerId id) {
    without_.erase(id);
    const auto lines = lines_.find(static_cast<std::int32_t>(id));
    if (lines == lines_.end()) {
        return;
    }
    for (const std::string& line : lines->second) {
        const auto known = reasons_.find(line);
        if (known != reasons_.end() && known->second.sets.erase(id) != 0 &&
            known->second.sets.empty()) {
            reasons_.erase(known);
        }
    }
    lines_.erase(lines);
}

std::vector<ContainerId> KnownReasons::doubtful() {
    std::set<ContainerId> sets = without_;
    for (auto& [line, known] : reasons_) {
        known.stood = stands(known.reason);
        if (!known.stood) {
            sets.insert(known.sets.begin(), known.sets.end());
        }
    }
    return {sets.begin(), sets.end()};
}

std::vector<Reason> KnownReasons::ending() const {
    std::vector<Reason> ending;
    for (const auto& [line, known] : reasons_) {
        if (known.stood) {
            ending.push_back(known.reason);
        }
    }
    return ending;
}

std::string KnownReasons::endOf(const Reason& reason) const {
    switch (reason.kind) {
    case Reason::Kind::Document:
    case Reason::Kind::InUse: {
        const auto known = reasons_.find(reasonLine(reason));
        const bool isNamed = known != reasons_.end() && !known->second.program.empty();
        return "process " + std::to_string(reason.process.id) +
               (isNamed ? " (" + known->second.program + ")" : "") + " ended";
    }
    case Reason::Kind::UntilLogout:
        return "the login ended";
    case Reason::Kind::UntilTime:
        return "its time is over";
    case Reason::Kind::ByHand:
        break;
    }
    return {};
}

} // namespace manager
