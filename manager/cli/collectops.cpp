// SPDX-License-Identifier: MIT
// Copies are made in a hidden folder beside the new one, which then takes its name at one stroke.
#include "manager/cli/collectops.h"

#include "manager/activation/activation.h"
#include "manager/activation/filesteps.h"
#include "manager/cli/arguments.h"
#include "manager/cli/collectedlist.h"
#include "manager/cli/containernames.h"
#include "manager/cli/libraryops.h"
#include "manager/cli/licencefiles.h"
#include "manager/cli/progress.h"
#include "manager/cli/tally.h"
#include "manager/library/cancel.h"
#include "manager/library/error.h"
#include "manager/view/facefacts.h"
#include "manager/view/texts.h"
#include "system/cuttext.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <stdlib.h>
#include <utility>

namespace manager {

namespace {

namespace fs = std::filesystem;

/// A folder that goes with its owner unless it was given its name.
class NewFolder {
public:
    explicit NewFolder(const fs::path& wanted) : wanted_(fs::absolute(wanted)) {
        if (!wanted_.has_filename()) {
            wanted_ = wanted_.parent_path(); // it ends in a slash
        }
        if (fs::exists(fs::symlink_status(wanted_))) {
            throw Error(wanted_.string() + ": " +
                        translated("is there already; collect makes a new folder"));
        }
        if (!fs::is_directory(wanted_.parent_path())) {
            throw Error(wanted_.string() + ": " +
                        filled(translated("cannot be made: there is no folder %1"),
                               {wanted_.parent_path().string()}));
        }
        std::string name =
            (wanted_.parent_path() / ("." + wanted_.filename().string() + ".XXXXXX")).string();
        if (mkdtemp(name.data()) == nullptr) {
            throw systemError(wanted_.string(), "cannot be made", errno);
        }
        path_ = name;
    }
    NewFolder(const NewFolder&) = delete;
    NewFolder& operator=(const NewFolder&) = delete;
    ~NewFolder() {
        std::error_code ignored;
        if (!path_.empty()) {
            fs::remove_all(path_, ignored);
        }
    }

    [[nodiscard]] const fs::path& path() const { return path_; }
    void giveName() {
        fs::permissions(path_,
                        fs::perms::group_read | fs::perms::group_exec | fs::perms::others_read |
                            fs::perms::others_exec,
                        fs::perm_options::add);
        if (!renameToFree(path_, wanted_)) {
            throw systemError(wanted_.string(), "cannot be given its name", errno);
        }
        path_.clear();
    }

private:
    fs::path wanted_;
    fs::path path_;
};

/// Makes a folder for the container alone, whatever this file system takes for one name.
fs::path makeFolderFor(const Container& container, const fs::path& parent) {
    constexpr std::size_t longest = 200; // of a name's 255 bytes: a number may follow
    std::string name(sys::cutText(container.name, longest));
    std::replace(name.begin(), name.end(), '/', '_');
    if (name.empty() || name.front() == '.') {
        name.insert(0, "_");
    }
    while (!fs::create_directory(parent / name)) {
        name += " (" + toText(container.id) + ")";
    }
    return parent / name;
}

/// Copies a file where nothing lies yet, also where case does not count in names. False: there is
/// a problem, in `code`, and nothing of it is left there.
bool copyTo(const fs::path& target, const std::string& source, std::error_code& code) {
    if (fs::copy_file(source, target, code)) {
        return true;
    }
    if (code != std::errc::file_exists) { // then it is another file's copy
        std::error_code ignored;
        fs::remove(target, ignored);
    }
    return false;
}

/// What the list needs: an index of many faces is large.
CollectedFace listed(const FaceDetails& details) {
    CollectedFace face{details.match.familyName + " " + details.match.styleName, {}};
    face.facts.postScriptName = details.face.postScriptName;
    face.facts.version = details.face.version;
    face.facts.foundry = details.face.foundry;
    face.facts.copyright = details.face.copyright;
    face.facts.licence = details.face.licence;
    face.facts.licenceLink = details.face.licenceLink;
    face.facts.embedding = details.face.embedding;
    return face;
}

nlohmann::ordered_json toJson(const CollectedFace& face, const FaceMatch& match) {
    const faces::Face& facts = face.facts;
    return {{"postScriptName", facts.postScriptName},
            {"family", match.familyName},
            {"style", match.styleName},
            {"version", facts.version},
            {"foundry", facts.foundry},
            {"copyright", facts.copyright},
            {"licence", facts.licence},
            {"licenceLink", facts.licenceLink},
            {"embedding", facts.embedding ? nlohmann::ordered_json(*facts.embedding) : nullptr},
            {"embeddingText", embeddingWords(facts.embedding)}};
}

class Collecting {
public:
    Collecting(Library& library, const fs::path& folder, Tally& tally)
        : library_(library), folder_(folder), tally_(tally), licences_(foldersOf(library)) {}

    /// `only`: the names of its files that are meant; nullopt: all.
    void add(const Container& container, const std::optional<std::set<std::string>>& only) {
        fs::path own;
        try {
            own = makeFolderFor(container, folder_);
        } catch (const fs::filesystem_error& error) {
            const int code = error.code().value();
            tally_.fail(systemError(container.name, "no folder can be made", code).what());
            return;
        }
        const auto faces = library_.faces(container.id);
        std::optional<std::vector<std::string>> licences; // where a font was copied
        for (const LibraryFile& file : library_.files(container.id)) {
            checkCancelled();
            const std::string name = nameOf(file.path);
            if (only && !only->contains(name)) {
                continue;
            }
            std::error_code code;
            if (!copyTo(own / name, file.path, code)) {
                tally_.fail(systemError(file.path, "cannot be copied", code.value()).what());
                continue;
            }
            if (!licences) {
                licences = copyLicences(container.folder, own);
            }
            tell(file, own.filename() / name, *licences, faces);
        }
        std::error_code ignored;
        fs::remove(own, ignored); // when nothing could be copied into it
    }
    /// In the user's language, which all else in this process need not speak: the list is passed
    /// on.
    void writeList() const {
        chooseUsersLanguage();
        writeFile((folder_ / "fonts.txt").string(), textOf(files_));
    }
    [[nodiscard]] bool isEmpty() const { return files_.empty(); }

private:
    static std::set<std::string> foldersOf(Library& library) {
        const std::vector<std::string> folders = library.directories();
        return {folders.begin(), folders.end()};
    }

    /// Copies those of the fonts in `folder` to `own`. Their paths in the new folder.
    std::vector<std::string> copyLicences(const std::string& folder, const fs::path& own) {
        const LicenceFiles::Found found = licences_.of(folder);
        if (!found.problem.empty()) {
            tally_.fail(found.problem);
        }
        std::vector<std::string> copies;
        for (const std::string& path : found.paths) {
            checkCancelled();
            const std::string name = nameOf(path);
            std::error_code code;
            if (copyTo(own / name, path, code)) {
                copies.push_back(own.filename() / name);
            } else {
                tally_.fail(systemError(path, "cannot be copied", code.value()).what());
            }
        }
        return copies;
    }

    void tell(const LibraryFile& file, const fs::path& copy,
              const std::vector<std::string>& licences, const std::vector<FaceDetails>& faces) {
        CollectedFile collected{copy.string(), licences, {}};
        auto told = nlohmann::ordered_json::array();
        for (const FaceDetails& details : faces) {
            if (joinPath(details.match.folder, details.match.fileName) == file.path) {
                collected.faces.push_back(listed(details));
                told.push_back(toJson(collected.faces.back(), details.match));
            }
        }
        files_.push_back(std::move(collected));
        tally_.add("copied " + copy.string(), {{"path", copy.string()},
                                               {"source", file.path},
                                               {"licenceFiles", licences},
                                               {"faces", std::move(told)}});
    }

    Library& library_;
    fs::path folder_;
    Tally& tally_;
    LicenceFiles licences_;
    std::vector<CollectedFile> files_;
};

} // namespace

int collectCommand(const Places& places, const std::vector<std::string>& names,
                   const std::string& to, bool json) {
    const CancelBySignals cancel;
    Tally tally(json, "collected");
    try {
        NewFolder folder(to);
        const Activation activation(places);
        ContainerNames finder(
            places, activation, [&] { return openScanned(places); }, tally);
        const auto containers = finder.find(names);
        Collecting collecting(finder.library(), folder.path(), tally);
        for (std::size_t done = 0; done < containers.size(); ++done) {
            tellProgress(Work::Copy, done, containers.size());
            collecting.add(containers[done], finder.onlyFiles(containers[done].id));
        }
        if (!collecting.isEmpty()) {
            collecting.writeList();
            folder.giveName();
        }
    } catch (const Cancelled&) {
        throw Cancelled(to + ": " + translated("not made, as it was cancelled"));
    } catch (const fs::filesystem_error& error) {
        throw systemError(to, "cannot be written", error.code().value());
    }
    return tally.finish();
}

} // namespace manager
