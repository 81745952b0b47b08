// SPDX-License-Identifier: MIT
// The document model's few operations; readers fill it and writers save it.
#include "host/documents/document.h"

#include "faces/namekey.h"

#include <algorithm>
#include <utility>

namespace host {

Document::Document(DocumentParts parts) : parts_(std::move(parts)) {}

std::string_view Document::text(const TextRun& run) const {
    return std::string_view(parts_.text).substr(run.textStart, run.textLength);
}

std::string_view Document::idOf(const Art& frame) const {
    return std::string_view(parts_.ids).substr(frame.idStart, frame.idLength);
}

bool Document::embeds(std::string_view family) const {
    return !parts_.embeddedFamilies.empty() &&
           parts_.embeddedFamilies.contains(faces::nameKey(family));
}

std::span<const std::string> Document::laterFamilies(FaceId id) const {
    if (id >= parts_.listOfFace.size()) {
        return {};
    }
    return parts_.laterFamilies[parts_.listOfFace[id]];
}

std::span<const TextRun> Document::runsOf(ArtId id) const {
    const Art& node = art(id);
    return runs().subspan(node.firstRun, node.runCount);
}

void Document::replaceFace(RunId id, const Face& face) {
    if (faceOf(run(id)) == face) {
        return;
    }
    Change change{id, intern(face), true};
    if (stepEnded_) {
        done_.emplace_back();
    }
    stepEnded_ = false;
    done_.back().push_back(change);
    exchange(done_.back().back());
    undone_.clear();
}

void Document::exchange(Change& change) noexcept {
    TextRun& run = parts_.runs[change.run];
    std::swap(run.face, change.face);
    std::swap(run.replaced, change.replaced);
}

bool Document::undo() {
    if (done_.empty()) {
        return false;
    }
    undone_.push_back(std::move(done_.back()));
    done_.pop_back();
    stepEnded_ = true;
    std::for_each(undone_.back().rbegin(), undone_.back().rend(),
                  [this](Change& change) { exchange(change); });
    return true;
}

bool Document::redo() {
    if (undone_.empty()) {
        return false;
    }
    done_.push_back(std::move(undone_.back()));
    undone_.pop_back();
    for (Change& change : done_.back()) {
        exchange(change);
    }
    return true;
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

ChangedText Document::changedText() const {
    if (!parts_.writer) {
        throw DocumentError(parts_.name, "documents of this kind cannot be written");
    }
    return parts_.writer->change(*this);
}

void Document::save(const std::filesystem::path& file) const {
    if (!parts_.writer) {
        throw DocumentError(parts_.name, "documents of this kind cannot be written");
    }
    parts_.writer->save(*this, file);
}

} // namespace host
