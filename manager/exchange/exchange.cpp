// SPDX-License-Identifier: MIT
// The four commands.
#include "manager/exchange/exchange.h"

#include "manager/exchange/activationbatch.h"
#include "manager/exchange/candidates.h"
#include "manager/exchange/commandtext.h"
#include "manager/exchange/findings.h"
#include "manager/exchange/replyfont.h"

#include <algorithm>
#include <chrono>
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

/// What an activation request is to activate.
struct Choice {
    std::optional<Container> container;
    std::string fileName; ///< the font's own file there; empty: it is not known, all files count
    bool isShown = false; ///< nothing: the desktop shows the font already
};

/// Answers one command.
class Exchange {
public:
    Exchange(Library& library, const Activation& activation, StandIns& standIns,
             const Command& command, ActivationRun& run, Answer& answer)
        : library_(library), activation_(activation), standIns_(standIns), run_(run),
          finder_(library, activation), command_(command), answer_(answer), reply_(command.word) {
        answer_.problems = command.problems;
    }

    std::string run() {
        const Reading together = library_.reading();
        switch (command_.kind) {
        case CommandKind::FontRequest:
            answerFontRequest();
            break;
        case CommandKind::ActivationRequest:
            answerActivationRequest();
            break;
        case CommandKind::ShowRequest:
        case CommandKind::BuyRequest:
            answerWithoutActing();
            break;
        case CommandKind::Unknown:
            answer_.problems.push_back("command, line 1: unknown command word '" + command_.word +
                                       "'");
            break;
        }
        run_.report(answer_);
        if (late_ != 0) {
            answer_.problems.push_back(
                std::to_string(late_) + " of " + std::to_string(command_.fonts.size()) +
                " fonts were not looked up for lack of time, ask for them by another command");
        }
        for (const std::string& problem : answer_.problems) {
            reply_.element("error", problem);
        }
        return reply_.finish();
    }

private:
    void answerFontRequest() {
        std::vector<Found> found =
            findAll(library_, finder_, standIns_, command_.fonts, [this] { return isLate(); });
        ActivationBatch batch;
        bool showWindow = false;
        for (std::size_t i = 0; i < found.size(); ++i) {
            const CommandFont& font = command_.fonts[i];
            const Finding& held = found[i].held;
            if (isShown(found[i])) {
                keepShown(found[i]);
                continue; // a second face of this name would make it a matter of luck which is seen
            }
            if (const Candidate* const decided = held.decided(font)) {
                batch.add(decided->container);
                continue;
            }
            showWindow = showWindow || held.isOpen(font) || !held.near.empty();
            answer_.undecided.push_back(calledName(font) + whyNothingIsDone(held));
        }
        batch.run(library_, activation_, run_);
        late_ = command_.fonts.size() - found.size();
        found.resize(command_.fonts.size());
        reply_.flag("showWindow", showWindow);
        for (std::size_t i = 0; i < found.size(); ++i) {
            writeFontRequestFont(reply_, command_.fonts[i], found[i], batch);
        }
    }

    static bool isShown(const Found& found) {
        return !found.shown.empty() ||
               (!found.held.exact.empty() && found.held.exact.front().active);
    }

    // What others have had activated is to stay for this command, too.
    void keepShown(const Found& found) {
        for (const DesktopFace& face : found.shown) {
            if (const auto set = activation_.setWith(face.file)) {
                run_.use(*set);
            }
        }
        if (found.shown.empty() && finder_.setOf(found.held.exact.front().container)) {
            run_.use(found.held.exact.front().container, library_);
        }
    }

    void answerActivationRequest() {
        std::vector<Choice> chosen;
        chosen.reserve(command_.fonts.size());
        ActivationBatch batch;
        for (const CommandFont& font : command_.fonts) {
            const bool late = passOver();
            const Choice& choice = chosen.emplace_back(late ? Choice() : choose(font));
            if (choice.isShown || late) {
                continue;
            }
            if (choice.container) {
                batch.add(*choice.container);
            } else {
                answer_.problems.push_back("font '" + font.postScriptName.value_or("") +
                                           "', container '" + font.containerId.value_or("") +
                                           "': not in the library");
            }
        }
        batch.run(library_, activation_, run_);
        const ActivationBatch second = tryOthers(chosen, batch);
        for (std::size_t i = 0; i < chosen.size(); ++i) {
            writeActivatedFont(command_.fonts[i], chosen[i], batch, second);
        }
    }

    // For fonts that their container does not show: the best of the others.
    ActivationBatch tryOthers(std::vector<Choice>& chosen, const ActivationBatch& first) {
        ActivationBatch second;
        for (std::size_t i = 0; i < chosen.size(); ++i) {
            Choice& choice = chosen[i];
            if (choice.isShown || !choice.container ||
                !first.failed(choice.container->id, choice.fileName)) {
                continue;
            }
            for (const Candidate& candidate : finder_.find(command_.fonts[i]).exact) {
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
        second.run(library_, activation_, run_);
        return second;
    }

    void writeActivatedFont(const CommandFont& font, const Choice& choice,
                            const ActivationBatch& first, const ActivationBatch& second) {
        bool success = choice.isShown;
        if (choice.container && !choice.isShown) {
            const ContainerId id = choice.container->id;
            success = (second.holds(id) ? second : first).succeeded(id, choice.fileName);
        }
        reply_.beginFont();
        if (font.syncId) {
            reply_.element("syncID", *font.syncId);
        }
        reply_.element("psName", font.postScriptName.value_or(""));
        reply_.element("containerID", choice.container ? toText(choice.container->id)
                                                       : font.containerId.value_or(""));
        // Of a container that is not known to hold the font only that is told that it was
        // activated.
        const bool known =
            choice.isShown || !choice.fileName.empty() || font.postScriptName.value_or("").empty();
        reply_.flag("isActive", success && known);
        reply_.flag("activationSuccessfull", success);
        reply_.endFont();
    }

    [[nodiscard]] bool isLate() const { return Clock::now() >= deadline_; }
    /// A font that there is no time left to look up.
    bool passOver() {
        const bool late = late_ != 0 || isLate();
        late_ += late ? 1 : 0;
        return late;
    }

    /// The font's own file in a container; empty: it is not known.
    std::string fileIn(ContainerId id, const CommandFont& font,
                       const std::vector<Candidate>& candidates) {
        for (const Candidate& candidate : candidates) {
            if (candidate.container.id == id) {
                return candidate.face.fileName;
            }
        }
        if (!candidates.empty()) { // one that holds the same file as another is not among them
            for (const FaceDetails& face : library_.faces(id)) {
                if (face.match.postScriptName == font.postScriptName) {
                    return face.match.fileName;
                }
            }
        }
        return {};
    }

    Choice choose(const CommandFont& font) {
        const Found found = findOne(finder_, font);
        const std::vector<Candidate>& candidates = found.held.exact;
        const auto isActive = [&](ContainerId id) {
            return std::any_of(candidates.begin(), candidates.end(), [&](const Candidate& one) {
                return one.active && one.container.id == id;
            });
        };
        if (!found.shown.empty()) {
            keepShown(found);
            return {{}, {}, true};
        }
        if (const auto id = toContainerId(font.containerId.value_or(""))) {
            if (auto container = library_.container(*id)) {
                std::string own = fileIn(*id, font, candidates);
                // What this command has tried itself before goes on as it began.
                if (!own.empty() && isShown(found) && !isActive(*id) && !run_.isWanted(*id)) {
                    keepShown(found);
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

    void answerWithoutActing() {
        reply_.flag("showWindow", false);
        for (const CommandFont& font : command_.fonts) {
            auto [held, shown] = passOver() ? Found() : findOne(finder_, font);
            std::vector<Candidate>& candidates = held.exact;
            preferNamed(candidates, font);
            reply_.beginFont();
            writeNames(reply_, font, held);
            if (!shown.empty() || !candidates.empty()) {
                reply_.flag("isActive", !shown.empty() || candidates.front().active);
            }
            if (!candidates.empty()) {
                // The one named may be one of several with the same file.
                const auto named = toContainerId(font.containerId.value_or(""));
                const bool holdsIt = named && !fileIn(*named, font, candidates).empty();
                reply_.element("containerID",
                               toText(holdsIt ? *named : candidates.front().container.id));
            }
            if (command_.kind == CommandKind::BuyRequest) {
                reply_.flag("handled", false);
            }
            reply_.endFont();
        }
    }

    using Clock = std::chrono::steady_clock;

    Library& library_;
    const Activation& activation_;
    StandIns& standIns_;
    ActivationRun& run_;
    CandidateFinder finder_;
    const Command& command_;
    Answer& answer_;
    ReplyText reply_;
    Clock::time_point deadline_ = Clock::now() + run_.lookUpTime(); ///< of looking up
    std::size_t late_ = 0; ///< the last fonts, which came behind it
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
    answer.reply = Exchange(library, activation, standIns, command, run, answer).run();
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
