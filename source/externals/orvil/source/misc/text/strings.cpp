// SPDX-License-Identifier: MIT
// One template per operation, for both widths of characters.
#include "misc/text/strings.h"

#include <cctype>
#include <cwctype>
#include <istream>
#include <sstream>

namespace Orvil {

namespace {

template <typename Char>
std::basic_string<Char> trimmed(std::basic_string_view<Char> text,
                                std::basic_string_view<Char> blanks) {
    const auto first = text.find_first_not_of(blanks);
    if (first == text.npos) {
        return {};
    }
    return std::basic_string<Char>(text.substr(first, text.find_last_not_of(blanks) - first + 1));
}

template <typename Char>
std::vector<std::basic_string<Char>>
split(std::basic_string_view<Char> text, std::basic_string_view<Char> separators, bool skipEmpty) {
    std::vector<std::basic_string<Char>> tokens;
    std::size_t start = 0;
    for (;;) {
        const auto end = std::min(text.find_first_of(separators, start), text.size());
        if (end > start || !skipEmpty) {
            tokens.emplace_back(text.substr(start, end - start));
        }
        if (end == text.size()) {
            return tokens;
        }
        start = end + 1;
    }
}

template <typename Char>
std::basic_string<Char> resized(const std::basic_string<Char>& text, std::size_t width, Char fill,
                                bool cut) {
    if (text.size() < width) {
        return std::basic_string<Char>(width - text.size(), fill) + text;
    }
    return cut ? text.substr(text.size() - width) : text;
}

template <typename Char>
std::basic_string<Char> restOf(std::basic_istream<Char>& stream) {
    std::basic_ostringstream<Char> content;
    // Inserting an empty buffer would count as a failure of the stream.
    if (stream.peek() != std::char_traits<Char>::eof()) {
        content << stream.rdbuf();
    }
    return std::move(content).str();
}

} // namespace

std::string trim(std::string_view text) {
    return trimmed<char>(text, " \t\r");
}
std::wstring trim(std::wstring_view text) {
    return trimmed<wchar_t>(text, L" \t\r");
}

void upCase(std::string& text) {
    for (char& character : text) {
        character = static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
    }
}

void upCase(std::wstring& text) {
    for (wchar_t& character : text) {
        character = static_cast<wchar_t>(std::towupper(static_cast<std::wint_t>(character)));
    }
}

bool compareCaseInsensitive(std::string a, std::string b) {
    upCase(a);
    upCase(b);
    return a == b;
}

bool compareCaseInsensitive(std::wstring a, std::wstring b) {
    upCase(a);
    upCase(b);
    return a == b;
}

std::vector<std::string> tokenize(std::string_view text, std::string_view separators,
                                  bool skipEmpty) {
    return split<char>(text, separators, skipEmpty);
}

std::vector<std::wstring> tokenize(std::wstring_view text, std::wstring_view separators,
                                   bool skipEmpty) {
    return split<wchar_t>(text, separators, skipEmpty);
}

std::string resize(const std::string& text, std::size_t width, char fill, bool cut) {
    return resized(text, width, fill, cut);
}

std::wstring resize(const std::wstring& text, std::size_t width, wchar_t fill, bool cut) {
    return resized(text, width, fill, cut);
}

std::string streamToString(std::istream& stream) {
    return restOf(stream);
}
std::wstring streamToWString(std::wistream& stream) {
    return restOf(stream);
}

} // namespace Orvil
