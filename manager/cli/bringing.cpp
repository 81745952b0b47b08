// SPDX-License-Identifier: MIT
#include "manager/cli/bringing.h"

#include "faces/fontfile.h"
#include "manager/activation/filesteps.h"
#include "manager/cli/knownsets.h"
#include "manager/cli/report.h"
#include "manager/library/error.h"
#include "manager/library/folders.h"
#include "manager/library/fontreader.h"
#include "manager/library/library.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <variant>

namespace manager {

namespace {

namespace fs = std::filesystem;

bool haveEqualBytes(const std::string& a, const std::string& b) {
    std::error_code noSize;
    if (fs::file_size(a, noSize) != fs::file_size(b, noSize) || noSize) {
        return false;
    }
    std::ifstream one(a, std::ios::binary);
    std::ifstream other(b, std::ios::binary);
    using Bytes = std::istreambuf_iterator<char>;
    return one && other && std::equal(Bytes(one), Bytes(), Bytes(other), Bytes());
}

class Bringing {
public:
    Bringing(const Places& places, Tally& tally)
        : places_(places), tally_(tally), library_(open(places)), folders_(readFolders(places)) {}

    void take(const std::string& file, const FontFileOutcome& outcome) {
        if (const auto* const problem = std::get_if<FontFileProblem>(&outcome)) {
            tally_.fail(problem->text);
            return;
        }
        try {
            const std::string twin = twinOf(file, std::get<ReadFont>(outcome).contents);
            if (twin.empty()) {
                copy(file);
            } else {
                tally_.remark(file + ": is in the library already, as " + twin);
            }
        } catch (const Error& error) {
            tally_.fail(error.what());
        }
    }
    [[nodiscard]] bool isAnyTaken() const { return !copies_.empty(); }

private:
    static std::unique_ptr<Library> open(const Places& places) {
        return openLibrary(
            places, [&] { return containersOnDisk(places); }, warn);
    }

    /// The library's file that is this one or has its bytes.
    std::string twinOf(const std::string& file, const faces::FontFileContents& contents) {
        std::error_code ignored;
        std::string path = fs::canonical(file, ignored).string();
        if (std::any_of(folders_.begin(), folders_.end(),
                        [&](const auto& folder) { return liesUnder(path, folder); })) {
            return path;
        }
        const auto copy = std::find_if(copies_.begin(), copies_.end(), [&](const auto& taken) {
            return haveEqualBytes(taken, file);
        });
        if (copy != copies_.end()) {
            return *copy;
        }
        for (const faces::Face& face : contents.faces) {
            for (const FaceMatch& match : library_->findByPostScriptName(face.postScriptName)) {
                std::string known = joinPath(match.folder, match.fileName);
                if (haveEqualBytes(known, file)) {
                    return known;
                }
            }
        }
        return {};
    }

    void copy(const std::string& file) {
        const std::string folder = places_.singleFonts();
        // One that was ended in the midst leaves it hidden, for the next to replace.
        const std::string hidden = joinPath(folder, ".incoming");
        cloneOrCopy(file, hidden);
        syncFile(hidden);
        const fs::path name = fs::path(file).filename();
        fs::path target = fs::path(folder) / name;
        for (int number = 2; !renameToFree(hidden, target.string()); ++number) {
            if (const int code = errno; code != EEXIST && !exists(target.string())) {
                throw systemError(target.string(), "cannot be given its name", code);
            }
            target = fs::path(folder) / (name.stem().string() + " (" + std::to_string(number) +
                                         ")" + name.extension().string());
        }
        copies_.push_back(target.string());
        tally_.add("added " + file + " as " + target.string(),
                   {{"path", target.string()}, {"source", file}});
    }

    const Places& places_;
    Tally& tally_;
    std::unique_ptr<Library> library_;
    std::vector<std::string> folders_;
    std::vector<std::string> copies_;
};

} // namespace

bool bringFiles(const Places& places, const std::vector<std::string>& files, Tally& tally) {
    std::vector<std::string> fonts;
    for (const std::string& file : files) {
        if (faces::hasFontFileName(file)) {
            fonts.push_back(file);
        } else {
            tally.fail(file + ": cannot be added: neither a folder nor a font file by its name");
        }
    }
    std::vector<FontFileOutcome> outcomes(fonts.size());
    readFontFiles(fonts, {}, [&](std::size_t position, FontFileOutcome outcome) {
        outcomes[position] = std::move(outcome);
    });
    makeFolders(places.singleFonts());
    const FileLock lock(places.singleFonts() + ".lock");
    Bringing bringing(places, tally);
    for (std::size_t i = 0; i < fonts.size(); ++i) {
        bringing.take(fonts[i], outcomes[i]);
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
