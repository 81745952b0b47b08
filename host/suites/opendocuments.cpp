// SPDX-License-Identifier: MIT
// Opening, closing and finding documents.
#include "host/suites/opendocuments.h"

#include <algorithm>
#include <utility>

namespace host {

FontKey OpenDocument::resolve(FaceId face, FontList& fonts) {
    const FontKey key = fonts.catalogue().resolve(document_.face(face));
    if (face >= fonts_.size()) {
        fonts_.resize(document_.faces().size(), noFont);
    }
    fonts_[face] = key;
    return key;
}

OpenDocument& OpenDocuments::add(std::filesystem::path file, Document document) {
    documents_.push_back(
        std::make_unique<OpenDocument>(last_ + 1, std::move(file), std::move(document)));
    ++last_;
    current_ = documents_.back().get();
    return *current_;
}

bool OpenDocuments::close(DocumentSerial serial) noexcept {
    const std::size_t closed = std::erase_if(
        documents_, [&](const auto& document) { return document->serial() == serial; });
    current_ = documents_.empty() ? nullptr : documents_.back().get();
    return closed != 0;
}

void OpenDocuments::forgetFonts() noexcept {
    for (const auto& document : documents_) {
        document->forgetFonts();
    }
}

OpenDocument* OpenDocuments::search(DocumentSerial serial) noexcept {
    const auto found =
        std::find_if(documents_.begin(), documents_.end(),
                     [&](const auto& document) { return document->serial() == serial; });
    return found == documents_.end() ? nullptr : found->get();
}

OpenDocuments::Part OpenDocuments::layer(AILayerHandle handle) noexcept {
    const Part part = partOf(handle);
    return part.document != nullptr && part.index < part.document->document().layers().size()
               ? part
               : Part{};
}

OpenDocuments::Part OpenDocuments::art(AIArtHandle handle) noexcept {
    const Part part = partOf(handle);
    return part.document != nullptr && part.index < part.document->document().arts().size()
               ? part
               : Part{};
}

OpenDocument* OpenDocuments::document(AIDocumentHandle handle) noexcept {
    const Part part = partOf(handle);
    return part.index == 0 ? part.document : nullptr;
}

} // namespace host
