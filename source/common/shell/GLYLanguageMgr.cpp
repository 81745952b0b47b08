// SPDX-License-Identifier: MIT
// Choosing the string list, and reading it.
#include "GLYLanguageMgr.h"

#include "Plugin.h"
#include "suitepointers.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <type_traits>

namespace {

constexpr std::int32_t englishStrings = 17000;
constexpr std::int32_t germanStrings = 18000;

std::array<char, 64> appLocale() {
    std::array<char, 64> locale{};
    if (sADMHost == nullptr || sADMHost->GetAppLocale(locale.data(), locale.size()) != kNoErr) {
        locale.fill('\0');
    }
    return locale;
}

struct LocaleList {
    std::string_view locale;
    std::int32_t listID;
};

std::int32_t listOfLocale(std::string_view locale) {
    constexpr std::array lists{LocaleList{"de_DE", germanStrings},
                               LocaleList{"en_US", englishStrings}};
    const auto found = std::find_if(lists.begin(), lists.end(), [locale](const LocaleList& list) {
        return list.locale == locale;
    });
    // Every other locale reads English, Austrian German included.
    return found != lists.end() ? found->listID : englishStrings;
}

} // namespace

GLYLanguageMgr::GLYLanguageMgr() : listID_(listOfLocale(appLocale().data())) {}

GLYLanguageMgr* GLYLanguageMgr::getLanguageMgr() {
    static_assert(std::is_trivially_destructible_v<GLYLanguageMgr>, "it outlives every other user");
    static GLYLanguageMgr instance;
    return &instance;
}

std::string GLYLanguageMgr::getString(std::int32_t index) const {
    if (gPlugin == nullptr) {
        return {};
    }
    std::array<char, 1024> buffer{};
    if (sADMBasic->GetIndexString(gPlugin->GetPluginRef(), listID_, index, buffer.data(),
                                  buffer.size()) != kNoErr) {
        return "strtable error";
    }
    return buffer.data();
}
