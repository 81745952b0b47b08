// SPDX-License-Identifier: MIT
#include "host/core/translation.h"

#include "system/translation.h"

namespace host {

namespace {

constexpr const char* domain = "glyphora-host";

} // namespace

void chooseLanguage(const std::string& locale) {
    sys::chooseLanguage(domain, CATALOGUES, locale);
}

std::string languageOfEnvironment() {
    return sys::languageOfEnvironment(domain, CATALOGUES);
}

std::string translated(const char* text) {
    return sys::translated(domain, text);
}

} // namespace host
