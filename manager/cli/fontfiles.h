// SPDX-License-Identifier: MIT
// Font files that a person names by their paths: what they hold, whether the library has them, and
// those that are to be active for one session without being added.
#pragma once

#include "manager/cli/sessioncopies.h"
#include "manager/cli/tally.h"
#include "manager/library/fontreader.h"
#include "manager/library/library.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace manager {

/// Whether a word means a file: it has a slash, or is the name of a file that is a font by its name
/// or by its contents. May fork, as readFontFiles() does.
[[nodiscard]] bool meansFontFile(const std::string& word);

/// Prints what each file holds, for decodeFontFiles(). The ExitStatus.
int readFontsCommand(const std::vector<std::string>& files);
/// The outcomes in the order of the files. What is not told any more is a problem of its file.
[[nodiscard]] std::vector<FontFileOutcome> decodeFontFiles(std::string_view printed,
                                                           const std::vector<std::string>& files);
/// The files' problems. Forks, as readFontFiles() does.
[[nodiscard]] std::vector<std::string> problemsOf(const std::vector<std::string>& files);

/// False, too, when one of them cannot be read.
[[nodiscard]] bool haveEqualBytes(const std::string& a, const std::string& b);

/// The faces of the library that have the PostScript name of one of these, or the family where that
/// has none. Throws Error.
[[nodiscard]] std::vector<FaceMatch> findNamesakes(Library& library,
                                                   const faces::FontFileContents& contents);

/// A face of the library's file that is this one, or has its bytes. Those of the library come
/// before one that is there for the session. Throws Error.
struct FileInLibrary {
    FaceMatch face;
    bool isForSession = false; ///< it goes when the session ends
};
[[nodiscard]] std::optional<FileInLibrary> findInLibrary(Library& library, const std::string& file,
                                                         const faces::FontFileContents& contents);

/// Puts the number of its container in the place of each name that means an existing font file.
/// One that the library does not have is copied, or fails where `copies` is nullptr. To be called
/// before anything connects to the bus. Throws Error.
[[nodiscard]] std::vector<std::string> containersOfFiles(const Places& places,
                                                         std::vector<std::string> names,
                                                         SessionCopies* copies, Tally& tally);

} // namespace manager
