// SPDX-License-Identifier: MIT
// What the names of an archive and of its entries mean for the library.
#pragma once

#include <string>
#include <string_view>

namespace manager {

/// Whether the name ends like an archive that can be read (any case): .zip, .7z, .tar, .tar.gz,
/// .tgz, .tar.bz2, .tbz2, .tar.xz, .txz, .tar.zst.
[[nodiscard]] bool hasArchiveName(std::string_view name);

/// Whether a file of this name (any case) tells of the licence or the makers of fonts: one of its
/// words begins with OFL, UFL, LICENCE, LICENSE, COPYING, COPYRIGHT, README, FONTLOG, AUTHORS or
/// EULA, and it ends in .txt, .md, .html, .htm, .pdf, .rtf or has no ending.
[[nodiscard]] bool hasLicenceFileName(std::string_view name);

/// The name of the folder for what an archive holds: its own, without endings; never empty, hidden
/// or longer than a name may be with a number behind it.
[[nodiscard]] std::string folderNameOf(std::string_view archivePath);

enum class EntryKind {
    Font,
    Text,    ///< a licence or what else tells of the fonts
    Archive, ///< one in the other
    Other,
};

/// What an entry is, and where it is to lie.
struct EntryPlace {
    EntryKind kind = EntryKind::Other;
    std::string path;    ///< in the archive's folder, without "." and ".."
    std::string problem; ///< why it can lie nowhere; then there is no path
};

/// By an entry's name as the archive has it: of any bytes, with slashes or backslashes. Metadata
/// that other systems add are EntryKind::Other.
[[nodiscard]] EntryPlace placeOf(std::string_view entryName);

} // namespace manager
