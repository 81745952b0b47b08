// SPDX-License-Identifier: MIT
// Writes what a scan found to the index.
#pragma once

#include "manager/library/fontreader.h"
#include "manager/library/library.h"
#include "manager/library/walk.h"

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>

namespace manager {

/// Used within transactions of its user. All calls throw Error.
class IndexWriter {
public:
    explicit IndexWriter(Database& database);

    /// The number of the folder's row.
    std::int64_t addDirectory(const FoundFolder& folder, bool shown);
    void updateDirectory(std::int64_t directory, const FoundFolder& folder, bool shown);
    void markAway(std::int64_t directory) { awayDirectory_.bind(1, directory).run(); }
    /// Once its files are gone.
    void removeDirectory(std::int64_t directory) { removeDirectory_.bind(1, directory).run(); }
    void remove(std::int64_t file);
    /// Writes a file's outcome; `before` is its row until now, 0: none. A file with a passing
    /// problem is written with a stamp that no file has, so that the next scan reads it again.
    void write(const FoundFolder& folder, std::int64_t directory, const FoundFile& file,
               std::int64_t before, const FontFileOutcome& outcome);
    /// To be called before a transaction ends: decides which of several files with the same face a
    /// container shows, and counts its files and faces.
    void settle();
    /// Removes names and shared values that no face has any more. Reads the whole index.
    void sweep();

private:
    std::int64_t containerOf(const std::string& folder, const std::string& name,
                             const faces::FontFileContents& contents);
    void writeFace(std::int64_t file, std::int64_t container, const faces::Face& face);
    void writeNames(std::int64_t id, const faces::Face& face);
    void bindShared(int parameter, SharedKind kind, const std::string& value);
    std::int64_t sharedId(SharedKind kind, const std::string& value);
    std::int64_t familyId(const std::string& name);

    Database& database_;
    Statement addDirectory_;
    Statement updateDirectory_;
    Statement awayDirectory_;
    Statement removeDirectory_;
    Statement containerOfFile_;
    Statement removeFile_;
    Statement addFile_;
    Statement findContainer_;
    Statement addContainer_;
    Statement claimContainer_;
    Statement renameContainer_; // after its first file, in whatever order they are read
    Statement addFace_;
    Statement count_;
    Statement findTwin_;
    Statement findFamily_;
    Statement addFamily_;
    Statement addName_;
    Statement addFullName_;
    Statement findShared_;
    Statement addShared_;
    std::unordered_map<std::string, std::int64_t> families_;
    std::unordered_map<std::string, std::int64_t> shared_; ///< the kind before the value
    std::size_t sharedBytes_ = 0;
    std::set<std::int64_t> unsettled_; ///< containers in which spares may be others
    std::set<std::int64_t> changed_;   ///< containers whose counts are
};

} // namespace manager
