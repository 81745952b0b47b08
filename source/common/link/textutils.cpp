// SPDX-License-Identifier: MIT
// Splitting, trimming and reading of small texts.
#include "textutils.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace GLY {

namespace {

template <typename T>
T extract(std::string_view text, std::ios_base::fmtflags base) {
    std::istringstream stream{std::string(text)};
    stream.imbue(std::locale::classic());
    stream.setf(base, std::ios_base::basefield);
    T value{};
    stream >> value; // a failure leaves 0, or the limit that was exceeded
    return value;
}

} // namespace

void showErrorMessage(std::string /*text*/) {} // NOLINT(performance-unnecessary-value-param)

std::string extractFilename(std::string_view path) {
    return std::string(path.substr(path.find_last_of("/\\") + 1)); // npos + 1 is 0
}

std::vector<std::string> tokenize(std::string_view text, std::string_view delimiter,
                                  bool /*flag*/) {
    std::vector<std::string> pieces;
    if (!delimiter.empty()) {
        for (std::size_t end = text.find(delimiter); end != std::string_view::npos;
             end = text.find(delimiter)) {
            pieces.emplace_back(text.substr(0, end));
            text.remove_prefix(end + delimiter.size());
        }
    }
    pieces.emplace_back(text);
    return pieces;
}

std::string trim(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return std::string(text.substr(first, text.find_last_not_of(blanks) - first + 1));
}

template <>
int parse<int>(std::string_view text) {
    return extract<int>(text, std::ios_base::dec);
}

template <>
bool parse<bool>(std::string_view text) {
    return extract<bool>(text, std::ios_base::dec);
}

template <>
int parseHex<int>(std::string_view text) {
    return extract<int>(text, std::ios_base::hex);
}

Color::Color(std::string_view text) {
    constexpr std::size_t hexadecimalLength = 7;
    constexpr float scale = 0.00390625F;
    std::array<int, 3> numbers{};
    if (const auto pieces = tokenize(text.substr(std::min<std::size_t>(1, text.size())), ":");
        pieces.size() == numbers.size()) {
        std::transform(pieces.begin(), pieces.end(), numbers.begin(),
                       [](const std::string& piece) { return parse<int>(piece); });
    } else if (text.size() == hexadecimalLength) {
        numbers = {parseHex<int>(text.substr(1, 2)), parseHex<int>(text.substr(3, 2)),
                   parseHex<int>(text.substr(5, 2))};
    }
    // 256 is out of range too, though it scales to 1.0.
    if (std::any_of(numbers.begin(), numbers.end(), [](int number) { return number >= 256; })) {
        outOfRange = 1;
        return;
    }
    red = static_cast<float>(numbers[0]) * scale;
    green = static_cast<float>(numbers[1]) * scale;
    blue = static_cast<float>(numbers[2]) * scale;
}

} // namespace GLY
