// SPDX-License-Identifier: MIT
// Recording folders and scanning them.
#include "manager/cli/libraryops.h"

#include "faces/fontfile.h"
#include "manager/cli/announce.h"
#include "manager/cli/arguments.h"
#include "manager/cli/bringing.h"
#include "manager/cli/drawingfaces.h"
#include "manager/cli/fontfiles.h"
#include "manager/cli/knownsets.h"
#include "manager/cli/onewindow.h"
#include "manager/cli/progress.h"
#include "manager/cli/tally.h"
#include "manager/library/cancel.h"
#include "manager/library/error.h"
#include "manager/library/folders.h"
#include "manager/view/texts.h"
#include "system/displays.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <span>
#include <thread>
#include <unistd.h>

namespace manager {

namespace {

// Another scan is waited for as long as one of a large library may take.
constexpr std::chrono::minutes longestScan{10};

FontReaderLimits readerLimits() {
    FontReaderLimits limits;
    limits.processes = std::clamp(std::thread::hardware_concurrency(), 1U, 8U);
    return limits;
}

UpdateReport scanOnce(const Places& places, bool changedAlready) {
    const auto library = openLibrary(
        places, [&] { return containersOnDisk(places); }, warn, IndexCheck::WhenUnclean);
    const bool owed = library->isScanOwed();
    const std::vector<std::string> folders = readFolders(places);
    UpdateReport report;
    try {
        report = updateLibrary(
            *library, folders, readerLimits(),
            [](UpdateStep step, std::size_t done, std::size_t total) {
                tellProgress(step == UpdateStep::Read ? Work::Read : Work::Compare, done, total);
            });
    } catch (const ScanCancelled& scan) { // what was read stays
        postLibraryChanged();
        throw Cancelled(filled(translated("cancelled: %1 of %2 font files were read; the next "
                                          "scan reads the others"),
                               {std::to_string(scan.read), std::to_string(scan.wanted)}));
    } catch (const Cancelled&) {
        postLibraryChanged();
        throw;
    }
    if (report.changed() || owed || changedAlready) {
        postLibraryChanged();
    }
    return report;
}

// Comes before anything that connects to the bus: the readers are forked.
UpdateReport scan(const Places& places, bool changedAlready) {
    makeFolders(places.own());
    const FileLock lock(places.scanLock(), longestScan);
    try {
        return scanOnce(places, changedAlready);
    } catch (const DamagedDatabase&) { // when it is opened again, it is mended
        return scanOnce(places, changedAlready);
    }
}

// Only what is new is told: what was wrong before, `list --problems` tells.
void tellScan(const UpdateReport& report, bool quiet, Tally& tally) {
    for (const std::string& problem : report.problems) {
        tally.remark(problem);
    }
    tally.set("scan", {{"read", report.read},
                       {"unchanged", report.unchanged},
                       {"gone", report.removed},
                       {"unreadFolders", report.unreadFolders.size()},
                       {"knownProblems", report.knownProblems.size()}});
    if (!quiet && !tally.isJson()) {
        const std::string known =
            report.knownProblems.empty()
                ? std::string()
                : ", " + counted(report.knownProblems.size(), "known problem");
        std::printf("%s read, %zu unchanged, %zu gone%s\n",
                    counted(report.read, "font file").c_str(), report.unchanged, report.removed,
                    known.c_str());
    }
}

void tellUnread(const UpdateReport& report, Tally& tally) {
    for (const std::string& folder : report.unreadFolders) {
        tally.fail(folder + ": " +
                   translated("the recorded folder is away; \"glyphora list --problems\" tells "
                              "why"));
    }
}

// Deals with each folder by itself, so that a wrong one costs only itself.
using FolderFunction = std::vector<std::string> (*)(const Places&, std::span<const std::string>);
bool changeFolders(const Places& places, const std::vector<std::string>& folders, const char* deed,
                   FolderFunction change, Tally& tally) {
    bool changed = false;
    for (const std::string& folder : folders) {
        try {
            const auto paths = change(places, std::span(&folder, 1));
            if (paths.empty()) {
                tally.remark(folder + ": " + translated("is in the library already"));
            }
            for (const std::string& path : paths) {
                tally.add(std::string(deed) + " " + path, {{"path", path}});
                changed = true;
            }
        } catch (const Error& error) {
            tally.fail(error.what());
        }
    }
    return changed;
}

// The list of folders is changed by then, and stays so when the scan fails.
void scanChanged(const Places& places, bool changed, Tally& tally, bool isUnreadTold) {
    try {
        const UpdateReport report = scan(places, changed);
        tellScan(report, false, tally);
        if (isUnreadTold) {
            tellUnread(report, tally);
        }
    } catch (const Error& error) {
        tally.fail(error.what());
    }
}

} // namespace

std::unique_ptr<Library> openToAnswer(const Places& places) {
    constexpr std::chrono::milliseconds patience{100}; // for several to fit into a reply's time
    return openLibrary(
        places, [&] { return containersOnDisk(places); }, warn, IndexCheck::Never, patience);
}

std::unique_ptr<Library> openKnown(const Places& places) {
    return openLibrary(
        places, [&] { return containersOnDisk(places); }, warn);
}

std::unique_ptr<Library> openScanned(const Places& places) {
    auto library = openKnown(places);
    if (library->isScanOwed()) {
        library.reset();
        for (const std::string& problem : scan(places, false).problems) {
            warn(problem);
        }
        library = openKnown(places);
    }
    return library;
}

std::vector<std::string> scanNow(const Places& places) {
    return scan(places, false).problems;
}

int addCommand(const Places& places, const std::vector<std::string>& paths, bool json) {
    const CancelBySignals cancel;
    Tally tally(json, "added");
    std::vector<std::string> folders = paths;
    std::error_code ignored;
    const auto files =
        std::stable_partition(folders.begin(), folders.end(), [&](const std::string& path) {
            return !std::filesystem::is_regular_file(path, ignored);
        });
    const std::vector<std::string> single(files, folders.end());
    folders.erase(files, folders.end());
    bool changed = changeFolders(places, folders, "added", addFolders, tally);
    changed = (!single.empty() && bringFiles(places, single, tally)) || changed;
    scanChanged(places, changed, tally, true);
    return tally.finish();
}

int removeCommand(const Places& places, const std::vector<std::string>& folders, bool json) {
    Tally tally(json, "removed");
    if (changeFolders(places, folders, "removed", removeFolders, tally)) {
        // What it meets in other folders is no fault of this.
        scanChanged(places, true, tally, false);
    }
    return tally.finish();
}

int scanCommand(const Places& places, bool quiet, bool json) {
    std::optional<CancelBySignals> cancel;
    if (!quiet) { // that of the server ends at once: nobody is to be told
        cancel.emplace();
    }
    Tally tally(json);
    const UpdateReport report = scan(places, false);
    tellScan(report, quiet, tally);
    if (!quiet) {
        tellUnread(report, tally);
    }
    const int status = tally.finish();
    if (report.unreadFolders.empty()) {
        return status;
    }
    return report.unreadFolders.size() == readFolders(places).size() ? exitFailure : exitPartly;
}

int listCommand(const Places& places, Listing listing) {
    const auto library = openScanned(places);
    printLibrary(*library, Activation(places), readFolders(places), listing);
    return exitSuccess;
}

std::string readInput() {
    std::string text;
    std::array<char, 65536> block{};
    ssize_t count = 0;
    while ((count = read(STDIN_FILENO, block.data(), block.size())) > 0) {
        text.append(block.data(), static_cast<std::size_t>(count));
    }
    return text;
}

int showCommand(const Places& places, const std::vector<std::string>& words, bool asked,
                const std::string& pictures) {
    if (!pictures.empty()) {
        static_cast<void>(openScanned(places)); // before the bus is asked
    }
    WindowOptions options{.places = places,
                          .program = std::filesystem::read_symlink("/proc/self/exe").string(),
                          .request = {},
                          .pictures = pictures};
    std::string& search = options.request.search;
    for (const std::string& word : words) {
        if (meansDrawing(word)) {
            options.request.drawings.push_back(std::filesystem::absolute(word).string());
        } else if (word.find('/') != std::string::npos && std::filesystem::is_directory(word)) {
            throw Error(word + ": is a folder; \"glyphora add\" takes it into the library");
        } else if (meansFontFile(word)) {
            options.request.files.push_back(std::filesystem::absolute(word).string());
        } else if (faces::hasFontFileName(word)) {
            throw Error(word + ": there is no such file");
        } else {
            search += (search.empty() ? "" : " ") + word;
        }
    }
    if (pictures.empty() && !sys::namesDisplay() && !options.request.files.empty()) {
        // Nobody will see in a window what is wrong with them.
        const auto problems = problemsOf(options.request.files);
        std::for_each(problems.begin(), problems.end(), warn);
    }
    if (asked) {
        options.request.command = readInput();
        static_cast<void>(parseCommand(options.request.command)); // a wrong one is told here
    }
    if (!options.request.drawings.empty() && (asked || !search.empty())) {
        warn("show lists the fonts of drawings, or what is searched or asked for, not both");
        return exitUsage;
    }
    chooseUsersLanguage(); // before the bus has threads
    if (pictures.empty()) {
        if (handOver(options.request)) {
            return exitSuccess;
        }
        static_cast<void>(openKnown(places)); // the window sees to a scan
    }
    return showWindow(options);
}

} // namespace manager
