// SPDX-License-Identifier: MIT
// Line by line through a command.
#include "manager/exchange/commandtext.h"

#include "manager/library/fields.h"

#include <array>
#include <utility>

namespace manager {

namespace {

constexpr std::array<std::pair<std::string_view, CommandKind>, 4> commandWords = {{
    {"fontRequest", CommandKind::FontRequest},
    {"activationRequest", CommandKind::ActivationRequest},
    {"showRequest", CommandKind::ShowRequest},
    {"buyRequest", CommandKind::BuyRequest},
}};

constexpr std::array<std::pair<std::string_view, faces::Technology>, 4> typeKeywords = {{
    {"T1", faces::Technology::Type1},
    {"TT", faces::Technology::TrueType},
    {"OT_T1", faces::Technology::OpenTypePostScript},
    {"OT_TT", faces::Technology::OpenTypeTrueType},
}};

constexpr std::size_t maximumProblems = 100;

struct Element {
    std::string_view name;
    std::string_view value;
};

bool isNameCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

class CommandReader {
public:
    explicit CommandReader(std::string_view text) : rest_(text) {}

    Command read() {
        readHeader();
        for (;;) {
            const std::string_view line = nextLine("</cmd>");
            if (line == "</cmd>") {
                break;
            }
            if (line == "<font>") {
                readFontOrPassOver();
                continue;
            }
            readTopElement(element(line));
        }
        while (!rest_.empty()) {
            if (!takeLine().empty()) {
                throw wrong("text after the closing </cmd>");
            }
        }
        tellOfTheRest();
        return std::move(command_);
    }

private:
    [[nodiscard]] MalformedCommand wrong(const std::string& what) const {
        return {line_, what, command_.word};
    }

    std::string_view takeLine() {
        ++line_;
        const std::size_t end = rest_.find('\n');
        last_ = rest_.substr(0, end);
        rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
        return last_;
    }

    // Throws when the text ends before `expected` came.
    std::string_view nextLine(const char* expected) {
        if (rest_.empty()) {
            ++line_;
            throw wrong(std::string("the text ends, expected ") + expected);
        }
        return takeLine();
    }

    [[nodiscard]] Element element(std::string_view line) const {
        std::size_t end = 1;
        while (end < line.size() && isNameCharacter(line[end])) {
            ++end;
        }
        if (!line.starts_with('<') || end == 1 || end == line.size() || line[end] != '>') {
            throw wrong("expected an element");
        }
        const std::string_view name = line.substr(1, end - 1);
        const std::string_view value = line.substr(end + 1);
        const std::size_t closing = name.size() + 3;
        if (value.size() < closing || !value.ends_with('>') ||
            value.substr(value.size() - closing, 2) != "</" ||
            value.substr(value.size() - closing + 2, name.size()) != name) {
            throw wrong("expected </" + std::string(name) + "> at the end");
        }
        return {name, value.substr(0, value.size() - closing)};
    }

    void readHeader() {
        const Element header = element(nextLine("<cmd>"));
        if (header.name != "cmd" || header.value.empty()) {
            throw wrong("expected <cmd> with a command word");
        }
        command_.word = header.value;
        for (const auto& [word, kind] : commandWords) {
            if (word == header.value) {
                command_.kind = kind;
            }
        }
    }

    void readTopElement(const Element& element) {
        if (element.name == "targetPid") {
            const auto pid = toNumber<std::int32_t>(element.value);
            if (!pid || *pid < 1) {
                throw wrong("expected a process id in <targetPid>");
            }
            command_.targetPid = *pid;
        } else if (element.name == "targetClass") {
            if (element.value.size() != 4) {
                throw wrong("expected four bytes in <targetClass>");
            }
            command_.targetClass = element.value;
        }
    }

    [[nodiscard]] std::optional<faces::Technology> fontType(std::string_view keyword) const {
        for (const auto& [text, type] : typeKeywords) {
            if (text == keyword) {
                return type;
            }
        }
        if (keyword != "all") {
            throw wrong("unknown type in <type>");
        }
        return std::nullopt;
    }

    std::optional<std::string>* field(CommandFont& font, std::string_view name) {
        static constexpr std::array<
            std::pair<std::string_view, std::optional<std::string> CommandFont::*>, 5>
            fields = {{{"syncID", &CommandFont::syncId},
                       {"psName", &CommandFont::postScriptName},
                       {"familyName", &CommandFont::familyName},
                       {"styleName", &CommandFont::styleName},
                       {"containerID", &CommandFont::containerId}}};
        for (const auto& [text, member] : fields) {
            if (text == name) {
                return &(font.*member);
            }
        }
        return nullptr;
    }

    void passOverFont() {
        while (last_ != "</font>") {
            nextLine("</font>");
        }
    }

    void readFontOrPassOver() {
        if (++named_ > maximumFonts) {
            passOverFont();
            return;
        }
        try {
            readFont();
        } catch (const MalformedCommand& malformed) {
            if (rest_.empty()) {
                throw;
            }
            command_.fonts.pop_back();
            if (++malformed_ <= maximumProblems) {
                command_.problems.emplace_back(malformed.what());
            }
            passOverFont();
        }
    }

    void tellOfTheRest() {
        if (malformed_ > maximumProblems) {
            command_.problems.push_back("command: malformed fonts: and " +
                                        std::to_string(malformed_ - maximumProblems) + " more");
        }
        if (named_ > maximumFonts) {
            command_.problems.push_back(
                "command: " + std::to_string(named_) + " fonts; those beyond the first " +
                std::to_string(maximumFonts) + " are passed over, ask for them by another command");
        }
    }

    void readFont() {
        CommandFont& font = command_.fonts.emplace_back();
        bool typed = false;
        for (;;) {
            const std::string_view line = nextLine("</font>");
            if (line == "</font>") {
                break;
            }
            const Element child = element(line);
            std::optional<std::string>* target = field(font, child.name);
            if (child.name == "type" ? typed : target != nullptr && target->has_value()) {
                throw wrong("a second <" + std::string(child.name) + "> in a font");
            }
            if (target != nullptr) {
                *target = child.value;
            } else if (child.name == "type") {
                typed = true;
                font.type = fontType(child.value);
            }
        }
        checkFont(font);
    }

    void checkFont(const CommandFont& font) const {
        if (command_.kind == CommandKind::FontRequest && !font.syncId) {
            throw wrong("a font without <syncID>");
        }
        const bool named = font.postScriptName ||
                           (command_.kind == CommandKind::FontRequest && font.familyName) ||
                           (command_.kind == CommandKind::ActivationRequest && font.containerId);
        if (command_.kind != CommandKind::Unknown && !named) {
            throw wrong("a font without <psName>");
        }
    }

    std::string_view rest_;
    std::string_view last_;
    std::size_t line_ = 0;
    std::size_t named_ = 0; ///< fonts, whether they could be read or not
    std::size_t malformed_ = 0;
    Command command_;
};

} // namespace

Command parseCommand(std::string_view text) {
    return CommandReader(text).read();
}

std::string_view typeKeyword(faces::Technology type) {
    for (const auto& [text, value] : typeKeywords) {
        if (value == type) {
            return text;
        }
    }
    return {};
}

} // namespace manager
