// SPDX-License-Identifier: MIT
// Reading string lists.
#include "host/core/stringlists.h"

#include "host/core/text.h"

#include <charconv>
#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>

namespace host {

namespace {

std::string_view trim(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// Nothing when an escape is unknown or cut off.
std::optional<std::string> resolveEscapes(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            result += text[i];
            continue;
        }
        ++i;
        if (i == text.size() || (text[i] != 'n' && text[i] != '\\')) {
            return std::nullopt;
        }
        result += text[i] == 'n' ? '\n' : '\\';
    }
    return result;
}

/// Reads one line into the list and says what is wrong with it; empty when nothing is.
std::string_view readLine(std::string_view line, StringList& list) {
    line = trim(line);
    if (line.empty() || line.front() == '#') {
        return {};
    }
    if (!isUtf8(line)) {
        return "not valid UTF-8";
    }
    const std::size_t sign = line.find('=');
    if (sign == std::string_view::npos) {
        return "expected \"index = text\"";
    }
    const std::string_view number = trim(line.substr(0, sign));
    std::int32_t index = 0;
    const auto [stop, error] = std::from_chars(number.data(), number.data() + number.size(), index);
    if (error != std::errc() || stop != number.data() + number.size() || index < 1) {
        return "the index is not a number from 1";
    }
    auto text = resolveEscapes(trim(line.substr(sign + 1)));
    if (!text) {
        return "unknown escape; only \\n and \\\\ are known";
    }
    return list.emplace(index, std::move(*text)).second ? "" : "the index stands here twice";
}

} // namespace

StringList readStringList(std::string_view content, std::string_view file,
                          const std::function<void(std::string_view)>& problem) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (content.starts_with(byteOrderMark)) {
        content.remove_prefix(byteOrderMark.size());
    }
    StringList list;
    for (std::size_t lineNumber = 1; !content.empty(); ++lineNumber) {
        const std::size_t end = content.find('\n');
        const std::string_view line = content.substr(0, end);
        content = end == std::string_view::npos ? "" : content.substr(end + 1);
        const std::string_view fault = readLine(line, list);
        if (!fault.empty()) {
            problem(std::string(file) + ":" + std::to_string(lineNumber) + ": " +
                    std::string(fault));
        }
    }
    return list;
}

StringLists::StringLists(std::filesystem::path folder, Problem problem)
    : folder_(std::move(folder)), problem_(std::move(problem)) {}

const std::string* StringLists::find(std::int32_t list, std::int32_t index) {
    auto known = lists_.find(list);
    if (known == lists_.end()) {
        known = lists_.emplace(list, load(list)).first;
    }
    const auto entry = known->second.find(index);
    return entry == known->second.end() ? nullptr : &entry->second;
}

StringList StringLists::load(std::int32_t list) const {
    if (folder_.empty()) {
        return {};
    }
    const std::filesystem::path file = folder_ / (std::to_string(list) + ".strings");
    std::error_code ignored;
    if (!std::filesystem::exists(file, ignored)) {
        return {}; // asking for a list that is not there is a plug-in's way to find out
    }
    std::ifstream stream;
    if (std::filesystem::is_regular_file(file, ignored)) {
        stream.open(file, std::ios::binary);
    }
    const std::string content{std::istreambuf_iterator<char>(stream), {}};
    if (!stream.is_open() || stream.bad()) {
        problem_(file.string() + ": cannot be read");
        return {};
    }
    return readStringList(content, file.string(), problem_);
}

} // namespace host
