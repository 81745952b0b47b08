// SPDX-License-Identifier: MIT
#include "manager/view/texts.h"

#include "system/translation.h"

namespace manager {

namespace {

constexpr const char* domain = "glyphora";

} // namespace

void chooseLanguage(const std::string& locale) {
    sys::chooseLanguage(domain, CATALOGUES, locale);
}

void chooseUsersLanguage() {
    chooseLanguage(sys::languageOfEnvironment(domain, CATALOGUES));
}

std::string translated(const char* text) {
    return sys::translated(domain, text);
}

std::string translated(const char* one, const char* several, std::size_t number) {
    std::string text = sys::translated(domain, one, several, number);
    if (const std::size_t place = text.find("%1"); place != std::string::npos) {
        text.replace(place, 2, std::to_string(number));
    }
    return text;
}

std::string filled(std::string_view text, std::initializer_list<std::string_view> values) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char next = i + 1 < text.size() ? text[i + 1] : '\0';
        if (text[i] == '%' && next > '0' && next <= '9') {
            result += values.begin()[next - '1'];
            ++i;
        } else {
            result += text[i];
        }
    }
    return result;
}

} // namespace manager
