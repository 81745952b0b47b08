// SPDX-License-Identifier: MIT
// Finding and launching the font manager, and its version texts.
#include "GLYController.h"

#include "misc/text/numbers.h"
#include "misc/text/strings.h"
#include "platform/launchservices.h"
#include "platform/timing.h"

#include <array>
#include <memory>
#include <vector>

namespace GLY {

namespace {

constexpr double launchPatience = 15.0; // seconds

struct Release {
    void operator()(CFTypeRef object) const noexcept { CFRelease(object); }
};
using Text = std::unique_ptr<const PLString, Release>;
using Url = std::unique_ptr<const PLUrl, Release>;

/// For diagnostics; an application that was not found shows as an empty line.
void showPath(const FSRef& application) {
    constexpr std::uint32_t maximumSize = 2048;
    std::array<unsigned char, maximumSize + 1> path{};
    FSRefMakePath(&application, path.data(), maximumSize);
    const Text text(CFStringCreateWithCString(nullptr, reinterpret_cast<const char*>(path.data()),
                                              kCFStringEncodingUTF8));
    CFShow(text.get());
}

OSStatus launch(const FSSpec& application) {
    LaunchParamBlockRec block;
    block.launchBlockID = extendedBlock;
    block.launchEPBLength = extendedBlockLen;
    block.launchFileFlags = 0;
    // The host keeps running and stays in front.
    block.launchControlFlags = launchContinue | launchNoFileFlags | launchDontSwitch;
    block.launchAppSpec = &application;
    block.launchAppParameters = nullptr;
    return LaunchApplication(&block);
}

/// Polls without a pause, on purpose: the host is blocked all the same, nothing tells of a process
/// that has registered itself, and each look at the list costs a round trip of its own. A process
/// that has not shown up in time is left to the first exchange, which tries for another 10 s.
void awaitGlyphora() {
    const double start = CFAbsoluteTimeGetCurrent();
    ProcessInfoRec info;
    bool found = false;
    do {
        GLYController::FindGlyphoraProcess(info, found);
    } while (!found && CFAbsoluteTimeGetCurrent() - start < launchPatience);
}

} // namespace

OSStatus GLYController::FindGlyphoraProcess(ProcessInfoRec& info, bool& found) {
    found = false;
    ProcessSerialNumber process{0, kNoProcess};
    while (true) {
        ProcessInfoRec candidate;
        GetNextProcess(&process);
        const OSStatus status = GetProcessInformation(&process, &candidate);
        // Before the status: a record that could not be filled has no signature.
        if (candidate.processSignature == glyphoraSignature) {
            found = true;
            info = candidate;
            return noErr;
        }
        if (status != noErr) {
            return status;
        }
    }
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): by value, like the rest of this interface
OSStatus GLYController::LaunchGlyphora(std::string bundleId) {
    ProcessInfoRec info;
    bool isRunning = false;
    FindGlyphoraProcess(info, isRunning);
    if (isRunning) {
        return noErr;
    }

    const Text identifier(
        CFStringCreateWithCString(nullptr, bundleId.c_str(), kCFStringEncodingMacRoman));
    FSRef application;
    CFURLRef location = nullptr;
    const OSStatus lookUp = LSFindApplicationForInfo(kLSUnknownCreator, identifier.get(), nullptr,
                                                     &application, &location);
    const Url url(location);
    showPath(application);
    if (lookUp != noErr) {
        return lookUp;
    }

    FSSpec spec;
    if (url && CFURLGetFSRef(url.get(), &application)) {
        FSGetCatalogInfo(&application, kFSCatInfoNone, nullptr, nullptr, &spec, nullptr);
    }
    const OSStatus launched = launch(spec);
    if (launched != noErr) {
        return launched;
    }
    awaitGlyphora();
    return noErr;
}

OSStatus GLYController::LaunchGlyphora() {
    OSStatus status = noErr;
    for (const char* const bundleId : launcherBundleIds) {
        status = LaunchGlyphora(bundleId);
        if (status == noErr) {
            break;
        }
    }
    return status;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): by value, like the rest of this interface
int GLYController::CompareGLYVersion(std::string a, std::string b) {
    if (a.size() != b.size()) {
        return a.size() > b.size() ? 1 : -1;
    }
    const int order = a.compare(b);
    return static_cast<int>(order > 0) - static_cast<int>(order < 0);
}

bool GLYController::separateVersion(const std::string& text, unsigned& major, unsigned& minor) {
    const std::vector<std::string> pieces = Orvil::tokenize(text, ".", false);
    if (pieces.empty()) {
        return false;
    }
    bool ok = false;
    major = Orvil::safeParse<unsigned>(pieces[0], ok);
    if (ok && pieces.size() > 1) {
        minor = Orvil::safeParse<unsigned>(pieces[1], ok);
    }
    return ok;
}

bool GLYController::checkForNeededProtocolVersion(const std::string& text, unsigned needMajor,
                                                  unsigned needMinor) {
    unsigned major = 0;
    unsigned minor = 0;
    return separateVersion(text, major, minor) && major >= needMajor && minor >= needMinor;
}

int GLYController::CheckRunningVersion() {
    return 0;
}

bool isStoreEnabled() {
    return true;
}

} // namespace GLY
