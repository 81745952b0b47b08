// SPDX-License-Identifier: MIT
// What a window switches, and takes back.
#include "manager/cli/activationops.h"
#include "manager/cli/changeplan.h"
#include "manager/cli/libraryops.h"
#include "manager/view/texts.h"

namespace manager {

int changeCommand(const Places& places, bool json) {
    const std::vector<WantedChange> changes = readChanges(readInput());
    const CancelBySignals cancel;
    Tally tally(json, "changed");
    Activation activation(places);
    const auto library = openScanned(places);
    ChangePlan plan(*library, activation, tally);
    for (const WantedChange& change : changes) {
        checkCancelled();
        if (const auto container = library->container(change.id)) {
            plan.add(*container, change);
        } else {
            tally.fail(filled(translated("container %1"), {toText(change.id)}) + ": " +
                       translated("not in the library"));
        }
    }
    tally.set("changes", plan.carryOut(places));
    return tally.finish();
}

} // namespace manager
