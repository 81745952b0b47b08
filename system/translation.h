// SPDX-License-Identifier: MIT
// A program's texts in the user's language, from its message catalogue.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace sys {

/// [main-thread] From now on texts of `domain` are translated for `locale`, such as "de_DE", if
/// there is a catalogue of exactly that name in `catalogues`, seen from the folder above the
/// running program's: a window must not speak two languages. Else, and before the first call, texts
/// are as they stand in the sources. Sets the environment's LANGUAGE, which `userLanguage` still
/// knows: call it before there are other threads.
void chooseLanguage(const char* domain, const char* catalogues, const std::string& locale);

/// The environment's LANGUAGE as it was before the first `chooseLanguage`, nullopt when it was
/// unset: other programs that this one starts are to speak the user's language, not the
/// catalogue's.
[[nodiscard]] std::optional<std::string> userLanguage();

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

/// [main-thread] What to give `chooseLanguage`. The locale is that of LC_ALL, else LC_MESSAGES,
/// else LANG; empty ones do not count. In one that is not exactly "C", "POSIX" or unset, as gettext
/// has it ("C.UTF-8" is another), the first of the languages in LANGUAGE, split by colons, that is
/// English or has a catalogue, and English when none has; without LANGUAGE the locale's own. A
/// catalogue of another country serves: "de_DE" for "de" and "de_AT". Ask before `chooseLanguage`
/// sets LANGUAGE.
[[nodiscard]] std::string languageOfEnvironment(const char* domain, const char* catalogues);

} // namespace sys
