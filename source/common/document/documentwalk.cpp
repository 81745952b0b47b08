// SPDX-License-Identifier: MIT
// Layers, their top groups, the text frames in them, and their runs.
#include "documentwalk.h"

#include "suitepointers.h"

namespace {

void walkTextFrame(AIArtHandle art, const FontVisitor& visit) {
    ATE::TextFrameRef frameRef = nullptr;
    ATE::check(sAITextFrame->GetATETextFrame(art, &frameRef));
    const ATE::ITextFrame frame(frameRef);
    const ATE::ITextRange text = frame.GetTextRange(true);
    for (const ATE::ITextRunsIterator runs = text.GetTextRunsIterator(); !runs.IsDone();
         runs.Next()) {
        const ATE::ITextRange run = runs.Item();
        static_cast<void>(run.HasLocalCharFeatures()); // asked, but decides nothing
        const ATE::IArrayFontRef fonts = run.GetCharInspector().GetFont();
        const std::int32_t count = fonts.GetSize();
        for (std::int32_t i = 0; i < count; ++i) {
            visit(run, fonts.Item(i));
        }
    }
}

// A child that cannot be read ends its group's walk, and only that.
void walkGroup(AIArtHandle group, const FontVisitor& visit) {
    AIArtHandle child = nullptr;
    if (sAIArt->GetArtFirstChild(group, &child) != kNoErr) {
        return;
    }
    std::int16_t type = kUnknownArt;
    while (child != nullptr && sAIArt->GetArtType(child, &type) == kNoErr) {
        if (type == kTextFrameArt) {
            walkTextFrame(child, visit);
        }
        AIArtHandle sibling = nullptr;
        if (sAIArt->GetArtSibling(child, &sibling) != kNoErr) {
            return;
        }
        child = sibling;
    }
}

AIErr walkLayer(AILayerHandle layer, const FontVisitor& visit) {
    AIArtHandle art = nullptr;
    if (sAIArt->GetFirstArtOfLayer(layer, &art) != kNoErr) {
        return kNoErr;
    }
    while (art != nullptr) {
        std::int16_t type = kUnknownArt;
        if (const AIErr error = sAIArt->GetArtType(art, &type); error != kNoErr) {
            return error;
        }
        if (type == kGroupArt) {
            walkGroup(art, visit);
        }
        // Upwards, not onwards: the parent of a layer's top group is none.
        AIArtHandle parent = nullptr;
        if (sAIArt->GetArtParent(art, &parent) != kNoErr) {
            return kNoErr;
        }
        art = parent;
    }
    return kNoErr;
}

} // namespace

WalkResult walkDocumentFonts(const FontVisitor& visit) {
    AILayerHandle layer = nullptr;
    AIErr error = sAILayer->GetFirstLayer(&layer);
    while (error == kNoErr && layer != nullptr) {
        if (const AIErr artError = walkLayer(layer, visit); artError != kNoErr) {
            return {artError, false};
        }
        AILayerHandle next = nullptr;
        error = sAILayer->GetNextLayer(layer, &next);
        layer = next;
    }
    return {error, true};
}
