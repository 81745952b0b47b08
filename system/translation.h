// SPDX-License-Identifier: MIT
// A program's texts in the user's language, from its message catalogue.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace sys {

/// [main-thread] From now on texts of `domain` are translated for `locale`, such as "de_DE", if
/// there is a catalogue of exactly that name in `catalogues`, seen from the folder above the
/// running program's: a window must not speak two languages. Else, and before the first call, texts
/// are as they stand in the sources. Sets the environment's LANGUAGE: call it before there are
/// other threads.
void chooseLanguage(const char* domain, const char* catalogues, const std::string& locale);

/// [main-thread] `text` in the language that was chosen.
[[nodiscard]] std::string translated(const char* domain, const char* text);
/// [main-thread] The form of it that goes with `number`.
[[nodiscard]] std::string translated(const char* domain, const char* one, const char* several,
                                     unsigned long number);

/// Where the message catalogues are: `catalogues`, seen from the folder above the program's.
[[nodiscard]] std::filesystem::path catalogueFolder(const char* catalogues);

/// The part of a locale's name that catalogues have: "de_DE" of "de_DE.UTF-8@euro"; "en_US" for
/// "C", "POSIX" and nothing.
[[nodiscard]] std::string localeCode(std::string_view name);

/// From LC_ALL, else LC_MESSAGES, else LANG; empty ones do not count.
[[nodiscard]] std::string localeOfEnvironment();

/// [main-thread] What to give `chooseLanguage`: in a locale that is not exactly "C", "POSIX" or
/// unset, as gettext has it ("C.UTF-8" is another), the first of the languages in LANGUAGE, split
/// by colons, that is English or has a catalogue, and English when none has; without LANGUAGE the
/// locale's own. A catalogue of another country serves: "de_DE" for "de" and "de_AT". Ask before
/// `chooseLanguage` sets LANGUAGE.
[[nodiscard]] std::string languageOfEnvironment(const char* domain, const char* catalogues);

} // namespace sys
