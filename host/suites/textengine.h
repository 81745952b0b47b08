// SPDX-License-Identifier: MIT
// The text engine's objects: frames, ranges, iterators, inspectors, font arrays, fonts, features.
// All are small records in one pool; a reference is a handle that is looked up and checked.
#pragma once

#include "ate/types.h"
#include "host/core/core.h"
#include "host/suites/opendocuments.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace host {

enum class TextKind : std::uint8_t {
    Frame,
    Range,
    RunsIterator,
    CharInspector,
    CharFeatures,
    FontArray,
    Font
};
inline constexpr std::size_t textKindCount = 7;

struct TextObject {
    TextKind kind = TextKind::Font;
    std::uint32_t count = 1; ///< references
    PluginNumber owner = noPlugin;
    DocumentSerial document = noDocument; ///< whose runs are meant; noDocument for fonts, features
    RunId first = 0;                      ///< frames, ranges, inspectors, iterators: the runs
    RunId end = 0;                        ///< one past the last
    FontKey font = noFont;                ///< fonts, features, arrays of one font
    std::vector<FontKey> furtherFonts{};  ///< of an array, from the second on
};

/// The kind that each reference type names.
template <typename Ref>
inline constexpr TextKind textKindOf = TextKind::Font;
template <>
inline constexpr TextKind textKindOf<ATE::TextFrameRef> = TextKind::Frame;
template <>
inline constexpr TextKind textKindOf<ATE::TextRangeRef> = TextKind::Range;
template <>
inline constexpr TextKind textKindOf<ATE::TextRunsIteratorRef> = TextKind::RunsIterator;
template <>
inline constexpr TextKind textKindOf<ATE::CharInspectorRef> = TextKind::CharInspector;
template <>
inline constexpr TextKind textKindOf<ATE::CharFeaturesRef> = TextKind::CharFeatures;
template <>
inline constexpr TextKind textKindOf<ATE::ArrayFontRefRef> = TextKind::FontArray;

/// [main-thread] Misuse of references is noted in the core's ledger.
class TextEngine {
public:
    TextEngine(Core& core, OpenDocuments& documents);

    OpenDocuments& documents() noexcept { return documents_; }
    Core& core() noexcept { return core_; }

    /// Makes an object with one reference, the calling plug-in's.
    template <typename Ref>
    Ref make(TextObject object) {
        object.kind = textKindOf<Ref>;
        object.owner = core_.caller();
        return reinterpret_cast<Ref>(objects_.add(std::move(object)));
    }

    /// nullptr, and noted, for a reference that is dead, of another kind, or of a closed document.
    template <typename Ref>
    TextObject* use(Ref ref) {
        const auto handle = reinterpret_cast<Handle>(ref);
        TextObject* const object = objects_.find(handle);
        const bool usable =
            object != nullptr && object->kind == textKindOf<Ref> &&
            (object->document == noDocument || documents_.find(object->document) != nullptr);
        return usable ? object : refuse(handle, textKindOf<Ref>, "used");
    }

    /// kBadParameterErr, and noted, as above; references of closed documents can be counted and
    /// released.
    template <typename Ref>
    static SPErr addRef(TextEngine& engine, Ref ref) {
        return engine.count(reinterpret_cast<Handle>(ref), textKindOf<Ref>, 1);
    }
    template <typename Ref>
    static SPErr release(TextEngine& engine, Ref ref) {
        return engine.count(reinterpret_cast<Handle>(ref), textKindOf<Ref>, -1);
    }

    std::size_t liveObjects() const noexcept { return objects_.size(); }

private:
    using Handle = struct AnyTextObject*;

    SPErr count(Handle handle, TextKind kind, int change);
    /// Notes what is wrong with a reference. Always nullptr.
    TextObject* refuse(Handle handle, TextKind kind, const char* action);
    void takeBackFrom(Plugin& plugin);

    Core& core_;
    OpenDocuments& documents_;
    HandleTable<TextObject, Handle> objects_;
};

/// The tables of the text engine's suites.
void provideTextSuites(SuiteRegistry& suites);
void provideTextFontSuites(SuiteRegistry& suites);

} // namespace host
