// SPDX-License-Identifier: MIT
// Finding applications and naming files, see launchservices.h.
#include "coreobjects.h"
#include "desktopentry.h"

#include <unistd.h>

#include <cstring>
#include <memory>
#include <new>
#include <string_view>

namespace {

/// False when the path does not fit; then nothing is written.
template <class Reference>
bool setPath(Reference& reference, std::string_view path) {
    if (path.size() >= sizeof reference.path) {
        return false;
    }
    std::memcpy(reference.path, path.data(), path.size());
    reference.path[path.size()] = '\0';
    return true;
}

} // namespace

OSStatus LSFindApplicationForInfo(OSType creator, CFStringRef bundleID, CFStringRef name,
                                  FSRef* ref, CFURLRef* url) {
    if (creator != kLSUnknownCreator || name != nullptr || bundleID == nullptr) {
        return paramErr;
    }
    const std::string path = platform::findDesktopEntry(bundleID->text);
    FSRef found;
    if (path.empty() || !setPath(found, path)) {
        return kLSApplicationNotFoundErr;
    }
    if (url != nullptr) {
        *url = std::unique_ptr<PLUrl>(new (std::nothrow) PLUrl(path)).release();
        if (*url == nullptr) {
            return memFullErr;
        }
    }
    if (ref != nullptr) {
        *ref = found;
    }
    return noErr;
}

OSStatus FSRefMakePath(const FSRef* ref, unsigned char* path, std::uint32_t maximumSize) {
    const std::size_t length = ref != nullptr ? strnlen(ref->path, sizeof ref->path) : 0;
    if (length == 0 || length >= maximumSize || path == nullptr) {
        return paramErr;
    }
    std::memcpy(path, ref->path, length);
    path[length] = 0;
    return noErr;
}

bool CFURLGetFSRef(CFURLRef url, FSRef* ref) {
    return url != nullptr && ref != nullptr && setPath(*ref, url->text);
}

OSErr FSGetCatalogInfo(const FSRef* ref, std::uint32_t whichInfo, void* catalogInfo, void* name,
                       FSSpec* spec, FSRef* parent) {
    if (ref == nullptr || whichInfo != kFSCatInfoNone || catalogInfo != nullptr ||
        name != nullptr || parent != nullptr) {
        return paramErr;
    }
    if (access(ref->path, F_OK) != 0) {
        return fnfErr;
    }
    if (spec != nullptr) {
        setPath(*spec, ref->path);
    }
    return noErr;
}
