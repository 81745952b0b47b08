// SPDX-License-Identifier: MIT
// Making, filling, reading and releasing descriptors and events.
#include "event.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <memory>
#include <new>

using platform::BytesHandle;
using platform::Event;
using platform::EventItem;
using platform::EventItems;
using platform::eventOf;

namespace {

/// These are fields of the event; they are told as attributes but cannot be set as such.
constexpr std::array computedAttributes = {keyEventClassAttr,    keyEventIDAttr,
                                           keyAddressAttr,       keyReturnIDAttr,
                                           keyTransactionIDAttr, keySenderPIDAttr};

bool isValidData(const void* data, Size size) {
    return size >= 0 && (data != nullptr || size == 0);
}

/// Null without memory.
BytesHandle copyOf(const void* data, Size size) {
    const auto length = static_cast<gsize>(size);
    if (length == 0) {
        return BytesHandle(g_bytes_new_static("", 0));
    }
    void* copy = g_try_malloc(length);
    if (copy == nullptr) {
        return nullptr;
    }
    std::memcpy(copy, data, length);
    return BytesHandle(g_bytes_new_take(copy, length));
}

OSErr put(Event& event, EventItems& items, AEKeyword keyword, DescType type, const void* data,
          Size size) {
    if (!isValidData(data, size)) {
        return paramErr;
    }
    const std::size_t others = event.wireSize() - items.wireSizeOf(keyword);
    // Tested in this order, so that no size, however large, overflows.
    if (size > kAEMaximumEventSize ||
        others + EventItems::wireSizeFor(static_cast<std::size_t>(size)) >
            static_cast<std::size_t>(kAEMaximumEventSize)) {
        return memFullErr;
    }
    BytesHandle copy = copyOf(data, size);
    return copy && items.put({keyword, type, std::move(copy)}) ? OSErr{noErr} : OSErr{memFullErr};
}

OSErr get(DescType type, const void* bytes, std::size_t size, DescType desiredType,
          DescType* actualType, void* data, Size maximumSize, Size* actualSize) {
    if (desiredType != DescType{typeWildCard} && desiredType != type) {
        return errAECoercionFail;
    }
    if (!isValidData(data, maximumSize)) {
        return paramErr;
    }
    const std::size_t copied = std::min(size, static_cast<std::size_t>(maximumSize));
    if (copied > 0) {
        std::memcpy(data, bytes, copied);
    }
    if (actualType != nullptr) {
        *actualType = type;
    }
    if (actualSize != nullptr) {
        *actualSize = static_cast<Size>(size);
    }
    return noErr;
}

OSErr get(const EventItem* item, DescType desiredType, DescType* actualType, void* data,
          Size maximumSize, Size* actualSize) {
    if (item == nullptr) {
        return errAEDescNotFound;
    }
    gsize size = 0;
    const void* bytes = g_bytes_get_data(item->data.get(), &size);
    return get(item->type, bytes, size, desiredType, actualType, data, maximumSize, actualSize);
}

AEReturnID nextReturnID() {
    static std::atomic<std::uint32_t> made = 0;
    // Stays clear of kAutoGenerateReturnID.
    return static_cast<AEReturnID>(++made & 0x7FFFU);
}

} // namespace

void AEInitializeDesc(AEDesc* desc) {
    if (desc != nullptr) {
        *desc = AEDesc{};
    }
}

OSErr AECreateDesc(DescType type, const void* data, Size size, AEDesc* result) {
    if (result == nullptr || !isValidData(data, size) || type == DescType{typeAppleEvent}) {
        return paramErr;
    }
    AEInitializeDesc(result);
    if (size > kAEMaximumEventSize) {
        return memFullErr;
    }
    BytesHandle copy = copyOf(data, size);
    std::unique_ptr<PLDescStorage> storage(copy ? new (std::nothrow) PLDescStorage{std::move(copy)}
                                                : nullptr);
    if (!storage) {
        return memFullErr;
    }
    result->descriptorType = type;
    result->dataHandle = storage.release();
    return noErr;
}

OSErr AECreateAppleEvent(AEEventClass eventClass, AEEventID eventID, const AEAddressDesc* target,
                         AEReturnID returnID, AETransactionID transactionID, AppleEvent* result) {
    if (result == nullptr) {
        return paramErr;
    }
    const auto* address = target != nullptr && target->dataHandle != nullptr
                              ? static_cast<const PLDescStorage*>(target->dataHandle)
                              : nullptr;
    const auto* data = address != nullptr ? std::get_if<BytesHandle>(&address->content) : nullptr;
    const bool isAddress = data != nullptr && g_bytes_get_size(data->get()) == 4 &&
                           (target->descriptorType == DescType{typeApplSignature} ||
                            target->descriptorType == DescType{typeKernelProcessID});
    AEInitializeDesc(result);
    if (!isAddress) {
        return errAENotAEDesc;
    }
    Event event;
    event.eventClass = eventClass;
    event.eventID = eventID;
    event.returnID = returnID == kAutoGenerateReturnID ? nextReturnID() : returnID;
    event.transactionID = transactionID;
    event.target = {keyAddressAttr, target->descriptorType, BytesHandle(g_bytes_ref(data->get()))};
    return makeEventDesc(std::move(event), *result);
}

OSErr AEPutParamPtr(AppleEvent* event, AEKeyword keyword, DescType type, const void* data,
                    Size size) {
    Event* filled = eventOf(event);
    return filled != nullptr ? put(*filled, filled->parameters, keyword, type, data, size)
                             : OSErr{errAENotAEDesc};
}

OSErr AEPutAttributePtr(AppleEvent* event, AEKeyword keyword, DescType type, const void* data,
                        Size size) {
    Event* filled = eventOf(event);
    if (filled == nullptr) {
        return errAENotAEDesc;
    }
    if (std::find(computedAttributes.begin(), computedAttributes.end(), keyword) !=
        computedAttributes.end()) {
        return paramErr;
    }
    return put(*filled, filled->attributes, keyword, type, data, size);
}

OSErr AEGetParamPtr(const AppleEvent* event, AEKeyword keyword, DescType desiredType,
                    DescType* actualType, void* data, Size maximumSize, Size* actualSize) {
    const Event* read = eventOf(event);
    if (read == nullptr) {
        return errAENotAEDesc;
    }
    return get(read->parameters.find(keyword), desiredType, actualType, data, maximumSize,
               actualSize);
}

OSErr AEGetAttributePtr(const AppleEvent* event, AEKeyword keyword, DescType desiredType,
                        DescType* actualType, void* data, Size maximumSize, Size* actualSize) {
    const Event* read = eventOf(event);
    if (read == nullptr) {
        return errAENotAEDesc;
    }
    const auto tell = [&](DescType type, const auto& value) {
        return get(type, &value, sizeof value, desiredType, actualType, data, maximumSize,
                   actualSize);
    };
    switch (keyword) {
    case keyEventClassAttr:
        return tell(typeType, read->eventClass);
    case keyEventIDAttr:
        return tell(typeType, read->eventID);
    case keyReturnIDAttr:
        return tell(typeSInt32, std::int32_t{read->returnID});
    case keyTransactionIDAttr:
        return tell(typeSInt32, read->transactionID);
    case keySenderPIDAttr:
        return read->senderProcess ? tell(typeSInt32, *read->senderProcess)
                                   : OSErr{errAEDescNotFound};
    default:
        break;
    }
    const EventItem* item = keyword == AEKeyword{keyAddressAttr} && read->target.data
                                ? &read->target
                                : read->attributes.find(keyword);
    return get(item, desiredType, actualType, data, maximumSize, actualSize);
}

OSErr AEDisposeDesc(AEDesc* desc) {
    if (desc != nullptr) {
        const std::unique_ptr<PLDescStorage> storage(static_cast<PLDescStorage*>(desc->dataHandle));
        AEInitializeDesc(desc);
    }
    return noErr;
}
