// SPDX-License-Identifier: MIT
// The four commands.
#include "manager/exchange/exchange.h"

#include "manager/exchange/candidates.h"
#include "manager/exchange/commandtext.h"
#include "manager/exchange/replytext.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace manager {

namespace {

/// Gathers the containers that a command activates, each once, and activates them together.
class ActivationBatch {
public:
    void add(const Container& container) {
        if (positions_.emplace(static_cast<std::int32_t>(container.id), containers_.size())
                .second) {
            containers_.push_back(container);
        }
    }

    void run(Library& library, Activation& activation, Answer& answer) {
        std::vector<ContainerFonts> fonts;
        fonts.reserve(containers_.size());
        for (const Container& container : containers_) {
            fonts.push_back({container.id, container.name, library.files(container.id)});
        }
        outcomes_ = activation.activate(fonts);
        for (std::size_t i = 0; i < outcomes_.size(); ++i) {
            answer.changed = answer.changed || outcomes_[i].changed;
            if (!outcomes_[i].success) {
                answer.problems.push_back(outcomes_[i].problem);
            } else if (outcomes_[i].changed) {
                answer.done.push_back("activated " + containers_[i].name + " (container " +
                                      toText(containers_[i].id) + ", " + containers_[i].path() +
                                      ")");
            }
        }
    }

    /// nullopt: the container is not in the batch.
    [[nodiscard]] std::optional<bool> succeeded(ContainerId id) const {
        const auto position = positions_.find(static_cast<std::int32_t>(id));
        if (position == positions_.end()) {
            return std::nullopt;
        }
        return outcomes_[position->second].success;
    }

private:
    std::vector<Container> containers_;
    std::unordered_map<std::int32_t, std::size_t> positions_;
    std::vector<ActivationOutcome> outcomes_;
};

// A font that nobody holds still needs a type in the reply; most fonts are of this one.
constexpr FontType typeOfUnknownFonts = FontType::openTypeTrueType;

void writeNames(ReplyText& reply, const CommandFont& asked, const std::vector<Candidate>& found) {
    if (asked.syncId) {
        reply.element("syncID", *asked.syncId);
    }
    const FontType type =
        found.empty() ? asked.type.value_or(typeOfUnknownFonts) : found.front().face.type;
    reply.element("type", typeKeyword(type));
    if (found.empty()) {
        reply.element("psName", asked.postScriptName.value_or(""));
        reply.element("styleName", asked.styleName.value_or(""));
        reply.element("familyName", asked.familyName.value_or(""));
    } else {
        const FaceMatch& face = found.front().face;
        // A face without a PostScript name keeps the one that it was asked for by.
        reply.element("psName", face.postScriptName.empty() ? asked.postScriptName.value_or("")
                                                            : face.postScriptName);
        reply.element("styleName", face.styleName);
        reply.element("familyName", face.familyName);
    }
    reply.element("count", found.size());
}

void writeFontRequestFont(ReplyText& reply, const CommandFont& asked,
                          const std::vector<Candidate>& found, const ActivationBatch& batch) {
    const auto isActive = [&](const Candidate& candidate) {
        return batch.succeeded(candidate.container.id).value_or(candidate.active);
    };
    const auto active = std::find_if(found.begin(), found.end(), isActive);
    const auto matching = std::find_if(found.begin(), found.end(),
                                       [](const Candidate& one) { return one.typeMatches; });
    const bool matchingActive = std::any_of(found.begin(), found.end(), [&](const Candidate& one) {
        return one.typeMatches && isActive(one);
    });
    reply.beginFont();
    writeNames(reply, asked, found);
    reply.flag("isActive", active != found.end());
    reply.element("typeMatchingCount",
                  std::count_if(found.begin(), found.end(),
                                [](const Candidate& one) { return one.typeMatches; }));
    reply.flag("isTypeMatchingActive", matchingActive);
    if (matching != found.end()) {
        reply.element("typeMatchingContainerID", toText(matching->container.id));
    }
    if (!found.empty()) {
        reply.element("containerID", toText(found.front().container.id));
    }
    if (found.size() == 1) {
        reply.flag("activationSuccessfull", active != found.end());
    }
    for (const Candidate& candidate : found) {
        reply.fontInfo(toText(candidate.container.id), CandidateFinder::describe(candidate));
    }
    reply.endFont();
}

/// Answers one command.
class Exchange {
public:
    Exchange(Library& library, Activation& activation, const Command& command, Answer& answer)
        : library_(library), activation_(activation), finder_(library, activation),
          command_(command), answer_(answer), reply_(command.word) {}

    std::string run() {
        switch (command_.kind) {
        case CommandKind::fontRequest:
            answerFontRequest();
            break;
        case CommandKind::activationRequest:
            answerActivationRequest();
            break;
        case CommandKind::showRequest:
        case CommandKind::buyRequest:
            answerWithoutActing();
            break;
        case CommandKind::unknown:
            answer_.problems.push_back("command, line 1: unknown command word '" + command_.word +
                                       "'");
            break;
        }
        for (const std::string& problem : answer_.problems) {
            reply_.element("error", problem);
        }
        return reply_.finish();
    }

private:
    void answerFontRequest() {
        std::vector<std::vector<Candidate>> found;
        found.reserve(command_.fonts.size());
        ActivationBatch batch;
        bool showWindow = false;
        for (const CommandFont& font : command_.fonts) {
            const auto& candidates = found.emplace_back(finder_.find(font));
            showWindow = showWindow || candidates.size() > 1;
            if (candidates.size() == 1 && !candidates.front().active) {
                batch.add(candidates.front().container);
            }
        }
        batch.run(library_, activation_, answer_);
        reply_.flag("showWindow", showWindow);
        for (std::size_t i = 0; i < found.size(); ++i) {
            writeFontRequestFont(reply_, command_.fonts[i], found[i], batch);
        }
    }

    void answerActivationRequest() {
        std::vector<std::optional<Container>> chosen;
        chosen.reserve(command_.fonts.size());
        ActivationBatch batch;
        for (const CommandFont& font : command_.fonts) {
            const auto& container = chosen.emplace_back(choose(font));
            if (container) {
                batch.add(*container);
            } else {
                answer_.problems.push_back("font '" + font.postScriptName.value_or("") +
                                           "', container '" + font.containerId.value_or("") +
                                           "': not in the library");
            }
        }
        batch.run(library_, activation_, answer_);
        for (std::size_t i = 0; i < chosen.size(); ++i) {
            const CommandFont& font = command_.fonts[i];
            reply_.beginFont();
            if (font.syncId) {
                reply_.element("syncID", *font.syncId);
            }
            reply_.element("psName", font.postScriptName.value_or(""));
            reply_.element("containerID",
                           chosen[i] ? toText(chosen[i]->id) : font.containerId.value_or(""));
            const bool success = chosen[i] && batch.succeeded(chosen[i]->id).value_or(false);
            reply_.flag("isActive", success);
            reply_.flag("activationSuccessfull", success);
            reply_.endFont();
        }
    }

    std::optional<Container> choose(const CommandFont& font) {
        if (const auto id = toContainerId(font.containerId.value_or(""))) {
            if (auto container = finder_.container(*id)) {
                return container;
            }
        }
        const auto candidates = finder_.find(font);
        return candidates.empty() ? std::nullopt : std::optional(candidates.front().container);
    }

    void answerWithoutActing() {
        reply_.flag("showWindow", false);
        for (const CommandFont& font : command_.fonts) {
            const auto candidates = finder_.find(font);
            reply_.beginFont();
            writeNames(reply_, font, candidates);
            if (!candidates.empty()) {
                reply_.flag("isActive", candidates.front().active);
                reply_.element("containerID", toText(candidates.front().container.id));
            }
            if (command_.kind == CommandKind::buyRequest) {
                reply_.flag("handled", false);
            }
            reply_.endFont();
        }
    }

    Library& library_;
    Activation& activation_;
    CandidateFinder finder_;
    const Command& command_;
    Answer& answer_;
    ReplyText reply_;
};

} // namespace

Answer answerCommand(Library& library, Activation& activation, std::string_view text) {
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
    answer.reply = Exchange(library, activation, command, answer).run();
    return answer;
}

std::string failureReply(std::string_view word, std::string_view problem) {
    ReplyText reply(word.empty() ? "error" : word);
    reply.element("error", problem);
    return reply.finish();
}

} // namespace manager
