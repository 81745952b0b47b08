// SPDX-License-Identifier: MIT
// What may not change unnoticed: the sizes that travel between processes, and the records that
// programs built against the headers share with this library.
#include "wire.h"

#include "platform/processes.h"

#include <climits>
#include <cstddef>

namespace platform {
namespace {

// A four-character code is the same number in every process.
static_assert(FourCharCode("QGLY") == 0x51474C59);

// An event, letter by letter: u, u, n, i; an item: u, u, ay.
static_assert(eventSignature == "uunia(uuay)a(uuay)" && replySignature == "a(uuay)");
static_assert(sizeof(AEEventClass) == 4 && sizeof(AEEventID) == 4);
static_assert(sizeof(AEReturnID) == 2 && sizeof(AETransactionID) == 4);
static_assert(sizeof(AEKeyword) == 4 && sizeof(DescType) == 4);
// The two kinds of address hold four bytes, and 32 bits take what "errn" tells.
static_assert(sizeof(OSType) == 4 && sizeof(ProcessInfoRec::processID) == 4);
static_assert(sizeof(OSErr) == 2 && sizeof(OSStatus) == 4);

// An item takes twelve bytes and its data, and begins at a multiple of eight.
static_assert(EventItems::wireSizeFor(0) == 16 && EventItems::wireSizeFor(4) == 16);
static_assert(EventItems::wireSizeFor(5) == 24);
static_assert(kAEMaximumEventSize == 64L * 1024 * 1024, "the bus' limit of an array");
static_assert(EventItems::wireSizeFor(kAEMaximumEventSize - 12) == kAEMaximumEventSize);

constexpr std::size_t word = sizeof(void*);

static_assert(offsetof(AEDesc, descriptorType) == 0 && offsetof(AEDesc, dataHandle) == word);
static_assert(sizeof(AEDesc) == 2 * word);
static_assert(offsetof(ProcessSerialNumber, highLongOfPSN) == 0);
static_assert(offsetof(ProcessSerialNumber, lowLongOfPSN) == 4 && sizeof(ProcessSerialNumber) == 8);
static_assert(offsetof(ProcessInfoRec, processInfoLength) == 0);
static_assert(offsetof(ProcessInfoRec, processName) == word);
static_assert(offsetof(ProcessInfoRec, processNumber) == 2 * word);
static_assert(offsetof(ProcessInfoRec, processType) == 2 * word + 8);
static_assert(offsetof(ProcessInfoRec, processSignature) == 2 * word + 12);
static_assert(offsetof(ProcessInfoRec, processID) == 2 * word + 16);
static_assert(sizeof(ProcessInfoRec) == (2 * word + 20 + word - 1) / word * word);
static_assert(offsetof(LaunchParamBlockRec, launchBlockID) == 6);
static_assert(offsetof(LaunchParamBlockRec, launchEPBLength) == 8);
static_assert(offsetof(LaunchParamBlockRec, launchFileFlags) == 12);
static_assert(offsetof(LaunchParamBlockRec, launchControlFlags) == 14);
static_assert(offsetof(LaunchParamBlockRec, launchAppSpec) == 16);
static_assert(offsetof(LaunchParamBlockRec, launchProcessSN) == 16 + word);
static_assert(offsetof(LaunchParamBlockRec, launchAppParameters) == 24 + word);
static_assert(sizeof(FSRef) == PATH_MAX && sizeof(FSSpec) == PATH_MAX);

} // namespace
} // namespace platform
