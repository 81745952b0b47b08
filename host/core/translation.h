// SPDX-License-Identifier: MIT
// The host's own texts in the user's language, from the message catalogues in po/.
#pragma once

#include <string>

namespace host {

/// [main-thread] From now on texts are translated for `locale`, such as "de_DE", if there is a
/// catalogue of exactly that name: a window must not speak two languages, and plug-ins are not told
/// of any other. Else, and before the first call, texts are as they stand in the sources. Sets the
/// environment's LANGUAGE: call it before there are other threads.
void chooseLanguage(const std::string& locale);

/// [main-thread] Which locale's catalogue the environment asks for; see sys::languageOfEnvironment.
[[nodiscard]] std::string languageOfEnvironment();

/// [main-thread] `text` in the language that was chosen. Only windows and dialogs are translated:
/// the report and messages of errors are English. (po/CMakeLists.txt knows this name as that which
/// marks texts.)
[[nodiscard]] std::string translated(const char* text);

} // namespace host
