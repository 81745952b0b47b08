// SPDX-License-Identifier: MIT
// Reading scripts.
#include "host/adm/answers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>

namespace host {

namespace {

enum class Argument : std::uint8_t { None, Text, Number, Seconds };

struct Syntax {
    std::string_view words;
    Answer::Kind kind;
    Argument argument;
};

using Kind = Answer::Kind;
/// The first that fits counts.
constexpr std::array<Syntax, 12> commands{{{"select none", Kind::SelectNone, Argument::None},
                                           {"select", Kind::Select, Argument::Text},
                                           {"also", Kind::Also, Argument::Text},
                                           {"choose", Kind::Choose, Argument::Text},
                                           {"expand", Kind::Expand, Argument::Text},
                                           {"collapse", Kind::Collapse, Argument::Text},
                                           {"press", Kind::Press, Argument::Number},
                                           {"double-click", Kind::DoubleClick, Argument::Text},
                                           {"wait for news", Kind::WaitForNews, Argument::Seconds},
                                           {"wait for end", Kind::WaitForEnd, Argument::Seconds},
                                           {"undo", Kind::Undo, Argument::None},
                                           {"redo", Kind::Redo, Argument::None}}};

constexpr std::int32_t defaultSeconds = 30;
constexpr std::int32_t greatestNumber = 1'000'000;
constexpr std::string_view blanks = " \t\r";

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

/// What follows the command's words; nothing when it is another command.
std::optional<std::string_view> argumentOf(std::string_view line, const Syntax& syntax) {
    if (line.substr(0, syntax.words.size()) != syntax.words) {
        return std::nullopt;
    }
    const std::string_view rest = line.substr(syntax.words.size());
    if (!rest.empty() && blanks.find(rest.front()) == std::string_view::npos) {
        return std::nullopt;
    }
    return trimmed(rest);
}

/// nullptr, or what the argument lacks.
const char* takeArgument(std::string_view argument, const Syntax& syntax, Answer& answer) {
    switch (syntax.argument) {
    case Argument::None:
        return nullptr;
    case Argument::Text:
        answer.text = argument;
        return argument.empty() ? "the row's text is missing" : nullptr;
    case Argument::Seconds:
        answer.number = defaultSeconds;
        if (argument.empty()) {
            return nullptr;
        }
        break;
    case Argument::Number:
        break;
    }
    const char* const end = argument.data() + argument.size();
    const auto [stop, error] = std::from_chars(argument.data(), end, answer.number);
    const bool good = error == std::errc() && stop == end && answer.number >= 1 &&
                      answer.number <= greatestNumber;
    return good ? nullptr : "a number from 1 to 1000000 must follow";
}

std::optional<Answer> readLine(std::string_view line, const std::string& place) {
    if (line.empty() || line.front() == '#') {
        return std::nullopt;
    }
    for (const Syntax& syntax : commands) {
        const auto argument = argumentOf(line, syntax);
        if (!argument || (syntax.argument == Argument::None && !argument->empty())) {
            continue;
        }
        Answer answer{syntax.kind, {}, 0, place};
        if (const char* const problem = takeArgument(*argument, syntax, answer)) {
            throw AnswersError(place + ": " + std::string(syntax.words) + ": " + problem);
        }
        return answer;
    }
    throw AnswersError(place + ": there is no command \"" + std::string(line) + "\"");
}

} // namespace

std::vector<Answer> readAnswers(std::string_view content, std::string_view file) {
    std::vector<Answer> answers;
    for (std::size_t number = 1; !content.empty(); ++number) {
        const std::string_view line = content.substr(0, content.find('\n'));
        content.remove_prefix(std::min(line.size() + 1, content.size()));
        if (auto answer =
                readLine(trimmed(line), std::string(file) + ":" + std::to_string(number))) {
            answers.push_back(std::move(*answer));
        }
    }
    return answers;
}

std::vector<Answer> readAnswers(const std::filesystem::path& file) {
    std::ifstream stream;
    if (std::error_code ignored; !std::filesystem::is_directory(file, ignored)) {
        stream.open(file, std::ios::binary);
    }
    const std::string content{std::istreambuf_iterator<char>(stream), {}};
    if (!stream.is_open() || stream.bad()) {
        throw AnswersError(file.string() + ": cannot be read");
    }
    return readAnswers(content, file.string());
}

} // namespace host
