// SPDX-License-Identifier: MIT
#include "manager/cli/bringing.h"

#include "faces/fontfile.h"
#include "manager/activation/filesteps.h"
#include "manager/cli/fontfiles.h"
#include "manager/cli/knownsets.h"
#include "manager/cli/report.h"
#include "manager/cli/unpacking.h"
#include "manager/library/cancel.h"
#include "manager/library/error.h"
#include "manager/library/folders.h"
#include "manager/library/fontreader.h"
#include "manager/library/library.h"
#include "manager/view/texts.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>
#include <unordered_map>
#include <variant>

namespace manager {

namespace {

namespace fs = std::filesystem;

// Another that brings archives is waited for as long as it may take.
constexpr std::chrono::minutes longestBringing{10};

std::vector<FontFileOutcome> readAll(const std::vector<std::string>& files) {
    std::vector<FontFileOutcome> outcomes(files.size());
    readFontFiles(files, {}, [&](std::size_t position, FontFileOutcome outcome) {
        outcomes[position] = std::move(outcome);
    });
    return outcomes;
}

/// A folder for what is not whole yet, hidden from scans. One that was ended in the midst leaves it
/// for the next to replace.
class HiddenFolder {
public:
    explicit HiddenFolder(const std::string& parent) : path_(joinPath(parent, ".unpacking")) {
        removeTree(path_);
        makeFolders(files());
        makeFolders(whole());
    }
    HiddenFolder(const HiddenFolder&) = delete;
    HiddenFolder& operator=(const HiddenFolder&) = delete;
    ~HiddenFolder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    [[nodiscard]] std::string files() const { return path_ + "/files"; }
    [[nodiscard]] std::string whole() const { return path_ + "/whole"; }
    /// Syncs all that was written, which for many files is faster than each by itself.
    void sync() const {
        const sys::Descriptor folder(open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!folder || syncfs(folder.get()) != 0) {
            throw systemError(path_, "cannot be synced", errno);
        }
    }

private:
    std::string path_;
};

class Bringing {
public:
    Bringing(const Places& places, Tally& tally)
        : places_(places), tally_(tally), library_(open(places)), folders_(readFolders(places)) {}

    void take(const std::string& file, const FontFileOutcome& outcome) {
        if (const auto* const problem = std::get_if<FontFileProblem>(&outcome)) {
            tally_.fail(problem->text);
            return;
        }
        const auto& font = std::get<ReadFont>(outcome);
        const std::string twin = twinOf(file, font, fs::path(file).filename().string());
        if (twin.empty()) {
            copy(file, font);
        } else {
            tally_.remark(file + ": " +
                          filled(translated("is in the library already, as %1"), {twin}));
        }
    }

    void takeArchive(const std::string& archive) {
        const std::string name = folderNameOf(fs::absolute(archive).string());
        const HiddenFolder hidden(places_.singleFonts());
        Unpacking unpacking(archive, tally_);
        std::vector<UnpackedFile> files = unpacking.unpack(hidden.files());
        std::vector<std::pair<std::string, const ReadFont*>> taken;
        const std::vector<FontFileOutcome> outcomes = readFonts(files);
        std::size_t known = 0;
        std::size_t position = 0;
        std::string twin;
        std::erase_if(files, [&](const UnpackedFile& file) {
            if (file.place.kind != EntryKind::Font) {
                return false;
            }
            const FontFileOutcome& outcome = outcomes[position++];
            if (const auto* const problem = std::get_if<FontFileProblem>(&outcome)) {
                tally_.fail(archive + ": " + file.entry + problem->text.substr(file.path.size()));
                return true;
            }
            const auto& font = std::get<ReadFont>(outcome);
            const std::string copy = twinOf(file.path, font, joinPath(name, file.place.path));
            if (!copy.empty()) {
                ++known;
                twin = copy;
                return true;
            }
            taken.emplace_back(file.place.path, &font);
            return false;
        });
        if (taken.empty()) {
            tellNothing(archive, outcomes.size(), known, twin);
        } else {
            const std::size_t count = unpacking.putInPlace(files, hidden.whole());
            hidden.sync();
            const std::string target = takeName(hidden.whole(), name);
            for (const auto& [place, font] : taken) {
                remember(joinPath(target, place), *font);
            }
            tellTaken(archive, target, count, outcomes.size(), known);
        }
        unpacking.finish();
    }

    [[nodiscard]] bool isAnyTaken() const { return isAnyTaken_; }

private:
    static std::unique_ptr<Library> open(const Places& places) {
        return openLibrary(
            places, [&] { return containersOnDisk(places); }, warn);
    }

    static std::vector<FontFileOutcome> readFonts(const std::vector<UnpackedFile>& files) {
        std::vector<std::string> fonts;
        for (const UnpackedFile& file : files) {
            if (file.place.kind == EntryKind::Font) {
                fonts.push_back(file.path);
            }
        }
        return readAll(fonts);
    }

    void tellNothing(const std::string& archive, std::size_t fonts, std::size_t known,
                     const std::string& twin) {
        if (known != 0) {
            const std::string words =
                translated("its font is in the library already, as %2",
                           "its %1 fonts are in the library already, as %2", known);
            tally_.remark(archive + ": " + filled(words, {"", twin}));
        } else if (fonts == 0) {
            tally_.fail(archive + ": " + translated("there is no font file in it"));
        }
    }

    void tellTaken(const std::string& archive, const std::string& target, std::size_t taken,
                   std::size_t fonts, std::size_t known) {
        if (known != 0) {
            const std::string words =
                translated("%1 of its %2 fonts is in the library already",
                           "%1 of its %2 fonts are in the library already", known);
            tally_.remark(archive + ": " + filled(words, {"", std::to_string(fonts)}));
        }
        tally_.add("added " + archive + " as " + target + ", " + counted(taken, "font file"),
                   {{"path", target}, {"source", archive}, {"files", taken}});
    }

    /// Fonts that differ in it differ.
    using Likeness = std::uint64_t;

    void remember(std::string path, const ReadFont& font) {
        copies_.emplace(font.digest, std::move(path));
    }

    /// The library's file that is this one or has its bytes. `place`: where it would lie.
    std::string twinOf(const std::string& file, const ReadFont& font, const std::string& place) {
        std::error_code ignored;
        std::string path = fs::canonical(file, ignored).string();
        const bool isOurs = liesUnder(path, places_.singleFonts() + "/.unpacking");
        if (!isOurs && std::any_of(folders_.begin(), folders_.end(),
                                   [&](const auto& folder) { return liesUnder(path, folder); })) {
            return path;
        }
        const auto [begin, end] = copies_.equal_range(font.digest);
        const auto copy = std::find_if(
            begin, end, [&](const auto& taken) { return haveEqualBytes(taken.second, file); });
        if (copy != end) {
            return copy->second;
        }
        // What was brought before and has not been scanned yet.
        if (path = joinPath(places_.singleFonts(), place); haveEqualBytes(path, file)) {
            return path;
        }
        for (const FaceMatch& match : findNamesakes(*library_, font.contents)) {
            std::string known = joinPath(match.folder, match.fileName);
            if (!isForSession(known) && haveEqualBytes(known, file)) {
                return known;
            }
        }
        return {};
    }

    [[nodiscard]] bool isForSession(const std::string& known) const {
        const std::string session = sessionFolder(places_);
        return !session.empty() && liesUnder(known, session);
    }

    /// Moves what is whole to a name in the folder that is free; returns its path.
    std::string takeName(const std::string& hidden, const fs::path& name) {
        const std::string folder = places_.singleFonts();
        fs::path target = fs::path(folder) / name;
        for (int number = 2; !renameToFree(hidden, target.string()); ++number) {
            if (const int code = errno; code != EEXIST && !exists(target.string())) {
                throw systemError(target.string(), "cannot be given its name", code);
            }
            const bool isFile = !isFolder(hidden);
            const std::string stem = isFile ? name.stem().string() : name.string();
            target = fs::path(folder) / (stem + " (" + std::to_string(number) + ")" +
                                         (isFile ? name.extension().string() : ""));
        }
        isAnyTaken_ = true;
        return target.string();
    }

    void copy(const std::string& file, const ReadFont& font) {
        // One that was ended in the midst leaves it hidden, for the next to replace.
        const std::string hidden = joinPath(places_.singleFonts(), ".incoming");
        cloneOrCopy(file, hidden);
        syncFile(hidden);
        const std::string target = takeName(hidden, fs::path(file).filename());
        remember(target, font);
        tally_.add("added " + file + " as " + target, {{"path", target}, {"source", file}});
    }

    const Places& places_;
    Tally& tally_;
    std::unique_ptr<Library> library_;
    std::vector<std::string> folders_;
    std::unordered_multimap<Likeness, std::string> copies_;
    bool isAnyTaken_ = false;
};

// What is wrong with one costs only that one.
template <class Deed>
void attempt(Tally& tally, const Deed& deed) {
    checkCancelled();
    try {
        deed();
    } catch (const Cancelled&) {
        throw;
    } catch (const Error& error) {
        tally.fail(error.what());
    }
}

} // namespace

bool bringFiles(const Places& places, const std::vector<std::string>& files, Tally& tally) {
    std::vector<std::string> fonts;
    std::vector<std::string> archives;
    for (const std::string& file : files) {
        if (faces::hasFontFileName(file)) {
            fonts.push_back(file);
        } else if (hasArchiveName(file)) {
            archives.push_back(file);
        } else {
            tally.fail(file + ": " +
                       translated("cannot be added: neither a folder nor a font file nor an "
                                  "archive by its name"));
        }
    }
    makeFolders(places.singleFonts());
    const FileLock lock(places.singleFonts() + ".lock", longestBringing);
    Bringing bringing(places, tally);
    try {
        const auto outcomes = readAll(fonts);
        for (std::size_t i = 0; i < fonts.size(); ++i) {
            attempt(tally, [&] { bringing.take(fonts[i], outcomes[i]); });
        }
        for (const std::string& archive : archives) {
            attempt(tally, [&] { bringing.takeArchive(archive); });
        }
    } catch (const Cancelled&) {
        tally.fail(translated("cancelled: of the files only what was told of was added"));
    }
    if (!bringing.isAnyTaken()) {
        return false;
    }
    syncFolder(places.singleFonts());
    const std::string folder = places.singleFonts();
    static_cast<void>(addFolders(places, std::span(&folder, 1)));
    return true;
}

} // namespace manager
