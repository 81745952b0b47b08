// SPDX-License-Identifier: MIT
// The text engine's frames, ranges and iterators.
#include "ate/suites.h"
#include "host/core/guard.h"
#include "host/suites/textengine.h"

#include <optional>

namespace host {

namespace {

/// An object over some of the runs that another one is about.
template <typename Ref>
Ref makeOver(TextEngine& engine, DocumentSerial document, RunId first, RunId end) {
    TextObject object;
    object.document = document;
    object.first = first;
    object.end = end;
    return engine.make<Ref>(std::move(object));
}

/// `From` and `To` differ in what can be asked of them, not in the runs.
template <typename From, typename To>
SPErr makeFrom(TextEngine& engine, From from, To* to) {
    const TextObject* const object = engine.use(from);
    if (object == nullptr) {
        return kBadParameterErr;
    }
    *to = makeOver<To>(engine, object->document, object->first, object->end);
    return kNoErr;
}

/// Nothing overflows here: a drawing's text frames show all of their text.
SPErr getTextRange(TextEngine& engine, ATE::TextFrameRef frame, AIBoolean /*includeOverflow*/,
                   ATE::TextRangeRef* range) {
    return makeFrom(engine, frame, range);
}

/// There are no named styles in a drawing: whatever a run has is its own.
SPErr hasLocalCharFeatures(TextEngine& engine, ATE::TextRangeRef range, AIBoolean* result) {
    const TextObject* const object = engine.use(range);
    if (object == nullptr) {
        return kBadParameterErr;
    }
    *result = object->first < object->end ? 1 : 0;
    return kNoErr;
}

SPErr replaceOrAddLocalCharFeatures(TextEngine& engine, ATE::TextRangeRef range,
                                    ATE::CharFeaturesRef features) {
    const TextObject* const runs = engine.use(range);
    const TextObject* const set = engine.use(features);
    if (runs == nullptr || set == nullptr) {
        return kBadParameterErr;
    }
    if (set->font == noFont) {
        return kNoErr;
    }
    Document& document = engine.documents().find(runs->document)->document();
    const Catalogue& fonts = engine.documents().fonts().catalogue();
    const std::optional<Face> face = fonts.asWritten(set->font);
    if (!face) {
        engine.core().frontend().reportError(
            document.name() + ": keeps its fonts, as no names of a drawing say " +
            fonts.entry(set->font)->face.fullName + " and no other font");
        return kBadParameterErr;
    }
    for (RunId run = runs->first; run < runs->end; ++run) {
        document.replaceFace(run, *face);
    }
    return kNoErr;
}

SPErr isDone(TextEngine& engine, ATE::TextRunsIteratorRef iterator, AIBoolean* done) {
    const TextObject* const object = engine.use(iterator);
    if (object == nullptr) {
        return kBadParameterErr;
    }
    *done = object->first >= object->end ? 1 : 0;
    return kNoErr;
}

SPErr currentItem(TextEngine& engine, ATE::TextRunsIteratorRef iterator, ATE::TextRangeRef* range) {
    const TextObject* const object = engine.use(iterator);
    if (object == nullptr || object->first >= object->end) {
        return kBadParameterErr;
    }
    *range =
        makeOver<ATE::TextRangeRef>(engine, object->document, object->first, object->first + 1);
    return kNoErr;
}

SPErr next(TextEngine& engine, ATE::TextRunsIteratorRef iterator) {
    TextObject* const object = engine.use(iterator);
    if (object == nullptr || object->first >= object->end) {
        return kBadParameterErr;
    }
    ++object->first;
    return kNoErr;
}

using Frame = ATE::TextFrameRef;
using Range = ATE::TextRangeRef;
using Runs = ATE::TextRunsIteratorRef;
using Inspector = ATE::CharInspectorRef;

constexpr ATE::TextFrameSuite frameTable{
    Entry<ATE::TextFrameSuite, "AddRef", &TextEngine::addRef<Frame>>::call,
    Entry<ATE::TextFrameSuite, "Release", &TextEngine::release<Frame>>::call,
    Entry<ATE::TextFrameSuite, "GetTextRange", getTextRange>::call,
};
constexpr ATE::TextRangeSuite rangeTable{
    Entry<ATE::TextRangeSuite, "AddRef", &TextEngine::addRef<Range>>::call,
    Entry<ATE::TextRangeSuite, "Release", &TextEngine::release<Range>>::call,
    Entry<ATE::TextRangeSuite, "GetTextRunsIterator", &makeFrom<Range, Runs>>::call,
    Entry<ATE::TextRangeSuite, "HasLocalCharFeatures", hasLocalCharFeatures>::call,
    Entry<ATE::TextRangeSuite, "GetCharInspector", &makeFrom<Range, Inspector>>::call,
    Entry<ATE::TextRangeSuite, "ReplaceOrAddLocalCharFeatures",
          replaceOrAddLocalCharFeatures>::call,
};
constexpr ATE::TextRunsIteratorSuite runsTable{
    Entry<ATE::TextRunsIteratorSuite, "AddRef", &TextEngine::addRef<Runs>>::call,
    Entry<ATE::TextRunsIteratorSuite, "Release", &TextEngine::release<Runs>>::call,
    Entry<ATE::TextRunsIteratorSuite, "IsDone", isDone>::call,
    Entry<ATE::TextRunsIteratorSuite, "Item", currentItem>::call,
    Entry<ATE::TextRunsIteratorSuite, "Next", next>::call,
};

} // namespace

void provideTextSuites(SuiteRegistry& suites) {
    suites.provide(frameTable);
    suites.provide(rangeTable);
    suites.provide(runsTable);
    provideTextFontSuites(suites);
}

} // namespace host
