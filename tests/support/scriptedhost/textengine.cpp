// SPDX-License-Identifier: MIT
// The text engine's tables over the runs of the scripted document.
#include "tests/support/scriptedhost/textengine.h"

#include "tests/support/scriptedhost/scriptedhost.h"

#include <numeric>
#include <utility>

namespace ATE {

struct TextFrameObject : scripted::TextObject {};
struct TextRangeObject : scripted::TextObject {};
struct TextRunsIteratorObject : scripted::TextObject {};
struct CharInspectorObject : scripted::TextObject {};
struct ArrayFontRefObject : scripted::TextObject {};
struct FontObject : scripted::TextObject {};
struct CharFeaturesObject : scripted::TextObject {};

} // namespace ATE

namespace scripted {

namespace {

using ATE::ATEErr;

constexpr ATEErr deadReference = 1;
constexpr ATEErr outOfRange = 2;

bool isDead(const TextObject* object, const char* call) {
    if (object != nullptr && object->count > 0) {
        return false;
    }
    Host::current().misuse.push_back(std::string(call) + " of a dead text reference");
    return true;
}

template <int Step, typename T>
ATEErr count(T* object) {
    if (isDead(object, Step > 0 ? "AddRef" : "Release")) {
        return deadReference;
    }
    object->count += Step;
    return 0;
}

// The checks that every call begins with; 0 to go on.
ATEErr enter(const char* call, const TextObject* object) {
    if (isDead(object, call)) {
        return deadReference;
    }
    return Host::current().enter(call);
}

template <typename T>
T* make() {
    return Host::current().text.keep(std::make_unique<T>());
}

/// Hands out a new object with the runs from `from.run` to `endRun`.
template <typename T>
ATEErr giveRuns(const TextObject& from, std::size_t endRun, T** result) {
    *result = make<T>();
    (*result)->art = from.art;
    (*result)->run = from.run;
    (*result)->endRun = endRun;
    return 0;
}

} // namespace

ATE::TextFrameRef TextEngine::frameOf(AIArtHandle art) {
    auto* const frame = keep(std::make_unique<ATE::TextFrameObject>());
    frame->art = art;
    frame->endRun = art->runs.size();
    return frame;
}

ATE::FontRef TextEngine::fontOf(AIFontKey key) {
    auto* const font = keep(std::make_unique<ATE::FontObject>());
    font->fonts = {key};
    return font;
}

int TextEngine::liveReferences() const {
    return std::accumulate(
        objects_.begin(), objects_.end(), 0,
        [](int sum, const std::unique_ptr<TextObject>& object) { return sum + object->count; });
}

AIFontKey keyOf(ATE::FontRef font) {
    return isDead(font, "FontKeyFromFont") ? nullptr : font->fonts.at(0);
}

const ATE::TextFrameSuite ateTextFrameTable = {
    .AddRef = count<1>,
    .Release = count<-1>,
    .GetTextRange = [](ATE::TextFrameRef frame, AIBoolean /*includeOverflow*/,
                       ATE::TextRangeRef* range) -> ATEErr {
        const ATEErr error = enter("GetTextRange", frame);
        return error != 0 ? error : giveRuns(*frame, frame->endRun, range);
    },
};

const ATE::TextRangeSuite ateTextRangeTable = {
    .AddRef = count<1>,
    .Release = count<-1>,
    .GetTextRunsIterator = [](ATE::TextRangeRef range,
                              ATE::TextRunsIteratorRef* iterator) -> ATEErr {
        const ATEErr error = enter("GetTextRunsIterator", range);
        return error != 0 ? error : giveRuns(*range, range->endRun, iterator);
    },
    .HasLocalCharFeatures = [](ATE::TextRangeRef range, AIBoolean* result) -> ATEErr {
        *result = 0;
        return enter("HasLocalCharFeatures", range);
    },
    .GetCharInspector = [](ATE::TextRangeRef range, ATE::CharInspectorRef* inspector) -> ATEErr {
        const ATEErr error = enter("GetCharInspector", range);
        if (error == 0) {
            *inspector = make<ATE::CharInspectorObject>();
            for (std::size_t run = range->run; run < range->endRun; ++run) {
                const std::vector<AIFontKey>& fonts = range->art->runs[run];
                (*inspector)->fonts.insert((*inspector)->fonts.end(), fonts.begin(), fonts.end());
            }
        }
        return error;
    },
    .ReplaceOrAddLocalCharFeatures = [](ATE::TextRangeRef range,
                                        ATE::CharFeaturesRef features) -> ATEErr {
        ATEErr error = enter("ReplaceOrAddLocalCharFeatures", range);
        if (error == 0 && isDead(features, "ReplaceOrAddLocalCharFeatures")) {
            error = deadReference;
        }
        for (std::size_t run = range->run; error == 0 && run < range->endRun; ++run) {
            range->art->runs[run] = features->fonts;
        }
        return error;
    },
};

const ATE::TextRunsIteratorSuite ateRunsTable = {
    .AddRef = count<1>,
    .Release = count<-1>,
    .IsDone = [](ATE::TextRunsIteratorRef iterator, AIBoolean* done) -> ATEErr {
        const ATEErr error = enter("IsDone", iterator);
        *done = error != 0 || iterator->run >= iterator->endRun ? 1 : 0;
        return error;
    },
    .Item = [](ATE::TextRunsIteratorRef iterator, ATE::TextRangeRef* range) -> ATEErr {
        const ATEErr error = enter("Item", iterator);
        if (error != 0) {
            return error;
        }
        if (iterator->run >= iterator->endRun) {
            return outOfRange;
        }
        return giveRuns(*iterator, iterator->run + 1, range);
    },
    .Next = [](ATE::TextRunsIteratorRef iterator) -> ATEErr {
        const ATEErr error = enter("Next", iterator);
        iterator->run += error == 0 ? 1 : 0;
        return error;
    },
};

const ATE::CharInspectorSuite ateInspectorTable = {
    .AddRef = count<1>,
    .Release = count<-1>,
    .GetFont = [](ATE::CharInspectorRef inspector, ATE::ArrayFontRefRef* fonts) -> ATEErr {
        const ATEErr error = enter("GetFont", inspector);
        if (error == 0) {
            *fonts = make<ATE::ArrayFontRefObject>();
            (*fonts)->fonts = inspector->fonts;
        }
        return error;
    },
};

const ATE::ArrayFontRefSuite ateFontArrayTable = {
    .AddRef = count<1>,
    .Release = count<-1>,
    .GetSize = [](ATE::ArrayFontRefRef array, std::int32_t* size) -> ATEErr {
        const ATEErr error = enter("GetSize", array);
        *size = error == 0 ? static_cast<std::int32_t>(array->fonts.size()) : 0;
        return error;
    },
    .Item = [](ATE::ArrayFontRefRef array, std::int32_t index, ATE::FontRef* font) -> ATEErr {
        const ATEErr error = enter("FontItem", array);
        if (error != 0) {
            return error;
        }
        if (index < 0 || static_cast<std::size_t>(index) >= array->fonts.size()) {
            return outOfRange;
        }
        *font = Host::current().text.fontOf(array->fonts[static_cast<std::size_t>(index)]);
        return 0;
    },
};

const ATE::FontSuite ateFontTable = {.AddRef = count<1>, .Release = count<-1>};

const ATE::CharFeaturesSuite ateFeaturesTable = {
    .Create = [](ATE::CharFeaturesRef* features) -> ATEErr {
        const ATEErr error = Host::current().enter("CreateCharFeatures");
        *features = error == 0 ? make<ATE::CharFeaturesObject>() : nullptr;
        return error;
    },
    .AddRef = count<1>,
    .Release = count<-1>,
    .SetFont = [](ATE::CharFeaturesRef features, ATE::FontRef font) -> ATEErr {
        const ATEErr error = enter("SetFont", features);
        if (error == 0) {
            features->fonts = {keyOf(font)};
        }
        return error;
    },
};

} // namespace scripted
