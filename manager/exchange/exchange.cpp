// SPDX-License-Identifier: MIT
// The four commands.
#include "manager/exchange/exchange.h"

#include "manager/exchange/activationbatch.h"
#include "manager/exchange/replyfont.h"
#include "manager/exchange/round.h"

#include <utility>

namespace manager {

namespace {

/// How a person calls the font.
std::string calledName(const CommandFont& asked) {
    if (asked.familyName.value_or("").empty()) {
        return asked.postScriptName.value_or("");
    }
    return *asked.familyName + (asked.styleName ? " " + *asked.styleName : std::string());
}

/// What is told behind the name of a font that is not activated.
std::string whyNothingIsDone(const Finding& held) {
    if (!held.exact.empty()) {
        return ": in " + std::to_string(held.exact.size()) + " containers, to be chosen from";
    }
    if (held.near.empty()) {
        return ": not in the library";
    }
    return ": not in the library; near: " + CandidateFinder::describe(held.near).front();
}

/// Answers one command.
class Exchange {
public:
    Exchange(Round& round, StandIns& standIns) : round_(round), standIns_(standIns) {
        round_.answer.problems = round_.command.problems;
    }

    std::string run() {
        const Reading together = round_.library.reading();
        switch (round_.command.kind) {
        case CommandKind::FontRequest:
            answerFontRequest();
            break;
        case CommandKind::ActivationRequest:
            answerActivationRequest(round_);
            break;
        case CommandKind::ShowRequest:
        case CommandKind::BuyRequest:
            answerWithoutActing();
            break;
        case CommandKind::Unknown:
            round_.answer.problems.push_back("command, line 1: unknown command word '" +
                                             round_.command.word + "'");
            break;
        }
        round_.run.report(round_.answer);
        if (round_.late != 0) {
            round_.answer.problems.push_back(
                std::to_string(round_.late) + " of " + std::to_string(round_.command.fonts.size()) +
                " fonts were not looked up for lack of time, ask for them by another command");
        }
        for (const std::string& problem : round_.answer.problems) {
            round_.reply.element("error", problem);
        }
        return round_.reply.finish();
    }

private:
    void answerFontRequest() {
        std::vector<Found> found =
            findAll(round_.library, round_.finder, standIns_, round_.command.fonts,
                    [this] { return round_.isLate(); });
        ActivationBatch batch;
        bool showWindow = false;
        for (std::size_t i = 0; i < found.size(); ++i) {
            const CommandFont& font = round_.command.fonts[i];
            const Finding& held = found[i].held;
            if (Round::isShown(found[i])) {
                round_.keepShown(found[i]);
                continue; // a second face of this name would make it a matter of luck which is seen
            }
            if (const Candidate* const decided = held.decided(font)) {
                batch.add(decided->container);
                continue;
            }
            showWindow = showWindow || held.isOpen(font) || !held.near.empty();
            round_.answer.undecided.push_back(calledName(font) + whyNothingIsDone(held));
        }
        batch.run(round_.library, round_.activation, round_.run);
        round_.late = round_.command.fonts.size() - found.size();
        found.resize(round_.command.fonts.size());
        round_.reply.flag("showWindow", showWindow);
        for (std::size_t i = 0; i < found.size(); ++i) {
            writeFontRequestFont(round_.reply, round_.command.fonts[i], found[i], batch);
        }
    }

    void answerWithoutActing() {
        round_.reply.flag("showWindow", false);
        for (const CommandFont& font : round_.command.fonts) {
            auto [held, shown] = round_.passOver() ? Found() : findOne(round_.finder, font);
            std::vector<Candidate>& candidates = held.exact;
            preferNamed(candidates, font);
            round_.reply.beginFont();
            writeNames(round_.reply, font, held);
            if (!shown.empty() || !candidates.empty()) {
                round_.reply.flag("isActive", !shown.empty() || candidates.front().active);
            }
            if (!candidates.empty()) {
                // The one named may be one of several with the same file.
                const auto named = toContainerId(font.containerId.value_or(""));
                const bool holdsIt = named && !round_.fileIn(*named, font, candidates).empty();
                round_.reply.element("containerID",
                                     toText(holdsIt ? *named : candidates.front().container.id));
            }
            if (round_.command.kind == CommandKind::BuyRequest) {
                round_.reply.flag("handled", false);
            }
            round_.reply.endFont();
        }
    }

    Round& round_;
    StandIns& standIns_;
};

} // namespace

Answer answerCommand(Library& library, const Activation& activation, StandIns& standIns,
                     std::string_view text, std::optional<std::int32_t> sender,
                     ActivationRun& run) {
    Answer answer;
    Command command;
    try {
        command = parseCommand(text);
    } catch (const MalformedCommand& malformed) {
        answer.word = malformed.word();
        answer.problems.emplace_back(malformed.what());
        answer.reply = failureReply(malformed.word(), malformed.what());
        return answer;
    }
    answer.word = command.word;
    answer.fonts = command.fonts.size();
    if (command.targetPid) {
        answer.target = ChangeTarget{*command.targetPid, command.targetClass.value_or("FILC")};
    }
    // A program in a sandbox may know itself by another number, which may be anybody's here.
    const bool isNamed = command.targetPid && isOwn(*command.targetPid);
    for (const auto& process : {isNamed ? command.targetPid : std::nullopt, sender}) {
        if (const auto reason = process ? Reason::forDocumentOf(*process) : std::nullopt) {
            run.setReasons({*reason});
            break;
        }
    }
    Round round{library, activation, command, run, answer};
    answer.reply = Exchange(round, standIns).run();
    return answer;
}

Answer answerCommand(Library& library, Activation& activation, std::string_view text) {
    activation.refreshDesktop();
    ActivationRun run;
    StandIns standIns;
    for (;;) {
        Answer answer = answerCommand(library, activation, standIns, text, std::nullopt, run);
        const std::vector<ContainerFonts> wanted = run.takeWanted();
        if (wanted.empty()) {
            static_cast<void>(activation.activate(run.takeUsed()));
            return answer;
        }
        std::vector<ActivationOutcome> outcomes = activation.activate(wanted);
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            run.tell(wanted[i].id, std::move(outcomes[i]));
        }
    }
}

std::string failureReply(std::string_view word, std::string_view problem) {
    ReplyText reply(word.empty() ? "error" : word);
    reply.element("error", problem);
    return reply.finish();
}

} // namespace manager
