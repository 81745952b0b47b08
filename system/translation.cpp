// SPDX-License-Identifier: MIT
// By gettext, in a locale that is there on every system and is left again after each text: all else
// in the process speaks English.
#include "system/translation.h"

#include <libintl.h>
#include <locale.h> // NOLINT(modernize-deprecated-headers): for locales of threads

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace sys {

namespace {

struct FreeLocale {
    void operator()(locale_t locale) const noexcept { freelocale(locale); }
};
using Locale = std::unique_ptr<std::remove_pointer_t<locale_t>, FreeLocale>;

/// While it lives, gettext looks at LANGUAGE: it does not in the locale "C".
class MessagesScope {
public:
    MessagesScope() noexcept : before_(uselocale(messages())) {}
    MessagesScope(const MessagesScope&) = delete;
    MessagesScope& operator=(const MessagesScope&) = delete;
    ~MessagesScope() { uselocale(before_); }

private:
    /// nullptr, which changes nothing, when there is no such locale.
    static locale_t messages() noexcept {
        static const Locale locale(newlocale(LC_MESSAGES_MASK, "C.UTF-8", nullptr));
        return locale.get();
    }

    locale_t before_;
};

struct ChosenLanguage {
    bool isOurs = false; ///< LANGUAGE was set here
    std::optional<std::string> before;
};

ChosenLanguage& chosen() {
    static ChosenLanguage language;
    return language;
}

std::optional<std::string> languageNow() {
    const char* const value = std::getenv("LANGUAGE"); // NOLINT(concurrency-mt-unsafe)
    return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

bool isPartOfName(char character) {
    return character == '_' || (character >= 'a' && character <= 'z') ||
           (character >= 'A' && character <= 'Z');
}

} // namespace

std::optional<std::string> userLanguage() {
    return chosen().isOurs ? chosen().before : languageNow();
}

void chooseLanguage(const char* domain, const char* catalogues, const std::string& locale) {
    if (!chosen().isOurs) {
        chosen() = {true, languageNow()};
    }
    // Of "de_AT:de_DE" or "de_DE@euro" gettext would try parts.
    const bool plain = std::all_of(locale.begin(), locale.end(), isPartOfName);
    setenv("LANGUAGE", plain ? locale.c_str() : "en", 1); // NOLINT(concurrency-mt-unsafe)
    bindtextdomain(domain, catalogueFolder(catalogues).c_str());
    bind_textdomain_codeset(domain, "UTF-8");
    textdomain(domain); // forgets what was looked up in another language
}

std::string translated(const char* domain, const char* text) {
    const MessagesScope scope;
    return *text != '\0' ? dgettext(domain, text) : ""; // an empty one stands for the file's head
}

std::string translated(const char* domain, const char* one, const char* several,
                       unsigned long number) {
    const MessagesScope scope;
    return dngettext(domain, one, several, number);
}

} // namespace sys
