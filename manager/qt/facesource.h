// SPDX-License-Identifier: MIT
// Where the right side of a window learns what a face has: from the library, or from a file that
// was opened by itself.
#pragma once

#include "manager/qt/libraryreader.h"
#include "manager/view/characters.h"

#include <functional>
#include <memory>
#include <vector>

namespace manager {

/// [main-thread] What is read is given later, from the loop; of a face that is gone it is empty.
class FaceSource {
public:
    /// `instances` are the named ones of the face's file, if it varies.
    using FaceTaker =
        std::function<void(const faces::Face& face, const std::vector<faces::Face>& instances)>;
    using CharacterTaker = std::function<void(std::shared_ptr<const Characters> characters)>;

    virtual ~FaceSource() = default;
    virtual void readFace(FaceId id, FaceTaker take) = 0;
    virtual void readCharacters(FaceId id, CharacterTaker take) = 0;
};

/// The library's faces, by their numbers in its index.
class LibraryFaces : public FaceSource {
public:
    /// `reader` must outlive it.
    explicit LibraryFaces(LibraryReader& reader) : reader_(reader) {}
    void readFace(FaceId id, FaceTaker take) override;
    void readCharacters(FaceId id, CharacterTaker take) override;

private:
    LibraryReader& reader_;
};

/// Whether `other` is a named instance of the face at `index`, which is in the same file.
[[nodiscard]] bool isInstanceOf(const faces::Face& other, std::uint32_t index);
/// Whether a named instance is what its variable face is by itself, by that name.
[[nodiscard]] bool isNamedTwice(const faces::Face& instance, const std::vector<faces::Face>& faces);

} // namespace manager
