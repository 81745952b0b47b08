// SPDX-License-Identifier: MIT
// Scripted Apple events: descriptors, sending, and handlers.
#include "tests/support/scriptedplatform/scriptedplatform.h"

#include <algorithm>
#include <cstring>
#include <memory>

using scripted::Answer;
using scripted::Parameter;
using scripted::Parameters;
using scripted::Platform;

struct OpaqueAEEventHandler {
    AEEventHandlerProcPtr routine;
};

namespace {

/// What a descriptor's handle points to: data, or an event.
struct Content {
    Parameter data;
    scripted::SentEvent event;
    OSErr fetchStatus = noErr;
};

Content* contentOf(const AEDesc* desc) {
    return static_cast<Content*>(desc->dataHandle);
}

/// The descriptor's content is the caller's until AEDisposeDesc.
Content* fill(AEDesc* desc, DescType type) {
    ++Platform::current()->liveDescriptors;
    auto content = std::make_unique<Content>();
    desc->descriptorType = type;
    desc->dataHandle = content.release();
    return contentOf(desc);
}

OSErr read(const Parameter& parameter, DescType desiredType, DescType* actualType, void* data,
           Size maximumSize, Size* actualSize) {
    if (desiredType != typeWildCard && desiredType != parameter.type) {
        return errAECoercionFail;
    }
    if (actualType != nullptr) {
        *actualType = parameter.type;
    }
    if (actualSize != nullptr) {
        *actualSize = static_cast<Size>(parameter.bytes.size());
    }
    if (data != nullptr) {
        std::memcpy(data, parameter.bytes.data(),
                    std::min(parameter.bytes.size(), static_cast<std::size_t>(maximumSize)));
    }
    return noErr;
}

} // namespace

OSErr AECreateDesc(DescType type, const void* data, Size size, AEDesc* result) {
    if (Platform::current()->createDescStatus != noErr) {
        return Platform::current()->createDescStatus;
    }
    fill(result, type)->data = {
        type, std::string(static_cast<const char*>(data), static_cast<std::size_t>(size))};
    return noErr;
}

OSErr AECreateAppleEvent(AEEventClass eventClass, AEEventID eventID, const AEAddressDesc* target,
                         AEReturnID returnID, AETransactionID transactionID, AppleEvent* result) {
    if (Platform::current()->createEventStatus != noErr) {
        return Platform::current()->createEventStatus;
    }
    scripted::SentEvent& event = fill(result, typeAppleEvent)->event;
    event.eventClass = eventClass;
    event.eventID = eventID;
    event.target = contentOf(target)->data;
    event.returnID = returnID;
    event.transactionID = transactionID;
    return noErr;
}

OSErr AEPutParamPtr(AppleEvent* event, AEKeyword keyword, DescType type, const void* data,
                    Size size) {
    if (Platform::current()->putParameterStatus != noErr) {
        return Platform::current()->putParameterStatus;
    }
    contentOf(event)->event.parameters.emplace_back(
        keyword, Parameter{type, std::string(static_cast<const char*>(data),
                                             static_cast<std::size_t>(size))});
    return noErr;
}

OSErr AEGetParamPtr(const AppleEvent* event, AEKeyword keyword, DescType desiredType,
                    DescType* actualType, void* data, Size maximumSize, Size* actualSize) {
    const Content* const content = contentOf(event);
    if (content == nullptr) {
        return errAENotAEDesc;
    }
    const Parameters& parameters = content->event.parameters;
    const auto found =
        std::find_if(parameters.begin(), parameters.end(), [keyword](const auto& parameter) {
            return keyword == AEKeyword{typeWildCard} || parameter.first == keyword;
        });
    if (found == parameters.end()) {
        return errAEDescNotFound;
    }
    if (data != nullptr && content->fetchStatus != noErr) {
        return content->fetchStatus;
    }
    return read(found->second, desiredType, actualType, data, maximumSize, actualSize);
}

OSErr AEGetAttributePtr(const AppleEvent* event, AEKeyword keyword, DescType desiredType,
                        DescType* actualType, void* data, Size maximumSize, Size* actualSize) {
    if (keyword != keyEventIDAttr) {
        return errAEDescNotFound;
    }
    const AEEventID code = contentOf(event)->event.eventID;
    const Parameter attribute{typeType,
                              std::string(reinterpret_cast<const char*>(&code), sizeof code)};
    return read(attribute, desiredType, actualType, data, maximumSize, actualSize);
}

OSStatus AESend(const AppleEvent* event, AppleEvent* reply, AESendMode sendMode,
                AESendPriority priority, std::int32_t timeOutInTicks, AEIdleUPP /*idle*/,
                AEFilterUPP /*filter*/) {
    Platform* const platform = Platform::current();
    scripted::SentEvent& sent = platform->sent.emplace_back(contentOf(event)->event);
    sent.sendMode = sendMode;
    sent.priority = priority;
    sent.timeOut = timeOutInTicks;
    if (platform->answers.empty()) {
        return procNotFound;
    }
    Answer answer = platform->answers.front();
    if (platform->answers.size() > 1) {
        platform->answers.pop_front();
    }
    if (answer.effect) {
        answer.effect();
    }
    if (answer.status == noErr && sendMode == kAEWaitReply) {
        Content* const content = fill(reply, typeAppleEvent);
        content->event.parameters = std::move(answer.parameters);
        content->fetchStatus = answer.fetchStatus;
    }
    return answer.status;
}

OSErr AEDisposeDesc(AEDesc* desc) {
    if (desc->dataHandle != nullptr) {
        const std::unique_ptr<Content> content(contentOf(desc));
        --Platform::current()->liveDescriptors;
    }
    *desc = {};
    return noErr;
}

AEEventHandlerUPP NewAEEventHandlerUPP(AEEventHandlerProcPtr routine) {
    ++Platform::current()->liveRoutines;
    return new OpaqueAEEventHandler{routine}; // owned by the caller until it is disposed of
}

void DisposeAEEventHandlerUPP(AEEventHandlerUPP upp) {
    --Platform::current()->liveRoutines;
    delete upp;
}

OSErr AEInstallEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerUPP handler,
                            void* refCon, bool isSystemHandler) {
    if (isSystemHandler) {
        return paramErr;
    }
    auto& handlers = Platform::current()->handlers;
    std::erase_if(handlers, [&](const Platform::Handler& other) {
        return other.eventClass == eventClass && other.eventID == eventID;
    });
    handlers.push_back({eventClass, eventID, handler, refCon});
    return noErr;
}

OSErr AERemoveEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerUPP handler,
                           bool isSystemHandler) {
    Platform* const platform = Platform::current();
    if (isSystemHandler) {
        return paramErr;
    }
    const auto removed = std::erase_if(platform->handlers, [&](const Platform::Handler& other) {
        return other.eventClass == eventClass && other.eventID == eventID &&
               (handler == nullptr || other.routine == handler);
    });
    return removed == 0 ? OSErr{errAEHandlerNotFound} : OSErr{noErr};
}

OSErr scripted::Platform::handle(AEEventClass eventClass, AEEventID eventID) {
    const auto found = std::find_if(handlers.begin(), handlers.end(), [&](const Handler& handler) {
        return handler.eventClass == eventClass &&
               (handler.eventID == eventID || handler.eventID == AEEventID{typeWildCard});
    });
    if (found == handlers.end()) {
        return errAEHandlerNotFound;
    }
    Content incoming;
    incoming.event.eventID = eventID;
    Content answer;
    const AppleEvent event{typeAppleEvent, &incoming};
    AppleEvent reply{typeAppleEvent, &answer};
    return found->routine->routine(&event, &reply, found->refCon);
}
