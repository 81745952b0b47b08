// SPDX-License-Identifier: MIT
// The window's texts in the user's language, where there is a message catalogue of it.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace manager {

/// [main-thread] Before there are other threads; see sys::chooseLanguage.
void chooseLanguage(const std::string& locale);
/// [main-thread] The same for the language that the environment asks for; see
/// sys::languageOfEnvironment.
void chooseUsersLanguage();

/// [main-thread] `text` in the language that was chosen.
[[nodiscard]] std::string translated(const char* text);
/// [main-thread] The form that goes with `number`, in which "%1" stands for it.
[[nodiscard]] std::string translated(const char* one, const char* several, std::size_t number);
/// `text` with `values` in place of its "%1", "%2" and so on; there is one for each.
[[nodiscard]] std::string filled(std::string_view text,
                                 std::initializer_list<std::string_view> values);

} // namespace manager
