// SPDX-License-Identifier: MIT
// The suites that show documents, layers and art.
#include "host/suites/artsuites.h"

#include "ai/suites.h"
#include "host/core/guard.h"
#include "host/suites/textengine.h"

namespace host {

namespace {

/// A part of a document's art, null for none.
AIArtHandle artHandle(const OpenDocument& document, ArtId art) {
    return art == noArt ? nullptr : OpenDocuments::handle<AIArtHandle>(document, art);
}

constexpr std::int16_t typeOf(ArtKind kind) {
    switch (kind) {
    case ArtKind::Group:
        return kGroupArt;
    case ArtKind::TextFrame:
        return kTextFrameArt;
    case ArtKind::Other:
        break;
    }
    return kUnknownArt;
}

// "AI Document Suite", "AI Document List Suite"

SPErr getDocument(OpenDocuments& documents, AIDocumentHandle* document) {
    const OpenDocument* const current = documents.current();
    *document = current == nullptr ? nullptr : OpenDocuments::handle<AIDocumentHandle>(*current, 0);
    return kNoErr;
}

SPErr closeDocument(OpenDocuments& documents, AIDocumentHandle handle) {
    const OpenDocument* const document = documents.document(handle);
    return document != nullptr && documents.close(document->serial()) ? kNoErr : kBadParameterErr;
}

// "AI Layer Suite"

SPErr getFirstLayer(OpenDocuments& documents, AILayerHandle* layer) {
    const OpenDocument* const current = documents.current();
    const bool none = current == nullptr || current->document().layers().empty();
    *layer = none ? nullptr : OpenDocuments::handle<AILayerHandle>(*current, 0);
    return kNoErr;
}

SPErr getNextLayer(OpenDocuments& documents, AILayerHandle layer, AILayerHandle* next) {
    const OpenDocuments::Part part = documents.layer(layer);
    if (part.document == nullptr) {
        return kBadParameterErr;
    }
    const bool last = part.index + 1 == part.document->document().layers().size();
    *next = last ? nullptr : OpenDocuments::handle<AILayerHandle>(*part.document, part.index + 1);
    return kNoErr;
}

// "AI Art Suite"

SPErr getFirstArtOfLayer(OpenDocuments& documents, AILayerHandle layer, AIArtHandle* art) {
    const OpenDocuments::Part part = documents.layer(layer);
    if (part.document == nullptr) {
        return kBadParameterErr;
    }
    *art = artHandle(*part.document, part.document->document().layers()[part.index].topGroup);
    return kNoErr;
}

SPErr getArtType(OpenDocuments& documents, AIArtHandle art, std::int16_t* type) {
    const OpenDocuments::Part part = documents.art(art);
    if (part.document == nullptr) {
        return kBadParameterErr;
    }
    *type = typeOf(part.document->document().arts()[part.index].kind);
    return kNoErr;
}

template <ArtId Art::*link>
SPErr getRelative(OpenDocuments& documents, AIArtHandle art, AIArtHandle* relative) {
    const OpenDocuments::Part part = documents.art(art);
    if (part.document == nullptr) {
        return kBadParameterErr;
    }
    *relative = artHandle(*part.document, part.document->document().arts()[part.index].*link);
    return kNoErr;
}

// "AI Text Frame Suite"

SPErr getTextFrame(TextEngine& engine, AIArtHandle handle, ATE::TextFrameRef* frame) {
    const OpenDocuments::Part part = engine.documents().art(handle);
    if (part.document == nullptr) {
        return kBadParameterErr;
    }
    const Art& art = part.document->document().arts()[part.index];
    if (art.kind != ArtKind::TextFrame) {
        return kBadParameterErr;
    }
    TextObject object;
    object.document = part.document->serial();
    object.first = art.firstRun;
    object.end = art.firstRun + art.runCount;
    *frame = engine.make<ATE::TextFrameRef>(std::move(object));
    return kNoErr;
}

constexpr AIDocumentSuite documentTable{
    Entry<AIDocumentSuite, "GetDocument", getDocument>::call,
};
constexpr AIDocumentListSuite documentListTable{
    Entry<AIDocumentListSuite, "Close", closeDocument>::call,
};
constexpr AILayerSuite layerTable{
    Entry<AILayerSuite, "GetFirstLayer", getFirstLayer>::call,
    Entry<AILayerSuite, "GetNextLayer", getNextLayer>::call,
};
constexpr AIArtSuite artTable{
    Entry<AIArtSuite, "GetFirstArtOfLayer", getFirstArtOfLayer>::call,
    Entry<AIArtSuite, "GetArtType", getArtType>::call,
    Entry<AIArtSuite, "GetArtFirstChild", &getRelative<&Art::firstChild>>::call,
    Entry<AIArtSuite, "GetArtSibling", &getRelative<&Art::nextSibling>>::call,
    Entry<AIArtSuite, "GetArtParent", &getRelative<&Art::parent>>::call,
};
constexpr AITextFrameSuite textFrameTable{
    Entry<AITextFrameSuite, "GetATETextFrame", getTextFrame>::call,
};

} // namespace

void provideArtSuites(SuiteRegistry& suites) {
    suites.provide(documentTable);
    suites.provide(documentListTable);
    suites.provide(layerTable);
    suites.provide(artTable);
    suites.provide(textFrameTable);
}

} // namespace host
