// SPDX-License-Identifier: MIT
// What an activation request does.
#include "manager/exchange/activationbatch.h"
#include "manager/exchange/round.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace manager {

namespace {

/// What an activation request is to activate.
struct Choice {
    std::optional<Container> container;
    std::string fileName; ///< the font's own file there; empty: it is not known, all files count
    bool isShown = false; ///< nothing: the desktop shows the font already
};

class ActivationRequest {
public:
    explicit ActivationRequest(Round& round) : round_(round) {}

    void run() {
        std::vector<Choice> chosen;
        chosen.reserve(round_.command.fonts.size());
        ActivationBatch batch;
        for (const CommandFont& font : round_.command.fonts) {
            const bool late = round_.passOver();
            const Choice& choice = chosen.emplace_back(late ? Choice() : choose(font));
            if (choice.isShown || late) {
                continue;
            }
            if (choice.container) {
                batch.add(*choice.container);
            } else {
                round_.answer.problems.push_back("font '" + font.postScriptName.value_or("") +
                                                 "', container '" + font.containerId.value_or("") +
                                                 "': not in the library");
            }
        }
        batch.run(round_.library, round_.activation, round_.run);
        const ActivationBatch second = tryOthers(chosen, batch);
        for (std::size_t i = 0; i < chosen.size(); ++i) {
            writeActivatedFont(round_.command.fonts[i], chosen[i], batch, second);
        }
    }

private:
    // For fonts that their container does not show: the best of the others.
    ActivationBatch tryOthers(std::vector<Choice>& chosen, const ActivationBatch& first) {
        ActivationBatch second;
        for (std::size_t i = 0; i < chosen.size(); ++i) {
            Choice& choice = chosen[i];
            if (choice.isShown || !choice.container ||
                !first.failed(choice.container->id, choice.fileName)) {
                continue;
            }
            for (const Candidate& candidate : round_.finder.find(round_.command.fonts[i]).exact) {
                const bool tried = first.holds(candidate.container.id);
                if (tried && first.failed(candidate.container.id, candidate.face.fileName)) {
                    continue;
                }
                choice = {candidate.container, candidate.face.fileName};
                if (!tried) {
                    second.add(candidate.container);
                }
                break;
            }
        }
        second.run(round_.library, round_.activation, round_.run);
        return second;
    }

    void writeActivatedFont(const CommandFont& font, const Choice& choice,
                            const ActivationBatch& first, const ActivationBatch& second) {
        bool success = choice.isShown;
        if (choice.container && !choice.isShown) {
            const ContainerId id = choice.container->id;
            success = (second.holds(id) ? second : first).succeeded(id, choice.fileName);
        }
        round_.reply.beginFont();
        if (font.syncId) {
            round_.reply.element("syncID", *font.syncId);
        }
        round_.reply.element("psName", font.postScriptName.value_or(""));
        round_.reply.element("containerID", choice.container ? toText(choice.container->id)
                                                             : font.containerId.value_or(""));
        // Of a container that is not known to hold the font only that is told that it was
        // activated.
        const bool known =
            choice.isShown || !choice.fileName.empty() || font.postScriptName.value_or("").empty();
        round_.reply.flag("isActive", success && known);
        round_.reply.flag("activationSuccessfull", success);
        round_.reply.endFont();
    }

    Choice choose(const CommandFont& font) {
        const Found found = findOne(round_.finder, font);
        const std::vector<Candidate>& candidates = found.held.exact;
        const auto isActive = [&](ContainerId id) {
            return std::any_of(candidates.begin(), candidates.end(), [&](const Candidate& one) {
                return one.active && one.container.id == id;
            });
        };
        if (!found.shown.empty()) {
            round_.keepShown(found);
            return {{}, {}, true};
        }
        if (const auto id = toContainerId(font.containerId.value_or(""))) {
            if (auto container = round_.library.container(*id)) {
                std::string own = round_.fileIn(*id, font, candidates);
                // What this command has tried itself before goes on as it began.
                if (!own.empty() && Round::isShown(found) && !isActive(*id) &&
                    !round_.run.isWanted(*id)) {
                    round_.keepShown(found);
                    return {{}, {}, true};
                }
                if (!own.empty() || candidates.empty()) {
                    return {std::move(container), std::move(own)};
                }
            }
        }
        if (candidates.empty()) {
            return {};
        }
        return {candidates.front().container, candidates.front().face.fileName};
    }

    Round& round_;
};

} // namespace

void answerActivationRequest(Round& round) {
    ActivationRequest(round).run();
}

} // namespace manager
