// SPDX-License-Identifier: MIT
// Finding an application by its identifier: on this system, a desktop entry by its file name.
// All calls are [any-thread]; texts and URLs never change once made.
#pragma once

#include "platform/types.h"

#include <climits>
#include <cstddef>

/// A text of the system (an immutable copy), held by reference; release with CFRelease.
using CFStringRef = const struct PLString*;
/// The location of a file, held by reference; release with CFRelease.
using CFURLRef = const struct PLUrl*;
using CFTypeRef = const void*;

using CFStringEncoding = std::uint32_t;
enum : CFStringEncoding {
    kCFStringEncodingMacRoman = 0,
    kCFStringEncodingUTF8 = 0x08000100,
};

/// A file by its absolute path; a plain value. Empty path: no file.
struct FSRef {
    char path[PATH_MAX] = {};
};
/// The same for the process calls.
struct FSSpec {
    char path[PATH_MAX] = {};
};

enum : OSType { kLSUnknownCreator = 0 };
enum : OSErr { kLSApplicationNotFoundErr = -10814 };
enum : std::uint32_t { kFSCatInfoNone = 0 };

/// [any-thread] Makes a text of a zero-terminated one. Null when it is not valid in the encoding
/// (MacRoman accepts every byte) or without memory.
[[nodiscard]] CFStringRef CFStringCreateWithCString(const void* allocator, const char* text,
                                                    CFStringEncoding encoding);
/// [any-thread] Writes the text in `encoding` into `buffer`, always terminated; false, with an
/// empty text, when it does not fit or a character has no place in the encoding.
[[nodiscard]] bool CFStringGetCString(CFStringRef text, char* buffer, long size,
                                      CFStringEncoding encoding);
/// [any-thread] Prints a text or a URL and a line end to standard output, for whoever looks for
/// the reason of something: a program that has more to say there keeps it apart. Null is printed as
/// "(null)".
void CFShow(CFTypeRef object);
/// [any-thread] Releases an object made by a creating call. Null is not allowed.
void CFRelease(CFTypeRef object);

/// [any-thread] Finds the application with the identifier `bundleID` ("org.example.App" finds the
/// desktop entry org.example.App.desktop in the user's and the system's folders, as XDG_DATA_HOME
/// and XDG_DATA_DIRS name them at the time of the call). `creator` and `name` must be
/// kLSUnknownCreator and null (else paramErr). `ref` and `url` may be null; `*url` is owned by the
/// caller. kLSApplicationNotFoundErr: none, or the first of that name is malformed, hidden, or
/// without its program; then nothing is set.
OSStatus LSFindApplicationForInfo(OSType creator, CFStringRef bundleID, CFStringRef name,
                                  FSRef* ref, CFURLRef* url);
/// [any-thread] Writes the path, zero-terminated. paramErr: null or empty reference, or buffer too
/// small.
OSStatus FSRefMakePath(const FSRef* ref, unsigned char* path, std::uint32_t maximumSize);
/// [any-thread] Tells which file the URL names. False when it is null.
[[nodiscard]] bool CFURLGetFSRef(CFURLRef url, FSRef* ref);
/// [any-thread] Of all catalogue information only the FSSpec is given (`whichInfo` kFSCatInfoNone,
/// the other results null). fnfErr: the file does not exist.
OSErr FSGetCatalogInfo(const FSRef* ref, std::uint32_t whichInfo, void* catalogInfo, void* name,
                       FSSpec* spec, FSRef* parent);
