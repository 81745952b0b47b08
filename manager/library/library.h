// SPDX-License-Identifier: MIT
// The library's index: look-up of faces, containers and their files. The index on disk is the only
// copy, so that what one process changes the others see at their next question.
#pragma once

#include "faces/face.h"
#include "faces/similar.h"
#include "manager/library/database.h"
#include "manager/library/facequery.h"
#include "manager/library/indexfile.h"
#include "manager/library/places.h"
#include "manager/library/schema.h"
#include "manager/library/walk.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace manager {

/// A container's number, at least 1; stable as long as its folder, family and format (or
/// file) are.
enum class ContainerId : std::int32_t {};

inline std::string toText(ContainerId id) {
    return std::to_string(static_cast<std::int32_t>(id));
}
/// A decimal number from 1 to 2,147,483,647.
[[nodiscard]] std::optional<ContainerId> toContainerId(std::string_view text);

/// A face's number in the index. The next scan that reads its file again gives it another.
enum class FaceId : std::int64_t {};

/// What the library holds together: one family in one folder in one format, or one collection file.
struct Container {
    ContainerId id{};
    std::string name;   ///< the family, or the collection's file name
    std::string folder; ///< absolute
    std::string file;   ///< the collection's file name, else empty
    std::int64_t faces = 0;
    std::optional<FontFormat> format = {};
    bool shownByDesktop = false; ///< it lies where the desktop looks for fonts by itself
    bool away = false;           ///< its library folder is not there now: it cannot be activated

    [[nodiscard]] std::string path() const { return file.empty() ? folder : folder + "/" + file; }
};

/// One face that a look-up found, with what tells it from others.
struct FaceMatch {
    FaceId id{};
    ContainerId container{};
    Container holder; ///< that container
    faces::Technology type = faces::Technology::TrueType;
    std::string postScriptName;
    std::string familyName; ///< of the name to show
    std::string styleName;
    std::string folder;
    std::string fileName;        ///< without its folder
    bool shownByDesktop = false; ///< it lies where the desktop looks for fonts by itself
    bool away = false;           ///< its library folder is not there now
    faces::Style style;
    std::string version;
    std::uint32_t revision = 0;
    std::string foundry;
    /// The first is the one to show. Not read, nor are full names, by findByPostScriptName() and
    /// search().
    std::vector<faces::Name> names;
    std::vector<std::string> fullNames;
    std::vector<faces::Axis> axes;
    FileStamp stamp;   ///< of the file
    std::string whole; ///< a digest of its bytes, if there may be copies; see samefile.h
};

/// Everything that the index has of a face.
struct FaceDetails {
    FaceMatch match;
    faces::Face face;
};

/// A page of what a search found.
struct FoundFaces {
    std::vector<FaceMatch> faces;
    std::size_t total = 0; ///< on all pages
};

/// Faces as they are compared, and their numbers in the same order.
struct ComparableFaces {
    std::vector<FaceId> ids;
    std::vector<faces::Likeness> likenesses;
};

/// A container whose number is known from elsewhere than the index.
struct KnownContainer {
    ContainerId id{};
    std::string name;   ///< as in Container
    std::string folder; ///< empty: only the number is known, and is not to be given to another
    std::string file;
    std::optional<FontFormat> format = {}; ///< nullopt: not known
};
/// [main-thread] Asked when an index is begun anew.
using KnownContainers = std::function<std::vector<KnownContainer>()>;

struct LibraryFile {
    std::string path;
    FileStamp stamp;
    std::string version = {}; ///< of its first face
};

/// One of several files with the same bytes.
struct FileCopy {
    std::string path;
    ContainerId container{};
    std::int64_t size = 0;
};

struct LibraryCounts {
    std::int64_t files = 0; ///< font files, bad ones not counted
    std::int64_t faces = 0; ///< those of spares not counted
    std::int64_t containers = 0;
    std::int64_t problems = 0; ///< bad files
    std::int64_t away = 0;     ///< font files whose folder is not there now
};

/// [one-thread] Every call throws Error when the index cannot be read, DamagedDatabase when it is
/// damaged.
class Library {
public:
    /// Opens the index, or makes one that `fill` may fill.
    explicit Library(const Places& places, const TableFiller& fill = {},
                     MissingFile missing = MissingFile::IsMade,
                     std::chrono::milliseconds patience = lockPatience);

    /// Look-ups of faces that can be activated, by container: no spares, and none in folders that
    /// are away. Keys are those of faces/namekey.h; an empty one finds nothing.
    [[nodiscard]] std::vector<FaceMatch> findByPostScriptKey(std::string_view key);
    [[nodiscard]] std::vector<FaceMatch> findByFullName(std::string_view key);
    [[nodiscard]] std::vector<FaceMatch> findByFamily(std::string_view key);
    [[nodiscard]] std::vector<FaceMatch> findByNormalisedFamily(std::string_view key);

    /// Those of a PostScript name or a family that are in folders that are away, by the same keys.
    [[nodiscard]] std::vector<FaceMatch> findAway(std::string_view postScriptKey,
                                                  std::string_view family);
    [[nodiscard]] bool hasAwayFolders();

    /// The faces of a PostScript name; blanks do not count, case does.
    [[nodiscard]] std::vector<FaceMatch> findByPostScriptName(std::string_view name);
    /// Files with the same bytes, the copies of each together; links to one file are one.
    [[nodiscard]] std::vector<std::vector<FileCopy>> duplicates();

    /// What a query describes, a page of it.
    [[nodiscard]] FoundFaces search(const FaceQuery& query);
    /// All that a query describes, whatever its page and order: the keys of their families by the
    /// numbers of the faces.
    [[nodiscard]] std::unordered_map<std::int64_t, std::string> familyKeys(const FaceQuery& query);
    /// What faces have of a kind that is held as tags: scripts, languages, features or axes.
    [[nodiscard]] std::set<std::string> tags(SharedKind kind);
    /// nullopt: there is none of this number (any more).
    [[nodiscard]] std::optional<FaceDetails> face(FaceId id);
    [[nodiscard]] std::optional<FaceMatch> match(FaceId id);
    /// Everything of a container's faces, spares included.
    [[nodiscard]] std::vector<FaceDetails> faces(ContainerId id);
    /// All faces that can be compared and activated.
    [[nodiscard]] ComparableFaces comparableFaces();
    /// Another one after each change of the index.
    using Generation = std::pair<std::int64_t, std::int64_t>;
    [[nodiscard]] Generation generation();

    /// nullopt when it is unknown or has no fonts (any more).
    [[nodiscard]] std::optional<Container> container(ContainerId id);
    /// The files that show each of its faces once: spares are left out.
    [[nodiscard]] std::vector<LibraryFile> files(ContainerId id);
    /// The container of the font file at this path, spare or not; nullopt: it is none of the
    /// library.
    [[nodiscard]] std::optional<ContainerId> containerOfFile(const std::string& path);
    /// All that have fonts, by name.
    [[nodiscard]] std::vector<Container> containers();
    /// The containers of a family by this name.
    [[nodiscard]] std::vector<ContainerId> findContainers(std::string_view name);
    /// Those with a family or PostScript name that a shell pattern (*, ?, [...]) describes; in
    /// families case and blanks do not count.
    [[nodiscard]] std::vector<ContainerId> findContainersLike(std::string_view pattern);
    /// The number of the container of this name in this folder, or of this collection file there,
    /// be there fonts in it or not.
    [[nodiscard]] std::optional<ContainerId> findPlace(const Container& place);
    /// What lies at or under `folder`.
    [[nodiscard]] LibraryCounts counts(const std::string& folder);
    /// Folders that the last scan walked.
    [[nodiscard]] std::vector<std::string> directories();
    /// "PATH: ..." of each bad file, and of what the last scan could not look at.
    [[nodiscard]] std::vector<std::string> problems();
    /// Whether the index was begun anew, or taken over from an older version, and no scan of the
    /// folders has filled it since. Begun anew it says nothing about what the folders hold.
    [[nodiscard]] bool isScanOwed();
    /// Whether that scan is to read all files again, whether they have changed or not.
    [[nodiscard]] bool isReadingOwed();
    /// Whether a scan has changed the index and was ended before its end, as has none since.
    [[nodiscard]] bool isScanUnfinished();

    /// Whether the index file was replaced or cut since it was opened, or could be opened for want
    /// of space only as it was then; open anew then.
    [[nodiscard]] bool isReplaced() const;
    /// Reads the whole index. Throws DamagedDatabase.
    void check();
    /// Whether the index file is as it was when it was last known to be sound.
    [[nodiscard]] bool isVouchedFor() const;
    /// Marks the index as sound as it is now; to be called when a change has ended well.
    void vouch();

    /// While it lives, look-ups are of one moment, and faster: to be had for a command.
    [[nodiscard]] Reading reading() { return Reading(database_); }
    [[nodiscard]] Database& database() { return database_; }
    [[nodiscard]] const Places& places() const { return places_; }

private:
    Places places_;
    Database database_;
    IndexFile file_; ///< as it was opened
    enum class Names : std::uint8_t { First, All };
    [[nodiscard]] std::vector<FaceMatch> find(Statement& statement, std::string_view key,
                                              Names names);
    [[nodiscard]] FaceMatch matchOf(const Statement& row);
    void addNames(FaceMatch& match);
    [[nodiscard]] FaceDetails detailsOf(const Statement& row);

    Statement byPostScriptKey_;
    Statement byFullName_;
    Statement byFamily_;
    Statement byNormalisedFamily_;
    Statement byId_;
    Statement names_;
    Statement fullNames_;
    Statement container_;
    Statement files_;
};

/// When an opened index is read as a whole, which takes time.
enum class IndexCheck {
    Never,       ///< nor is it mended: for who must answer soon
    WhenSuspect, ///< when damage was met, or the file is cut short
    WhenUnclean, ///< also when a change did not end well, or others may have written to the file
};

/// Opens the library. A missing index is begun with the numbers of the `known` containers. A
/// damaged one is moved aside and begun anew in the same way, with the old numbers of the other
/// containers as far as they can be read; `report` is told in one line. New containers get higher
/// numbers than all that were given. Both functions are called in this thread, before it returns.
/// See Library::isScanOwed. Locks are waited for up to `patience`, then Locked is thrown. Throws
/// Error; DamagedDatabase only when nothing is to be mended.
[[nodiscard]] std::unique_ptr<Library>
openLibrary(const Places& places, const KnownContainers& known,
            const std::function<void(const std::string&)>& report,
            IndexCheck check = IndexCheck::WhenSuspect,
            std::chrono::milliseconds patience = lockPatience);

} // namespace manager
