// SPDX-License-Identifier: MIT
// Suites about the document: layers, art, text frames, fonts.
#include "tests/support/scriptedhost/scriptedhost.h"

#include <algorithm>

namespace scripted {

namespace {

AIErr copyName(const char* call, AIFontKey key, std::string AIFontFace::*member, char* name,
               std::int32_t size) {
    const AIErr error = Host::current().enter(call, key != nullptr);
    if (error == kNoErr) {
        copyText(key->*member, name, size);
    }
    return error;
}

AILayer* layerAfter(std::size_t index) {
    const auto& layers = Host::current().layers;
    return index < layers.size() ? layers[index].get() : nullptr;
}

} // namespace

const AIDocumentSuite documentTable = {
    .GetDocument = [](AIDocumentHandle* document) -> AIErr {
        *document = &Host::current().document;
        return Host::current().enter("GetDocument");
    },
};

const AIDocumentListSuite documentListTable = {
    .Close = [](AIDocumentHandle document) -> AIErr {
        document->closed = true;
        return Host::current().enter("Close");
    },
};

const AILayerSuite layerTable = {
    .GetFirstLayer = [](AILayerHandle* layer) -> AIErr {
        *layer = layerAfter(0);
        return Host::current().enter("GetFirstLayer");
    },
    .GetNextLayer = [](AILayerHandle layer, AILayerHandle* next) -> AIErr {
        const auto& layers = Host::current().layers;
        const auto found =
            std::find_if(layers.begin(), layers.end(),
                         [layer](const auto& candidate) { return candidate.get() == layer; });
        *next = layerAfter(static_cast<std::size_t>(found - layers.begin()) + 1);
        return Host::current().enter("GetNextLayer");
    },
};

const AIArtSuite artTable = {
    .GetFirstArtOfLayer = [](AILayerHandle layer, AIArtHandle* art) -> AIErr {
        *art = &layer->group;
        return Host::current().enter("GetFirstArtOfLayer");
    },
    .GetArtType = [](AIArtHandle art, std::int16_t* type) -> AIErr {
        *type = art->type;
        return Host::current().enter("GetArtType");
    },
    .GetArtFirstChild = [](AIArtHandle art, AIArtHandle* child) -> AIErr {
        *child = art->children.empty() ? nullptr : art->children.front().get();
        return Host::current().enter("GetArtFirstChild");
    },
    .GetArtSibling = [](AIArtHandle art, AIArtHandle* sibling) -> AIErr {
        *sibling = nullptr;
        if (art->parent != nullptr) {
            const auto& children = art->parent->children;
            const auto found =
                std::find_if(children.begin(), children.end(),
                             [art](const auto& candidate) { return candidate.get() == art; });
            *sibling = found + 1 < children.end() ? (found + 1)->get() : nullptr;
        }
        return Host::current().enter("GetArtSibling");
    },
    .GetArtParent = [](AIArtHandle art, AIArtHandle* parent) -> AIErr {
        *parent = art->parent;
        return Host::current().enter("GetArtParent");
    },
};

const AITextFrameSuite textFrameTable = {
    .GetATETextFrame = [](AIArtHandle art, ATE::TextFrameRef* frame) -> AIErr {
        const AIErr error = Host::current().enter("GetATETextFrame", art->type == kTextFrameArt);
        if (error == kNoErr) {
            *frame = Host::current().text.frameOf(art);
        }
        return error;
    },
};

const AIFontSuite fontTable = {
    .FontKeyFromFont = [](ATE::FontRef font, AIFontKey* key) -> AIErr {
        *key = keyOf(font);
        return Host::current().enter("FontKeyFromFont");
    },
    .FontFromFontKey = [](AIFontKey key, ATE::FontRef* font) -> AIErr {
        const AIErr error = Host::current().enter("FontFromFontKey");
        if (error == kNoErr) {
            *font = Host::current().text.fontOf(key);
        }
        return error;
    },
    .GetPostScriptFontName = [](AIFontKey key, char* name, std::int32_t size) -> AIErr {
        return copyName("GetPostScriptFontName", key, &AIFontFace::psName, name, size);
    },
    .GetFontStyleName = [](AIFontKey key, char* name, std::int32_t size) -> AIErr {
        return copyName("GetFontStyleName", key, &AIFontFace::styleName, name, size);
    },
    .GetFontFamilyName = [](AIFontKey key, char* name, std::int32_t size) -> AIErr {
        return copyName("GetFontFamilyName", key, &AIFontFace::familyName, name, size);
    },
    .GetUserFontName = [](AIFontKey key, char* name, std::int32_t size) -> AIErr {
        return copyName("GetUserFontName", key, &AIFontFace::userName, name, size);
    },
    .GetFontStyle = [](AIFontKey key, AIFontStyleRecord* record) -> AIErr {
        const AIErr error = Host::current().enter("GetFontStyle", key != nullptr);
        if (error == kNoErr) {
            *record = key->style;
        }
        return error;
    },
    .FindFont = [](const char* name, std::int32_t technology, std::int32_t script,
                   std::int32_t match, AIFontKey* key) -> AIErr {
        const bool ok = technology == kAIAnyFontTechnology && script == kAINoFontScript &&
                        match == kAIMatchAllFontNames;
        if (const AIErr error = Host::current().enter("FindFont", ok); error != kNoErr) {
            return error;
        }
        const auto& fonts = Host::current().fonts;
        const auto found = std::find_if(fonts.begin(), fonts.end(), [name](const auto& face) {
            return face->style.isPresent != 0 && (face->psName == name || face->userName == name);
        });
        if (found == fonts.end()) {
            return kNoSuchFontErr;
        }
        *key = found->get();
        return kNoErr;
    },
    .CountFonts = nullptr,
    .GetNthFont = nullptr,
};

} // namespace scripted
