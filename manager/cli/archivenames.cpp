// SPDX-License-Identifier: MIT
#include "manager/cli/archivenames.h"

#include "faces/fontfile.h"
#include "system/cuttext.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <vector>

namespace manager {

namespace {

using namespace std::string_view_literals;

constexpr std::array archiveEndings = {".zip"sv, ".7z"sv,      ".tar"sv,  ".tar.gz"sv,
                                       ".tgz"sv, ".tar.bz2"sv, ".tbz2"sv, ".tar.xz"sv,
                                       ".txz"sv, ".tar.zst"sv};
// Met inside only.
constexpr std::array otherArchiveEndings = {".rar"sv, ".gz"sv, ".bz2"sv, ".xz"sv, ".zst"sv};
constexpr std::array textStems = {"ofl"sv,       "ufl"sv,    "licence"sv, "license"sv, "copying"sv,
                                  "copyright"sv, "readme"sv, "fontlog"sv, "authors"sv, "eula"sv};
constexpr std::array textEndings = {""sv,     ".txt"sv, ".md"sv, ".html"sv,
                                    ".htm"sv, ".pdf"sv, ".rtf"sv};

constexpr std::size_t longestName = 255;
constexpr std::size_t longestPath = 2000;
constexpr std::size_t maximumDepth = 50;

std::string lower(std::string_view text) {
    std::string folded(text);
    std::transform(folded.begin(), folded.end(), folded.begin(),
                   [](unsigned char c) { return c < 0x80 ? std::tolower(c) : c; });
    return folded;
}

template <class Endings>
std::size_t endingLength(std::string_view name, const Endings& endings) {
    const std::string folded = lower(name);
    std::size_t longest = 0;
    for (const std::string_view ending : endings) {
        if (folded.ends_with(ending)) {
            longest = std::max(longest, ending.size());
        }
    }
    return longest;
}

bool isInWord(char folded) {
    return (folded >= 'a' && folded <= 'z') || static_cast<unsigned char>(folded) >= 0x80;
}

EntryKind kindOf(std::string_view name) {
    if (faces::hasFontFileName(name)) {
        return EntryKind::Font;
    }
    if (hasArchiveName(name) || endingLength(name, otherArchiveEndings) != 0) {
        return EntryKind::Archive;
    }
    return hasLicenceFileName(name) ? EntryKind::Text : EntryKind::Other;
}

std::vector<std::string_view> splitPath(std::string_view path) {
    std::vector<std::string_view> parts;
    while (!path.empty()) {
        const std::size_t end = std::min(path.find_first_of("/\\"), path.size());
        if (const std::string_view part = path.substr(0, end); !part.empty() && part != ".") {
            parts.push_back(part);
        }
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return parts;
}

std::string problemOf(std::string_view entryName, const std::vector<std::string_view>& parts) {
    if (entryName.starts_with('/') || entryName.starts_with('\\') ||
        (parts.front().size() == 2 && parts.front().back() == ':')) {
        return "its name leads out of the archive, as it is absolute";
    }
    if (std::find(parts.begin(), parts.end(), "..") != parts.end()) {
        return "its name leads out of the archive, by \"..\"";
    }
    if (parts.size() > maximumDepth) {
        return "it lies more than " + std::to_string(maximumDepth) + " folders deep";
    }
    if (entryName.size() > longestPath ||
        std::any_of(parts.begin(), parts.end(),
                    [](std::string_view part) { return part.size() > longestName; })) {
        return "its name is too long";
    }
    if (std::any_of(parts.begin(), parts.end(),
                    [](std::string_view part) { return part.starts_with('.'); })) {
        return "it is hidden";
    }
    return {};
}

} // namespace

bool hasArchiveName(std::string_view name) {
    return endingLength(name, archiveEndings) != 0;
}

bool hasLicenceFileName(std::string_view name) {
    const std::string folded = lower(name);
    const std::string_view ending =
        std::string_view(folded).substr(std::min(folded.rfind('.'), folded.size()));
    const auto beginsAWord = [&](std::string_view stem) {
        std::size_t place = folded.find(stem);
        while (place != std::string::npos && place != 0 && isInWord(folded[place - 1])) {
            place = folded.find(stem, place + 1);
        }
        return place != std::string::npos;
    };
    return std::find(textEndings.begin(), textEndings.end(), ending) != textEndings.end() &&
           std::any_of(textStems.begin(), textStems.end(), beginsAWord);
}

std::string folderNameOf(std::string_view archivePath) {
    const std::string_view name =
        archivePath.substr(archivePath.rfind('/') + 1); // npos + 1 is the begin
    constexpr std::size_t longest = 200;
    std::string folder(
        sys::cutText(name.substr(0, name.size() - endingLength(name, archiveEndings)), longest));
    if (folder.empty() || folder.starts_with('.')) {
        folder.insert(0, "_");
    }
    return folder;
}

EntryPlace placeOf(std::string_view entryName) {
    const std::vector<std::string_view> parts = splitPath(entryName);
    if (parts.empty() || parts.front() == "__MACOSX" || parts.back().starts_with("._")) {
        return {};
    }
    EntryPlace place{kindOf(parts.back()), {}, {}};
    if (place.kind == EntryKind::Other) {
        return place;
    }
    place.problem = problemOf(entryName, parts);
    for (const std::string_view part : parts) {
        if (place.problem.empty()) {
            place.path.append(place.path.empty() ? "" : "/").append(part);
        }
    }
    return place;
}

} // namespace manager
