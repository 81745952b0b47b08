// SPDX-License-Identifier: MIT
#include "manager/cli/reasonchanges.h"

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
        const ReasonChange& change = outcomes[i].reasons;
        if (!change.isEmpty()) {
            changes.push_back({{"id", static_cast<std::int32_t>(ids[i])},
                               {"added", toJson(change.added)},
                               {"removed", toJson(change.removed)}});
        }
    }
    return changes;
}

std::vector<ContainerChange> readChanges(std::string_view text) {
    std::vector<ContainerChange> changes;
    const auto place = [&] { return "change " + std::to_string(changes.size() + 1) + ": "; };
    try {
        for (const Json& item : Json::parse(text)) {
            changes.push_back({ContainerId{item.at("id").get<std::int32_t>()},
                               {toReasons(item.at("added")), toReasons(item.at("removed"))}});
        }
    } catch (const nlohmann::json::exception& error) {
        throw Error(place() + error.what());
    } catch (const Error& error) {
        throw Error(place() + error.what());
    }
    return changes;
}

} // namespace manager
