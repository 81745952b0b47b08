// SPDX-License-Identifier: MIT
// Scripted processes, applications and their launching.
#include "tests/support/scriptedplatform/scriptedplatform.h"

#include "platform/launchservices.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string_view>

using scripted::Platform;

/// A URL is a text too, so that one call shows and releases either.
struct PLString {
    explicit PLString(std::string_view content) : text(content) {}
    virtual ~PLString() = default;

    std::string text;
};
struct PLUrl : PLString {
    using PLString::PLString;
};

namespace {

template <std::size_t Length>
void copyPath(std::string_view path, char (&target)[Length]) {
    const std::size_t length = std::min(path.size(), Length - 1);
    std::memcpy(target, path.data(), length);
    target[length] = '\0';
}

scripted::Application* findByPath(std::string_view path) {
    for (auto& [identifier, application] : Platform::current()->applications) {
        if (application.path == path) {
            return &application;
        }
    }
    return nullptr;
}

/// The first process at `index` or behind it that can be seen; null after the last.
const scripted::Process* processFrom(std::uint32_t& index) {
    const Platform* const platform = Platform::current();
    while (index < platform->processes.size()) {
        if (platform->processes[index].appearsAt <= platform->now) {
            return &platform->processes[index];
        }
        ++index;
    }
    return nullptr;
}

} // namespace

CFStringRef CFStringCreateWithCString(const void* /*allocator*/, const char* text,
                                      CFStringEncoding encoding) {
    Platform* const platform = Platform::current();
    platform->encodings.push_back(encoding);
    ++platform->liveObjects;
    return new PLString(text); // owned by the caller until CFRelease
}

void CFShow(CFTypeRef object) {
    Platform::current()->shown.push_back(
        object == nullptr ? "(null)" : static_cast<const PLString*>(object)->text);
}

void CFRelease(CFTypeRef object) {
    delete static_cast<const PLString*>(object);
    --Platform::current()->liveObjects;
}

OSStatus LSFindApplicationForInfo(OSType /*creator*/, CFStringRef bundleID, CFStringRef /*name*/,
                                  FSRef* ref, CFURLRef* url) {
    Platform* const platform = Platform::current();
    platform->lookUps.push_back(bundleID->text);
    const auto found = platform->applications.find(bundleID->text);
    if (found == platform->applications.end()) {
        return kLSApplicationNotFoundErr;
    }
    const scripted::Application& application = found->second;
    if (application.lookUpStatus != noErr) {
        return application.lookUpStatus;
    }
    copyPath(application.path, ref->path);
    if (application.givesUrl) {
        ++platform->liveObjects;
        *url = new PLUrl(application.path); // owned by the caller until CFRelease
    }
    return noErr;
}

OSStatus FSRefMakePath(const FSRef* ref, unsigned char* path, std::uint32_t maximumSize) {
    const std::size_t length = std::strlen(ref->path);
    if (length == 0 || length >= maximumSize) {
        return paramErr;
    }
    std::memcpy(path, ref->path, length + 1);
    return noErr;
}

bool CFURLGetFSRef(CFURLRef url, FSRef* ref) {
    if (url == nullptr) {
        return false;
    }
    copyPath(url->text, ref->path);
    return true;
}

OSErr FSGetCatalogInfo(const FSRef* ref, std::uint32_t /*whichInfo*/, void* /*catalogInfo*/,
                       void* /*name*/, FSSpec* spec, FSRef* /*parent*/) {
    const scripted::Application* const application = findByPath(ref->path);
    if (application == nullptr) {
        return fnfErr;
    }
    if (application->catalogStatus == noErr) {
        copyPath(ref->path, spec->path);
    }
    return application->catalogStatus;
}

OSErr GetNextProcess(ProcessSerialNumber* psn) {
    Platform::current()->walks += psn->lowLongOfPSN == kNoProcess ? 1 : 0;
    std::uint32_t index = psn->lowLongOfPSN; // numbers begin at 1
    const bool isThere = processFrom(index) != nullptr;
    psn->lowLongOfPSN = isThere ? index + 1 : std::uint32_t{kNoProcess};
    return isThere ? OSErr{noErr} : OSErr{procNotFound};
}

OSErr GetProcessInformation(const ProcessSerialNumber* psn, ProcessInfoRec* info) {
    if (psn->lowLongOfPSN == kNoProcess) {
        return procNotFound;
    }
    std::uint32_t index = psn->lowLongOfPSN - 1;
    const scripted::Process* const process = processFrom(index);
    if (process == nullptr) {
        return procNotFound;
    }
    info->processNumber = *psn;
    info->processSignature = process->signature;
    info->processID = process->id;
    return noErr;
}

OSErr LaunchApplication(LaunchParamBlockRec* parameters) {
    Platform* const platform = Platform::current();
    platform->launches.push_back(*parameters);
    platform->launches.back().launchAppSpec = nullptr;
    platform->launchedPaths.emplace_back(parameters->launchAppSpec->path);
    const scripted::Application* const application = findByPath(parameters->launchAppSpec->path);
    if (application == nullptr) {
        return fnfErr;
    }
    if (application->launchStatus == noErr && application->signature != 0) {
        constexpr std::int32_t launchedProcessID = 4711;
        platform->processes.push_back(
            {application->signature, launchedProcessID, platform->now + application->startUpTime});
    }
    return application->launchStatus;
}
