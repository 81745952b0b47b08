// SPDX-License-Identifier: MIT
#include "manager/cli/setchanges.h"

#include "manager/library/error.h"
#include "manager/library/fields.h"

#include <string>

namespace manager {

namespace {

using Json = nlohmann::ordered_json;

Json toJson(const std::vector<Reason>& reasons) {
    Json list = Json::array();
    for (const Reason& reason : reasons) {
        std::string line = reasonLine(reason);
        line.pop_back(); // its line feed
        Json words = splitFields(line).value();
        words.erase(words.begin()); // "reason"
        list.push_back(std::move(words));
    }
    return list;
}

std::vector<Reason> toReasons(const Json& list) {
    std::vector<Reason> reasons;
    for (const Json& words : list) {
        std::vector<std::string> fields{"reason"};
        for (const Json& word : words) {
            fields.push_back(word.get<std::string>());
        }
        const auto reason = reasonOf(fields);
        if (!reason) {
            throw Error(words.dump() + " is not a reason");
        }
        reasons.push_back(*reason);
    }
    return reasons;
}

} // namespace

Json changesOf(std::span<const ContainerId> ids, std::span<const ActivationOutcome> outcomes) {
    Json changes = Json::array();
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        const SetChange& change = outcomes[i].change;
        if (!change.isEmpty()) {
            changes.push_back(
                {{"id", static_cast<std::int32_t>(ids[i])},
                 {"reasons",
                  {{"added", toJson(change.reasons.added)},
                   {"removed", toJson(change.reasons.removed)}}},
                 {"files", {{"added", change.addedFiles}, {"removed", change.removedFiles}}}});
        }
    }
    return changes;
}

std::vector<WantedChange> readChanges(std::string_view text) {
    std::vector<WantedChange> changes;
    const auto place = [&] { return "change " + std::to_string(changes.size() + 1) + ": "; };
    try {
        for (const Json& item : Json::parse(text)) {
            WantedChange wanted{ContainerId{item.at("id").get<std::int32_t>()}};
            if (item.contains("active")) {
                wanted.active = item.at("active").get<bool>();
            } else {
                const Json& reasons = item.at("reasons");
                const Json& files = item.at("files");
                wanted.change = {{toReasons(reasons.at("added")), toReasons(reasons.at("removed"))},
                                 files.at("added").get<std::vector<std::string>>(),
                                 files.at("removed").get<std::vector<std::string>>()};
            }
            changes.push_back(std::move(wanted));
        }
    } catch (const nlohmann::json::exception& error) {
        throw Error(place() + error.what());
    } catch (const Error& error) {
        throw Error(place() + error.what());
    }
    return changes;
}

} // namespace manager
