// SPDX-License-Identifier: MIT
// The host's document model: layers, the art in them, and the text runs with their faces. Whatever
// format a document came from, this is what the suites show to plug-ins.
#pragma once

#include "host/documents/documenterror.h"
#include "host/documents/face.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace host {

class Document;

using ArtId = std::uint32_t;  ///< index into Document::arts()
using RunId = std::uint32_t;  ///< index into Document::runs()
using FaceId = std::uint32_t; ///< index into Document::faces()

inline constexpr ArtId noArt = 0xFFFFFFFFU;

enum class ArtKind : std::uint8_t { Group, TextFrame, Other };

/// One node of a layer's art tree. The parent of a layer's top group is noArt.
struct Art {
    ArtKind kind = ArtKind::Other;
    ArtId parent = noArt;
    ArtId firstChild = noArt;
    ArtId nextSibling = noArt;
    RunId firstRun = 0;         ///< text frames: their runs are consecutive, in reading order
    std::uint32_t runCount = 0; ///< 0 for anything but a text frame
    std::uint32_t idStart = 0;  ///< text frames: bytes, see Document::idOf
    std::uint32_t idLength = 0;
};

/// A layer's first art, and the only one without a parent in it, is its top group.
struct Layer {
    std::string name;
    ArtId topGroup = noArt;
};

/// A maximal stretch of a frame's text that has one face.
struct TextRun {
    std::uint32_t textStart = 0; ///< bytes, see Document::text
    std::uint32_t textLength = 0;
    FaceId face = 0;
    bool visible = false;  ///< has a character that leaves a mark and is shown
    bool replaced = false; ///< its face is not the one that was read
};

/// A document's text as it was read, and as it would be saved; in UTF-8, unpacked.
struct ChangedText {
    std::string before;
    std::string after;
};

/// Writes a document back to where its format puts it. Holds what the model does not: the source.
class DocumentWriter {
public:
    virtual ~DocumentWriter() = default;
    /// Writes atomically. Throws DocumentError when it cannot.
    virtual void save(const Document& document, const std::filesystem::path& file) const = 0;
    /// See Document::changedText().
    virtual ChangedText change(const Document& document) const = 0;
};

/// The parts of a document, as a reader puts them together.
struct DocumentParts {
    std::string name; ///< the file's name, for messages and titles
    std::vector<Layer> layers;
    std::vector<Art> arts;
    std::vector<TextRun> runs;
    std::vector<Face> faces;
    /// The families that stand behind the first of a list; by face, which list it comes first in.
    std::vector<std::vector<std::string>> laterFamilies;
    std::vector<std::uint32_t> listOfFace;
    /// Families of the fonts that the document brings along, used or not, by their nameKey().
    std::unordered_set<std::string> embeddedFamilies;
    std::string text; ///< the text of all runs
    std::string ids;  ///< the ids of all text frames
    std::shared_ptr<const DocumentWriter> writer;
};

/// [one-thread] Ids stay valid for the document's lifetime; replacing a face neither joins nor
/// splits runs, so that iterators of a caller survive it.
class Document {
public:
    explicit Document(DocumentParts parts);

    const std::string& name() const noexcept { return parts_.name; }
    std::span<const Layer> layers() const noexcept { return parts_.layers; }
    std::span<const Art> arts() const noexcept { return parts_.arts; }
    std::span<const TextRun> runs() const noexcept { return parts_.runs; }
    std::span<const Face> faces() const noexcept { return parts_.faces; }

    /// Throws std::out_of_range for an id that the document does not have.
    const Art& art(ArtId id) const { return parts_.arts.at(id); }
    const TextRun& run(RunId id) const { return parts_.runs.at(id); }
    const Face& face(FaceId id) const { return parts_.faces.at(id); }
    const Face& faceOf(const TextRun& run) const { return face(run.face); }
    /// UTF-8, valid as long as the document.
    std::string_view text(const TextRun& run) const;
    /// What the format calls a text frame, to find it by; may be empty. Valid as long as the
    /// document.
    std::string_view idOf(const Art& frame) const;
    /// Whether the document brings a font of this family along, used or not.
    [[nodiscard]] bool embeds(std::string_view family) const;
    /// The families that stand in for the face's, as the document wishes, the first before others:
    /// of a face that was read, those behind it where it comes first; else none.
    std::span<const std::string> laterFamilies(FaceId id) const;

    /// The runs of a text frame; none for other art.
    std::span<const TextRun> runsOf(ArtId id) const;

    /// Gives one run another face. Takes the family, style, weight, slant and stretch of `face`.
    void replaceFace(RunId run, const Face& face);
    /// What was replaced since the last step ended becomes one step; false when nothing was.
    bool endStep() { return !std::exchange(stepEnded_, true); }
    /// Takes the last step back, or makes the last that was taken back again; false when there is
    /// none. What was taken back is forgotten when something else is replaced.
    bool undo();
    bool redo();
    bool modified() const noexcept { return !done_.empty(); }

    /// Writes the document with its replaced runs and everything else unchanged. Throws
    /// DocumentError when it cannot; the file that stood there before is then still there, unless
    /// only its folder could not be synced.
    void save(const std::filesystem::path& file) const;
    /// What saving it would change. Throws DocumentError when it cannot be saved.
    [[nodiscard]] ChangedText changedText() const;

private:
    /// What a run had before a step, or has after it, whichever it has not now.
    struct Change {
        RunId run;
        FaceId face;
        bool replaced;
    };
    using Step = std::vector<Change>;

    FaceId intern(const Face& face);
    void exchange(Change& change) noexcept;

    DocumentParts parts_;
    std::unordered_map<Face, FaceId, FaceHash> givenFaces_;
    std::vector<Step> done_;
    std::vector<Step> undone_;
    bool stepEnded_ = true; ///< else the last one done goes on
};

} // namespace host
