// SPDX-License-Identifier: MIT
// Trimming, splitting, padding and number parsing: what must hold for every text. Numbers are
// compared with a stream in the classic locale.
#include "fuzz/require.h"
#include "misc/text/numbers.h"
#include "misc/text/strings.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

using namespace Orvil;

namespace {

template <typename T>
void checkNumber(const std::string& text) {
    std::istringstream stream(text);
    T expected{};
    const bool expectedOk = static_cast<bool>(stream >> expected);
    bool ok = !expectedOk;
    const T value = safeParse<T>(text, ok);
    REQUIRE(ok == expectedOk);
    REQUIRE(value == (ok ? expected : T{}));
    if (ok) {
        REQUIRE(parse<T>(toString(value, 0, 17)) == value);
    }
}

void checkTokens(const std::string& text, const std::string& separators) {
    const std::vector<std::string> all = tokenize(text, separators, false);
    std::vector<std::string> filled;
    std::size_t length = all.size() - 1;
    for (const std::string& token : all) {
        REQUIRE(token.find_first_of(separators) == token.npos);
        length += token.size();
        if (!token.empty()) {
            filled.push_back(token);
        }
    }
    REQUIRE(length == text.size());
    REQUIRE(tokenize(text, separators, true) == filled);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    checkNumber<int>(text);
    checkNumber<unsigned>(text);
    checkNumber<long long>(text);
    checkNumber<unsigned long long>(text);
    checkNumber<float>(text);
    checkNumber<double>(text);

    const std::string trimmed = trim(text);
    REQUIRE(trim(trimmed) == trimmed);
    REQUIRE(text.find(trimmed) != text.npos);
    REQUIRE(trimmed.empty() || std::string(" \t\r").find(trimmed.front()) == std::string::npos);
    bool ok = false;
    const bool value = safeParse<bool>(text, ok);
    REQUIRE(!value || ok);
    REQUIRE(!ok || (!trimmed.empty() && trimmed.size() <= 5));

    checkTokens(text, " ,;");
    checkTokens(text, text.substr(0, 2));
    const std::size_t width = size == 0 ? 0 : data[0];
    REQUIRE(resize(text, width, '0', true).size() == width);
    REQUIRE(resize(text, width, '0', false).size() == std::max(width, size));
    std::string upper = text;
    upCase(upper);
    REQUIRE(compareCaseInsensitive(text, upper));
    return 0;
}
