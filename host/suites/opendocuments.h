// SPDX-License-Identifier: MIT
// The documents that are open, and the handles by which plug-ins know their parts.
#pragma once

#include "ai/types.h"
#include "host/core/handletable.h"
#include "host/documents/document.h"
#include "host/suites/fontlist.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

namespace host {

/// Numbers documents in order of opening; never used again while the host runs.
using DocumentSerial = std::uint32_t;
inline constexpr DocumentSerial noDocument = 0;

class OpenDocument {
public:
    OpenDocument(DocumentSerial serial, std::filesystem::path file, Document document)
        : serial_(serial), file_(std::move(file)), document_(std::move(document)) {}

    DocumentSerial serial() const noexcept { return serial_; }
    const std::filesystem::path& file() const noexcept { return file_; }
    Document& document() noexcept { return document_; }
    const Document& document() const noexcept { return document_; }

    /// The font of a face, resolved once: a hundred thousand runs share a few faces.
    FontKey fontOf(FaceId face, FontList& fonts) {
        if (face < fonts_.size() && fonts_[face] != noFont) {
            return fonts_[face];
        }
        return resolve(face, fonts);
    }
    void forgetFonts() noexcept { fonts_.clear(); }

private:
    FontKey resolve(FaceId face, FontList& fonts);

    DocumentSerial serial_;
    std::filesystem::path file_;
    Document document_;
    std::vector<FontKey> fonts_; ///< by FaceId; noFont: not resolved yet
};

/// [main-thread] A handle carries its document's serial, so that handles of closed documents are
/// recognised.
class OpenDocuments {
public:
    explicit OpenDocuments(FontList& fonts) noexcept : fonts_(fonts) {}

    /// Makes a document the current one.
    OpenDocument& add(std::filesystem::path file, Document document);
    /// Closes a document; the one that was opened before it becomes the current one. False for one
    /// that is not open.
    bool close(DocumentSerial serial) noexcept;

    OpenDocument* current() noexcept { return current_; }
    /// nullptr for one that is not open.
    OpenDocument* find(DocumentSerial serial) noexcept {
        return current_ != nullptr && current_->serial() == serial ? current_ : search(serial);
    }
    FontList& fonts() noexcept { return fonts_; }
    /// To be called when the catalogue has changed.
    void forgetFonts() noexcept;

    /// A part of a document: the document, and an index into a table of it.
    template <typename Handle>
    static Handle handle(const OpenDocument& document, std::size_t index) noexcept {
        return HandleBits{index, document.serial()}.pack<Handle>();
    }
    struct Part {
        OpenDocument* document = nullptr; ///< nullptr: the handle is not one of an open document
        std::size_t index = 0;
    };
    Part layer(AILayerHandle handle) noexcept;
    Part art(AIArtHandle handle) noexcept;
    OpenDocument* document(AIDocumentHandle handle) noexcept;

private:
    OpenDocument* search(DocumentSerial serial) noexcept;
    template <typename Handle>
    Part partOf(Handle handle) noexcept {
        HandleBits bits;
        return HandleBits::unpack(handle, bits) ? Part{find(bits.generation), bits.index} : Part{};
    }

    FontList& fonts_;
    std::vector<std::unique_ptr<OpenDocument>> documents_;
    OpenDocument* current_ = nullptr;
    DocumentSerial last_ = noDocument;
};

} // namespace host
