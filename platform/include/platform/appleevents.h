// SPDX-License-Identifier: MIT
// Apple events: typed messages between applications, addressed by signature or process id.
//
// One event is one method call on the user's session bus. The class, the ID and the parameters
// travel as data; the receiver is known on the bus by its four-character signature (application.h).
// Descriptors are owned by whoever created them and are released with AEDisposeDesc; all calls
// copy the caller's data. All calls are [any-thread]; one descriptor may be used by one thread at a
// time. Installed handlers run in the [handler-thread] alone.
#pragma once

#include "platform/types.h"

using DescType = OSType;
using AEKeyword = OSType;
using AEEventClass = OSType;
using AEEventID = OSType;
using AEReturnID = std::int16_t;
using AETransactionID = std::int32_t;
using AESendMode = std::int32_t;
using AESendPriority = std::int16_t;

/// A typed piece of data, an address, or a whole event (AppleEvent, with attributes and
/// parameters). Opaque: initialise with AEInitializeDesc or {} and fill with a creating call.
struct AEDesc {
    DescType descriptorType = FourCharCode("null");
    void* dataHandle = nullptr;
};
using AEAddressDesc = AEDesc;
using AppleEvent = AEDesc;

/// [handler-thread] Called for one incoming event. `reply` takes the answer's parameters (it is
/// thrown away if the sender waits for none). Both belong to the platform and are valid during the
/// call. A result other than noErr is put into the reply as keyErrorNumber.
using AEEventHandlerProcPtr = OSErr (*)(const AppleEvent* event, AppleEvent* reply, void* refCon);
/// A routine reference made of a handler; owned by the caller until DisposeAEEventHandlerUPP.
using AEEventHandlerUPP = struct OpaqueAEEventHandler*;
/// What AEResumeTheCurrentEvent is to do with the event; it can only be answered here.
constexpr AEEventHandlerUPP kAENoDispatch = nullptr;
using AEIdleUPP = struct OpaqueAEIdle*;
using AEFilterUPP = struct OpaqueAEFilter*;

enum : DescType {
    typeNull = FourCharCode("null"),
    typeWildCard = FourCharCode("****"),
    typeChar = FourCharCode("TEXT"),
    typeType = FourCharCode("type"),
    typeSInt32 = FourCharCode("long"),
    typeAppleEvent = FourCharCode("aevt"),
    typeApplSignature = FourCharCode("sign"),   ///< data: the four bytes of the signature, in order
    typeKernelProcessID = FourCharCode("kpid"), ///< data: one std::int32_t in native byte order
};

enum : AEKeyword {
    keyDirectObject = FourCharCode("----"),
    keyErrorNumber = FourCharCode("errn"),
    keyEventClassAttr = FourCharCode("evcl"),
    keyEventIDAttr = FourCharCode("evid"),
    keyAddressAttr = FourCharCode("addr"),
    keyReturnIDAttr = FourCharCode("rtid"),
    keyTransactionIDAttr = FourCharCode("tran"),
    keySenderPIDAttr = FourCharCode("spid"),
};

enum : AESendMode {
    kAENoReply = 0x1,
    kAEWaitReply = 0x3,
};
enum : std::int32_t {
    kAEDefaultTimeout = -1, ///< 15 seconds
    kNoTimeOut = -2,
};
constexpr AEReturnID kAutoGenerateReturnID = -1;
constexpr AETransactionID kAnyTransactionID = 0;
constexpr AESendPriority kAENormalPriority = 0;

enum : OSErr {
    errAECoercionFail = -1700,
    errAEDescNotFound = -1701,
    errAECorruptData = -1702,
    errAENotAEDesc = -1704,
    errAEEventNotHandled = -1708,
    errAEHandlerNotFound = -1717,
    errAETimeout = -1712,
    errAEReplyNotValid = -1709,
};

/// The greatest size in bytes of one event, parameters and attributes together, each counted as it
/// stands in the bus' message: 12 bytes and its data, rounded up to a multiple of 8. (A single
/// parameter may thus have up to kAEMaximumEventSize - 12 bytes.) Larger events cannot be filled,
/// and a receiver refuses them with an error reply; so are more than 1,024 parameters or
/// attributes.
constexpr Size kAEMaximumEventSize = 64L * 1024 * 1024;

/// [any-thread] Makes `desc` an empty (null) descriptor, whatever its memory held. Never fails.
void AEInitializeDesc(AEDesc* desc);

/// [any-thread] Makes a descriptor of `size` copied bytes. paramErr: null result, negative size, or
/// bytes missing, or type typeAppleEvent; memFullErr: above kAEMaximumEventSize, or no memory.
OSErr AECreateDesc(DescType type, const void* data, Size size, AEDesc* result);

/// [any-thread] Makes an event for `target` (typeApplSignature or typeKernelProcessID, four bytes
/// of data). kAutoGenerateReturnID draws a return ID from 0 to 32,767. errAENotAEDesc: `target` is
/// not an address descriptor; paramErr: null result; memFullErr.
OSErr AECreateAppleEvent(AEEventClass eventClass, AEEventID eventID, const AEAddressDesc* target,
                         AEReturnID returnID, AETransactionID transactionID, AppleEvent* result);

/// [any-thread] Sets (or replaces) one parameter. errAENotAEDesc when `event` is no event or reply;
/// paramErr: negative size, or bytes missing; memFullErr when the event would exceed
/// kAEMaximumEventSize. After an error the event is as it was.
OSErr AEPutParamPtr(AppleEvent* event, AEKeyword keyword, DescType type, const void* data,
                    Size size);
/// [any-thread] Sets (or replaces) one attribute; errors as AEPutParamPtr, and paramErr for the
/// six attributes listed above, which are the event's own.
OSErr AEPutAttributePtr(AppleEvent* event, AEKeyword keyword, DescType type, const void* data,
                        Size size);

/// [any-thread] Reads one parameter. `keyword` typeWildCard ("****") takes the first parameter
/// there is. Up to `maximumSize` bytes are copied into `data`; `actualSize` (may be null) gets the
/// full size, `actualType` (may be null) the type. With `data` null and `maximumSize` 0 only the
/// size is told. errAEDescNotFound: no such parameter; errAECoercionFail: of another type than
/// `desiredType` (typeWildCard takes any); errAENotAEDesc: not an event.
OSErr AEGetParamPtr(const AppleEvent* event, AEKeyword keyword, DescType desiredType,
                    DescType* actualType, void* data, Size maximumSize, Size* actualSize);
/// [any-thread] Reads one attribute, in the same way. "evcl" and "evid" are of type typeType and
/// tell the event's class and ID as one native OSType; "rtid" and "tran" are of type typeSInt32;
/// "addr" is the target of an event that was made here; of one that came in it is what the sender
/// put there. "spid" of one that came in is the kernel's id of the sender as the bus knows it, of
/// type typeSInt32, whatever the sender put there; errAEDescNotFound when it has gone already.
OSErr AEGetAttributePtr(const AppleEvent* event, AEKeyword keyword, DescType desiredType,
                        DescType* actualType, void* data, Size maximumSize, Size* actualSize);

/// [any-thread] Sends an event; it may be sent again afterwards. A signature addresses the holder
/// of its single instance, else its process with the lowest id; a process id addresses whatever the
/// process is registered as. Nobody can pass for another process: a name with a process id counts
/// only when the kernel's id of its owner agrees. `reply` is set to the answer with kAEWaitReply
/// (dispose of it) and to a null descriptor otherwise; it may be null with kAENoReply. The time-out
/// is in ticks of 1/60 s and counts for the answer alone. While the call waits, no handler runs in
/// its thread. Results:
/// - noErr, also when the handler failed: its result is in the reply as keyErrorNumber;
/// - procNotFound: nobody with that address; it is known at once;
/// - connectionInvalid: the peer vanished or unregistered before it answered, or there is no bus;
/// - errAETimeout: no answer in time, the peer may still handle the event; or, at once, the caller
///   is the thread that dispatches and the target its own process, so that nobody could answer;
/// - memFullErr: too large, or the peer has too much waiting; errAECorruptData: the peer found the
///   message malformed; errAEReplyNotValid: we found the answer malformed;
/// - errAEEventNotHandled: the peer has no handler for it;
/// - errAENotAEDesc: `event` is not an event with a target; paramErr: unknown mode, no `reply` to
///   wait for, or a time-out below kNoTimeOut.
/// With kAENoReply noErr tells only that the event was handed to the bus for a peer that was there.
OSStatus AESend(const AppleEvent* event, AppleEvent* reply, AESendMode sendMode,
                AESendPriority priority, std::int32_t timeOutInTicks, AEIdleUPP idle,
                AEFilterUPP filter);

/// [any-thread] Releases a descriptor's storage and makes it null. Safe on a null descriptor.
OSErr AEDisposeDesc(AEDesc* desc);

/// [any-thread] Makes a routine reference. Null on a null routine or without memory.
[[nodiscard]] AEEventHandlerUPP NewAEEventHandlerUPP(AEEventHandlerProcPtr routine);
/// [any-thread] Releases it; installed handlers stay. Null is allowed.
void DisposeAEEventHandlerUPP(AEEventHandlerUPP upp);

/// [any-thread] Installs a handler for a class and an ID (typeWildCard as class or ID: all of them;
/// an exact entry wins over a wildcard), replacing one installed for the same pair.
/// `isSystemHandler` must be false: there is only the application's own table (paramErr, also for a
/// null handler). The entry keeps the routine, not the reference, and must be removed before its
/// code is unloaded.
OSErr AEInstallEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerUPP handler,
                            void* refCon, bool isSystemHandler);
/// [handler-thread] To be called by a handler: `event`, which it was called with, is not answered
/// when it returns, whatever it returns, but by AEResumeTheCurrentEvent. Until then event and reply
/// stay valid. paramErr: no handler is running for this event.
[[nodiscard]] OSErr AESuspendTheCurrentEvent(const AppleEvent* event);
/// [handler-thread] Answers a suspended event with `reply`, the one that its handler was called
/// with, and releases both. `dispatcher` must be kAENoDispatch; `refCon` is not looked at.
/// paramErr: the event is not suspended (any more: those are given up when the application
/// unregisters).
OSErr AEResumeTheCurrentEvent(const AppleEvent* event, const AppleEvent* reply,
                              AEEventHandlerUPP dispatcher, void* refCon);

/// [any-thread] Removes it. errAEHandlerNotFound when another routine or none is installed for the
/// pair; a null `handler` removes whichever there is.
OSErr AERemoveEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerUPP handler,
                           bool isSystemHandler);
