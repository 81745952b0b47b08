// SPDX-License-Identifier: MIT
// The text engine's view of fonts: inspectors, font arrays, fonts, and features to apply.
#include "ate/suites.h"
#include "host/core/guard.h"
#include "host/suites/textengine.h"

#include <algorithm>
#include <unordered_set>

namespace host {

namespace {

/// Fills an array with the distinct fonts of some runs, in text order; runs that nobody sees have
/// none. The array is a copy, so that it survives the replacement of what it tells about.
void collectFonts(TextEngine& engine, const TextObject& runs, TextObject& array) {
    OpenDocument& document = *engine.documents().find(runs.document);
    FontList& fonts = engine.documents().fonts();
    std::unordered_set<FontKey> seen;
    for (RunId id = runs.first; id < runs.end; ++id) {
        const TextRun& run = document.document().runs()[id];
        if (!run.visible) {
            continue;
        }
        const FontKey font = document.fontOf(run.face, fonts);
        if (array.font == noFont) {
            array.font = font;
        } else if (font != array.font && seen.insert(font).second) {
            array.furtherFonts.push_back(font);
        }
    }
}

SPErr getFont(TextEngine& engine, ATE::CharInspectorRef inspector, ATE::ArrayFontRefRef* fonts) {
    const TextObject* const object = engine.use(inspector);
    if (object == nullptr) {
        return kBadParameterErr;
    }
    TextObject array;
    collectFonts(engine, *object, array);
    *fonts = engine.make<ATE::ArrayFontRefRef>(std::move(array));
    return kNoErr;
}

std::size_t sizeOf(const TextObject& array) {
    return array.font == noFont ? 0 : 1 + array.furtherFonts.size();
}

SPErr getSize(TextEngine& engine, ATE::ArrayFontRefRef array, std::int32_t* size) {
    const TextObject* const object = engine.use(array);
    if (object == nullptr) {
        return kBadParameterErr;
    }
    *size = static_cast<std::int32_t>(sizeOf(*object));
    return kNoErr;
}

SPErr item(TextEngine& engine, ATE::ArrayFontRefRef array, std::int32_t index, ATE::FontRef* font) {
    const TextObject* const object = engine.use(array);
    if (object == nullptr || index < 0 || static_cast<std::size_t>(index) >= sizeOf(*object)) {
        return kBadParameterErr;
    }
    TextObject result;
    result.font =
        index == 0 ? object->font : object->furtherFonts[static_cast<std::size_t>(index) - 1];
    *font = engine.make<ATE::FontRef>(std::move(result));
    return kNoErr;
}

SPErr createFeatures(TextEngine& engine, ATE::CharFeaturesRef* features) {
    *features = engine.make<ATE::CharFeaturesRef>(TextObject{});
    return kNoErr;
}

SPErr setFont(TextEngine& engine, ATE::CharFeaturesRef features, ATE::FontRef font) {
    TextObject* const set = engine.use(features);
    const TextObject* const object = engine.use(font);
    if (set == nullptr || object == nullptr) {
        return kBadParameterErr;
    }
    set->font = object->font;
    return kNoErr;
}

using Inspector = ATE::CharInspectorRef;
using FontArray = ATE::ArrayFontRefRef;
using Features = ATE::CharFeaturesRef;

constexpr ATE::CharInspectorSuite inspectorTable{
    Entry<ATE::CharInspectorSuite, "AddRef", &TextEngine::addRef<Inspector>>::call,
    Entry<ATE::CharInspectorSuite, "Release", &TextEngine::release<Inspector>>::call,
    Entry<ATE::CharInspectorSuite, "GetFont", getFont>::call,
};
constexpr ATE::ArrayFontRefSuite arrayTable{
    Entry<ATE::ArrayFontRefSuite, "AddRef", &TextEngine::addRef<FontArray>>::call,
    Entry<ATE::ArrayFontRefSuite, "Release", &TextEngine::release<FontArray>>::call,
    Entry<ATE::ArrayFontRefSuite, "GetSize", getSize>::call,
    Entry<ATE::ArrayFontRefSuite, "Item", item>::call,
};
constexpr ATE::FontSuite fontTable{
    Entry<ATE::FontSuite, "AddRef", &TextEngine::addRef<ATE::FontRef>>::call,
    Entry<ATE::FontSuite, "Release", &TextEngine::release<ATE::FontRef>>::call,
};
constexpr ATE::CharFeaturesSuite featuresTable{
    Entry<ATE::CharFeaturesSuite, "Create", createFeatures>::call,
    Entry<ATE::CharFeaturesSuite, "AddRef", &TextEngine::addRef<Features>>::call,
    Entry<ATE::CharFeaturesSuite, "Release", &TextEngine::release<Features>>::call,
    Entry<ATE::CharFeaturesSuite, "SetFont", setFont>::call,
};

} // namespace

void provideTextFontSuites(SuiteRegistry& suites) {
    suites.provide(inspectorTable);
    suites.provide(arrayTable);
    suites.provide(fontTable);
    suites.provide(featuresTable);
}

} // namespace host
