// SPDX-License-Identifier: MIT
// Recording folders and scanning them.
#include "manager/cli/libraryops.h"

#include "manager/cli/announce.h"
#include "manager/cli/arguments.h"
#include "manager/cli/knownsets.h"
#include "manager/library/folders.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
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

// Comes before anything that connects to the bus: the readers are forked. exitFailure when a
// recorded folder could not be read.
int scan(const Places& places, bool quiet, bool changedAlready) {
    makeFolders(places.own());
    const FileLock lock(places.scanLock(), longestScan);
    const auto library = openForUse(places);
    const bool owed = library->isScanOwed();
    const std::vector<std::string> folders = readFolders(places);
    const bool showProgress = !quiet && isatty(STDERR_FILENO) != 0;
    UpdateProgress progress;
    if (showProgress) {
        progress = [](std::size_t done, std::size_t total) {
            std::fprintf(stderr, "\r%zu of %zu font files read", done, total);
            if (done == total) {
                std::fputc('\n', stderr);
            }
        };
    }
    const UpdateReport report = updateLibrary(*library, folders, readerLimits(), progress);
    for (const std::string& problem : report.problems) {
        warn(problem);
    }
    if (!quiet) {
        for (const std::string& problem : report.knownProblems) {
            warn(problem);
        }
        std::printf("%s read, %zu unchanged, %zu gone\n", counted(report.read, "font file").c_str(),
                    report.unchanged, report.removed);
    }
    if (report.changed() || owed || changedAlready) {
        postLibraryChanged();
    }
    return report.unreadFolders == 0 ? exitSuccess : exitFailure;
}

} // namespace

std::unique_ptr<Library> openForUse(const Places& places) {
    return openLibrary(
        places, [&] { return containersOnDisk(places); }, warn);
}

std::unique_ptr<Library> openScanned(const Places& places) {
    auto library = openForUse(places);
    if (library->isScanOwed()) {
        library.reset();
        scan(places, true, false);
        library = openForUse(places);
    }
    return library;
}

int addCommand(const Places& places, const std::vector<std::string>& folders) {
    const auto added = addFolders(places, folders);
    for (const std::string& folder : added) {
        printLine("added " + folder);
    }
    return scan(places, false, !added.empty());
}

int removeCommand(const Places& places, const std::vector<std::string>& folders) {
    const auto removed = removeFolders(places, folders);
    for (const std::string& folder : removed) {
        printLine("removed " + folder);
    }
    scan(places, false, !removed.empty()); // what it meets in other folders is no fault of this
    return exitSuccess;
}

int scanCommand(const Places& places, bool quiet) {
    return scan(places, quiet, false);
}

int listCommand(const Places& places, Listing listing) {
    const auto library = openScanned(places);
    printLibrary(*library, Activation(places), readFolders(places), listing);
    return exitSuccess;
}

} // namespace manager
