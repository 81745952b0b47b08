// SPDX-License-Identifier: MIT
#include "manager/cli/switching.h"

#include "manager/cli/announce.h"
#include "manager/cli/history.h"
#include "manager/cli/settling.h"
#include "manager/view/texts.h"

#include <utility>

namespace manager {

void tell(const Places& places, std::span<const ActivationOutcome> outcomes, std::span<Told> told,
          Tally& tally) {
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        const ActivationOutcome& outcome = outcomes[i];
        for (const std::string& problem : outcome.problems) {
            if (outcome.success) {
                tally.remark(problem);
            } else {
                tally.fail(problem);
            }
            if (!outcome.success || outcome.postponed) {
                recordDeed(places, outcome.success ? Deed::Undecided : Deed::Failed, problem);
            }
        }
        // Also what was done in part.
        if ((outcome.success && !outcome.postponed) || outcome.changed) {
            recordDeed(places, Deed::Done, told[i].text);
            tally.add(told[i].text, std::move(told[i].item));
        }
    }
}

bool canBecomeActive(const Container& container, Tally& tally) {
    if (container.away) {
        tally.fail(called(container) + ": " + translated("its folder is away"));
    } else if (container.shownByDesktop) {
        tally.remark(called(container) + ": " +
                     translated("the desktop shows it without being activated"));
    }
    return !container.away && !container.shownByDesktop;
}

bool isAnyPostponed(std::span<const ActivationOutcome> outcomes) {
    return std::any_of(outcomes.begin(), outcomes.end(),
                       [](const ActivationOutcome& outcome) { return outcome.postponed; });
}

void needServer(Tally& tally) {
    if (!findServer() && !startServer()) {
        tally.remark("no server is running: what is due is taken back once one is, see "
                     "\"glyphora serve\"");
    }
}

void tellOthers(const Activation& activation, std::span<const ContainerId> ids,
                std::span<const ActivationOutcome> outcomes) {
    if (activation.isUnsettled()) { // also by what was put in place and taken away again
        settleLater(ids);
    }
    if (std::any_of(outcomes.begin(), outcomes.end(),
                    [](const ActivationOutcome& outcome) { return outcome.changed; })) {
        postLibraryChanged();
        tellDisplay();
    }
}

} // namespace manager
