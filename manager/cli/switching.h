// SPDX-License-Identifier: MIT
// What the commands that switch containers have in common: it is done in batches, recorded, and
// told to people and to others.
#pragma once

#include "manager/activation/activation.h"
#include "manager/cli/progress.h"
#include "manager/cli/report.h"
#include "manager/cli/tally.h"
#include "manager/library/cancel.h"
#include "manager/library/error.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <vector>

namespace manager {

/// What is told of a container when it was dealt with.
struct Told {
    std::string text;
    nlohmann::ordered_json item;
};

/// Records and tells what came of each.
void tell(const Places& places, std::span<const ActivationOutcome> outcomes, std::span<Told> told,
          Tally& tally);
/// Whether a container that is not active can become so; else why not is told.
[[nodiscard]] bool canBecomeActive(const Container& container, Tally& tally);
[[nodiscard]] bool isAnyPostponed(std::span<const ActivationOutcome> outcomes);
/// What ends by itself is ended by the server: starts one, or tells that there is none.
void needServer(Tally& tally);
/// Lets others know, now and in a second.
void tellOthers(const Activation& activation, std::span<const ContainerId> ids,
                std::span<const ActivationOutcome> outcomes);

// As many as are done in about half a second: in between it can be cancelled. Each batch has a
// price, which is higher for taking away: all processes are looked at.
inline constexpr std::size_t activatedAtOnce = 500;
inline constexpr std::size_t deactivatedAtOnce = 2500;

/// The outcomes of the first ones; of all, unless it is cancelled or fails in the midst, which is
/// told.
template <class Item, class Deed>
std::vector<ActivationOutcome> doInBatches(const std::vector<Item>& items, std::size_t batch,
                                           Work work, Tally& tally, const Deed& deed) {
    std::vector<ActivationOutcome> outcomes;
    try {
        while (outcomes.size() < items.size()) {
            checkCancelled();
            tellProgress(work, outcomes.size(), items.size());
            const auto rest = std::span(items).subspan(outcomes.size());
            auto done = deed(rest.first(std::min(batch, rest.size())));
            std::move(done.begin(), done.end(), std::back_inserter(outcomes));
        }
    } catch (const Cancelled&) {
        tally.fail("cancelled: " + std::to_string(outcomes.size()) + " of " +
                   counted(items.size(), "container") + " were dealt with");
    } catch (const Error& error) {
        tally.fail(error.what());
    }
    return outcomes;
}

} // namespace manager
