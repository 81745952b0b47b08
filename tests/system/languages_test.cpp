// SPDX-License-Identifier: MIT
#include "system/translation.h"
#include "tests/support/temporaryfolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

using testsupport::Variable;

TEST(TheLanguage, IsTheFirstAskedForThatThereIs) {
    const testsupport::TemporaryFolder folder;
    const std::filesystem::path catalogues = folder.path();
    for (const char* const name : {"de_DE/LC_MESSAGES/app.mo", "de_CH/LC_MESSAGES/app.mo",
                                   "fr/LC_MESSAGES/other.mo", "it_IT/LC_MESSAGES/app.mo"}) {
        create_directories((catalogues / name).parent_path());
        std::ofstream(catalogues / name) << "catalogue";
    }
    const Variable messages("LC_MESSAGES", std::nullopt);
    const Variable lang("LANG", std::nullopt);
    const struct {
        const char* locale;
        const char* languages;
        const char* chosen;
    } cases[] = {
        {"de_DE.UTF-8", "", "de_DE"},
        {"it_CH.UTF-8", "", "it_IT"},
        {"de_AT", "", "de_CH"},
        {"fr_FR", "", "fr_FR"},
        {"C.UTF-8", "", "en_US"},
        {"C.UTF-8", "it", "it_IT"},
        {"en_US.UTF-8", "it_CH", "it_IT"},
        {"en_US", "de_DE.UTF-8@euro", "de_DE"},
        {"en_US", "fr:it:de", "it_IT"},
        {"it_IT", "fr:en_GB:de", "en_GB"},
        {"it_IT", "fr:ja", "en_US"},
        {"en_US", ":it", "it_IT"},
        {"it_IT", "C:de", "en_US"},
        {"C", "it", "en_US"},
        {"POSIX", "it", "en_US"},
        {"", "it", "en_US"},
    };
    for (const auto& [locale, languages, chosen] : cases) {
        const Variable all("LC_ALL", locale);
        const Variable language("LANGUAGE", languages);
        EXPECT_EQ(sys::languageOfEnvironment("app", catalogues.c_str()), chosen)
            << locale << ' ' << languages;
    }
    const Variable all("LC_ALL", "it_IT");
    EXPECT_EQ(sys::languageOfEnvironment("app", "/nowhere/at/all"), "it_IT");
}

TEST(TheLanguage, IsThatOfTheFirstVariableThatIsSet) {
    const Variable language("LANGUAGE", std::nullopt);
    const Variable lang("LANG", "fr_FR");
    const Variable messages("LC_MESSAGES", "it_IT");
    const struct {
        const char* all;
        const char* messages;
        const char* chosen;
    } cases[] = {{"de_DE.UTF-8", "it_IT", "de_DE"}, {"", "it_IT", "it_IT"}, {"", "", "fr_FR"}};
    for (const auto& [all, ofMessages, chosen] : cases) {
        const Variable first("LC_ALL", all);
        const Variable second("LC_MESSAGES", ofMessages);
        EXPECT_EQ(sys::languageOfEnvironment("app", "/nowhere/at/all"), chosen);
    }
}

} // namespace
