// SPDX-License-Identifier: MIT
// The text engine of the scripted host: counted references, every one of which is watched.
#pragma once

#include "ai/types.h"
#include "ate/suites.h"

#include <memory>
#include <vector>

namespace scripted {

/// What all references point to: some runs of a text frame, or fonts. Dead objects are kept, so
/// that using one is noticed.
struct TextObject {
    virtual ~TextObject() = default;
    int count = 1;
    AIArt* art = nullptr;
    std::size_t run = 0;
    std::size_t endRun = 0;
    std::vector<AIFontKey> fonts;
};

class TextEngine {
public:
    ATE::TextFrameRef frameOf(AIArtHandle art);
    ATE::FontRef fontOf(AIFontKey key);

    /// How many references have been handed out or counted and not been given back.
    int liveReferences() const;

    /// Owns the object for good; the caller gets its first count.
    template <typename T>
    T* keep(std::unique_ptr<T> object) {
        T* const result = object.get();
        objects_.push_back(std::move(object));
        return result;
    }

private:
    std::vector<std::unique_ptr<TextObject>> objects_;
};

AIFontKey keyOf(ATE::FontRef font);

} // namespace scripted
