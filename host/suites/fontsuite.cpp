// SPDX-License-Identifier: MIT
// The suite that shows the host's fonts.
#include "ai/suites.h"
#include "host/core/guard.h"
#include "host/core/text.h"
#include "host/suites/artsuites.h"
#include "host/suites/textengine.h"

namespace host {

namespace {

/// Neither of the two known technologies: of a font that the host lacks nothing is known.
constexpr std::int32_t unknownTechnology = 2;

FontList& fontsOf(TextEngine& engine) {
    return engine.documents().fonts();
}

SPErr fontKeyFromFont(TextEngine& engine, ATE::FontRef font, AIFontKey* key) {
    const TextObject* const object = engine.use(font);
    if (object == nullptr) {
        return kBadParameterErr;
    }
    *key = FontList::handle(object->font);
    return kNoErr;
}

SPErr fontFromFontKey(TextEngine& engine, AIFontKey key, ATE::FontRef* font) {
    const FontEntry* const entry = fontsOf(engine).entry(key);
    if (entry == nullptr) {
        return kBadParameterErr;
    }
    TextObject object;
    object.font = entry->key;
    *font = engine.make<ATE::FontRef>(std::move(object));
    return kNoErr;
}

template <std::string InstalledFace::*text>
SPErr getName(TextEngine& engine, AIFontKey key, char* name, std::int32_t size) {
    const FontEntry* const entry = fontsOf(engine).entry(key);
    if (entry == nullptr || size < 1) {
        return kBadParameterErr;
    }
    copyText(entry->face.*text, name, size);
    return kNoErr;
}

SPErr getFontStyle(TextEngine& engine, AIFontKey key, AIFontStyleRecord* record) {
    const FontEntry* const entry = fontsOf(engine).entry(key);
    if (entry == nullptr) {
        return kBadParameterErr;
    }
    const bool known = entry->present && entry->origin == FaceOrigin::Named;
    record->technology =
        known ? static_cast<std::int32_t>(entry->face.technology) : unknownTechnology;
    record->isOpenType = known && entry->face.openType ? 1 : 0;
    record->isPresent = entry->present ? 1 : 0;
    return kNoErr;
}

SPErr findFont(TextEngine& engine, const char* name, std::int32_t technology, std::int32_t script,
               std::int32_t match, AIFontKey* key) {
    if (technology != kAIAnyFontTechnology || script != kAINoFontScript ||
        match != kAIMatchAllFontNames) {
        return kBadParameterErr;
    }
    const FontKey found = fontsOf(engine).find(name);
    if (found == noFont) {
        return kNoSuchFontErr;
    }
    *key = FontList::handle(found);
    return kNoErr;
}

SPErr countFonts(TextEngine& engine, std::int32_t* count) {
    *count = static_cast<std::int32_t>(fontsOf(engine).catalogue().faces().size());
    return kNoErr;
}

SPErr getNthFont(TextEngine& engine, std::int32_t n, AIFontKey* key) {
    const auto faces = fontsOf(engine).catalogue().faces();
    if (n < 0 || static_cast<std::size_t>(n) >= faces.size()) {
        return kBadParameterErr;
    }
    *key = FontList::handle(faces[static_cast<std::size_t>(n)]);
    return kNoErr;
}

constexpr AIFontSuite fontTable{
    Entry<AIFontSuite, "FontKeyFromFont", fontKeyFromFont>::call,
    Entry<AIFontSuite, "FontFromFontKey", fontFromFontKey>::call,
    Entry<AIFontSuite, "GetPostScriptFontName", &getName<&InstalledFace::postScriptName>>::call,
    Entry<AIFontSuite, "GetFontStyleName", &getName<&InstalledFace::style>>::call,
    Entry<AIFontSuite, "GetFontFamilyName", &getName<&InstalledFace::family>>::call,
    Entry<AIFontSuite, "GetUserFontName", &getName<&InstalledFace::fullName>>::call,
    Entry<AIFontSuite, "GetFontStyle", getFontStyle>::call,
    Entry<AIFontSuite, "FindFont", findFont>::call,
    Entry<AIFontSuite, "CountFonts", countFonts>::call,
    Entry<AIFontSuite, "GetNthFont", getNthFont>::call,
};

} // namespace

void provideFontSuite(SuiteRegistry& suites) {
    suites.provide(fontTable);
}

} // namespace host
