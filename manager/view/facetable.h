// SPDX-License-Identifier: MIT
// All faces of the library as the window's list shows and searches them, in memory: what a letter
// typed finds is shown before the next one is typed, however large the library is.
#pragma once

#include "faces/face.h"
#include "manager/library/library.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace manager {

/// A face's place in a FaceTable.
using FaceRow = std::uint32_t;

struct ListedFace {
    FaceId id{};
    ContainerId container{};
    std::uint32_t family = 0; ///< its place in the table
    std::uint64_t name = 0;   ///< a hash of the PostScript name; 0: it has none
    std::uint32_t folder = 0; ///< its place in the table
    std::uint32_t index = 0;  ///< as in faces::Face
    std::string style;
    std::string file; ///< its name, without the folder
    faces::Style look;
    faces::Technology technology = faces::Technology::TrueType;
    bool variable = false;
    bool shownByDesktop = false; ///< it lies where the desktop looks for fonts by itself
    bool away = false;           ///< its library folder is not there now
};

struct ListedFamily {
    std::string name;
    FaceRow first = 0; ///< its faces, one after the other
    std::uint32_t count = 0;
};

/// [any-thread] A value that does not change once it was read.
class FaceTable {
public:
    FaceTable() = default;
    /// Reads all faces but spares, as they are at one moment. Families come by name, their faces by
    /// weight, width and slant. Throws Error.
    explicit FaceTable(Library& library);

    [[nodiscard]] std::span<const ListedFamily> families() const { return families_; }
    [[nodiscard]] std::span<const ListedFace> faces() const { return faces_; }
    [[nodiscard]] std::span<const ListedFace> facesOf(const ListedFamily& family) const {
        return faces().subspan(family.first, family.count);
    }
    [[nodiscard]] std::span<const std::string> folders() const { return folders_; }
    [[nodiscard]] const std::string& folderOf(const ListedFace& face) const {
        return folders_[face.folder];
    }
    [[nodiscard]] std::string pathOf(const ListedFace& face) const {
        return joinPath(folderOf(face), face.file);
    }
    /// Where a face stands; nullopt: it is not in the table.
    [[nodiscard]] std::optional<FaceRow> rowOf(FaceId id) const;

    /// Keeps of `among` (or of all, where it is null) the faces of which each word of `text` is
    /// part of some name: family, style, full or PostScript name in any language. Case does not
    /// count. In the order of rows.
    [[nodiscard]] std::vector<FaceRow> find(std::string_view text,
                                            const std::vector<FaceRow>* among = nullptr) const;

private:
    struct KnownFamilies;
    struct KnownFiles;
    struct ReadFaces;
    [[nodiscard]] ReadFaces readFaces(Database& database, const KnownFamilies& families);
    void sort(ReadFaces read, const KnownFamilies& families);
    [[nodiscard]] std::string_view namesOf(FaceRow row) const;

    std::vector<std::string> folders_;
    std::vector<ListedFamily> families_;
    std::vector<ListedFace> faces_;
    std::string names_;                     ///< of all faces, in the order of rows
    std::vector<std::uint32_t> namesBegin_; ///< by row; one more at the end
    std::vector<std::pair<FaceId, FaceRow>> byId_;
};

} // namespace manager
