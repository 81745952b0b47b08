// SPDX-License-Identifier: MIT
#include "manager/view/tagnames.h"

#include <unicode/locid.h>
#include <unicode/unistr.h>

namespace manager {

namespace {

std::string orCode(const icu::UnicodeString& name, const std::string& code) {
    std::string text;
    name.toUTF8String(text);
    return text.empty() ? code : text;
}

} // namespace

std::string languageName(const std::string& code, const std::string& locale) {
    icu::UnicodeString name;
    icu::Locale(code.c_str()).getDisplayName(icu::Locale(locale.c_str()), name);
    return orCode(name, code);
}

std::string scriptName(const std::string& code, const std::string& locale) {
    icu::UnicodeString name;
    icu::Locale(("und_" + code).c_str()).getDisplayScript(icu::Locale(locale.c_str()), name);
    return orCode(name, code);
}

} // namespace manager
