// SPDX-License-Identifier: MIT
// The document model's few operations; readers fill it and writers save it.
#include "host/documents/document.h"

#include <utility>

namespace host {

Document::Document(DocumentParts parts) : parts_(std::move(parts)) {}

std::string_view Document::text(const TextRun& run) const {
    return std::string_view(parts_.text).substr(run.textStart, run.textLength);
}

std::span<const TextRun> Document::runsOf(ArtId id) const {
    const Art& node = art(id);
    return runs().subspan(node.firstRun, node.runCount);
}

void Document::replaceFace(RunId id, const Face& face) {
    TextRun& run = parts_.runs.at(id);
    if (faceOf(run) == face) {
        return;
    }
    run.face = intern(face);
    run.replaced = true;
    modified_ = true;
}

FaceId Document::intern(const Face& face) {
    const auto found = givenFaces_.find(face);
    if (found != givenFaces_.end()) {
        return found->second;
    }
    const auto id = static_cast<FaceId>(parts_.faces.size());
    // `face` may be one of them itself, and is gone from its place when they move.
    parts_.faces.push_back(face);
    givenFaces_.emplace(parts_.faces.back(), id);
    return id;
}

void Document::save(const std::filesystem::path& file) const {
    if (!parts_.writer) {
        throw DocumentError(parts_.name, "documents of this kind cannot be written");
    }
    parts_.writer->save(*this, file);
}

} // namespace host
