// SPDX-License-Identifier: MIT
// The host's own texts: in the language that a plug-in is told, or in English.
#include "host/core/translation.h"
#include "tests/host/core/recordingfrontend.h"

#include <cstring>

namespace host::test {
namespace {

TEST(ATranslation, IsOfExactlyTheLocaleThatPluginsAreTold) {
    for (const std::string locale : {"de_DE", "en_US", "de_DE", "de_AT", "de", "de_DE.UTF-8",
                                     "de_DE@euro", "de_AT:de_DE", ""}) {
        SCOPED_TRACE(locale);
        RecordingFrontend frontend;
        const Core core(frontend, {locale});
        EXPECT_EQ(translated("Missing fonts"),
                  locale == "de_DE" ? "Fehlende Schriften" : "Missing fonts");
    }
}

TEST(ATranslation, LeavesOtherTextsAsTheyAre) {
    chooseLanguage("de_DE");
    for (const char* const text : {"", "of no catalogue", "%s", "\xC3\xA4"}) {
        EXPECT_EQ(translated(text), text);
    }
}

} // namespace
} // namespace host::test
