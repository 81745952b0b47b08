// SPDX-License-Identifier: MIT
// Writes what a scan found to the index.
#pragma once

#include "manager/library/fontreader.h"
#include "manager/library/library.h"
#include "manager/library/walk.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace manager {

/// Used within transactions of its user. All calls throw Error.
class IndexWriter {
public:
    explicit IndexWriter(Database& database);

    void remove(std::string_view path) { removeFile_.bind(1, path).run(); }
    /// Writes a file's outcome in place of an earlier one. A file with a passing problem is written
    /// with a stamp that no file has, so that the next scan reads it again.
    void write(const FoundFile& file, const FontFileOutcome& outcome);

private:
    std::int64_t containerOf(const std::string& path, const faces::FontFileContents& contents);
    void writeFace(std::int64_t file, std::int64_t container, const faces::Face& face);

    Database& database_;
    Statement removeFile_;
    Statement addFile_;
    Statement findContainer_;
    Statement addContainer_;
    Statement renameContainer_; // after its first file by path, in whatever order they are read
    Statement addFace_;
    Statement addName_;
};

} // namespace manager
