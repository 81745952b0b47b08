// SPDX-License-Identifier: MIT
// Registering this process as an application, and dispatching the events that came in for it.
#include "platform/application.h"

#include "busnames.h"
#include "eventinbox.h"
#include "handlertable.h"
#include "wire.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

using platform::BusConnection;
using platform::ErrorSlot;
using platform::EventInbox;
using platform::IncomingEvent;
using platform::VariantHandle;

namespace {

enum class Ownership { Ours, Anothers, Unknown };

Ownership requestName(const BusConnection& connection, const std::string& name) {
    constexpr std::uint32_t doNotQueue = 4;
    constexpr std::uint32_t primaryOwner = 1;
    constexpr std::uint32_t alreadyOwner = 4;
    ErrorSlot error;
    const VariantHandle reply = connection.callBus(
        "RequestName", g_variant_new("(su)", name.c_str(), doNotQueue), "(u)", error);
    if (!reply) {
        platform::say(std::string("the session bus gives no name (") + error.message() + ")");
        return Ownership::Unknown;
    }
    std::uint32_t result = 0;
    g_variant_get(reply.get(), "(u)", &result);
    return result == primaryOwner || result == alreadyOwner ? Ownership::Ours : Ownership::Anothers;
}

void releaseName(const BusConnection& connection, const std::string& name) {
    ErrorSlot ignored; // without the bus the name is free already
    connection.callBus("ReleaseName", g_variant_new("(s)", name.c_str()), "(u)", ignored);
}

OSStatus requestNames(const BusConnection& connection, OSType signature, PLInstances instances) {
    const std::string single = platform::busNameOf(signature);
    if (instances == kPLOneInstance) {
        const Ownership ownership = requestName(connection, single);
        if (ownership != Ownership::Ours) {
            return ownership == Ownership::Anothers ? OSStatus{kPLAlreadyRunningErr}
                                                    : OSStatus{connectionInvalid};
        }
    }
    if (requestName(connection, platform::busNameOf({signature, getpid()})) == Ownership::Ours) {
        return noErr;
    }
    if (instances == kPLOneInstance) {
        releaseName(connection, single);
    }
    return connectionInvalid;
}

/// Disposes of itself.
struct OwnedEvent : AppleEvent {
    OwnedEvent() = default;
    ~OwnedEvent() { AEDisposeDesc(this); }
    OwnedEvent(const OwnedEvent&) = delete;
    OwnedEvent& operator=(const OwnedEvent&) = delete;
};

/// An event that a handler was called with. [handler-thread]
struct Dispatched {
    explicit Dispatched(platform::PendingAnswer owed) : answer(std::move(owed)) {}

    void giveAnswer() {
        if (const platform::Event* content = platform::eventOf(&reply)) {
            answer.give(platform::replyBody(content->parameters));
        }
    }

    OwnedEvent event;
    OwnedEvent reply;
    platform::PendingAnswer answer;
    bool isSuspended = false;
    Dispatched* outer = nullptr; ///< a handler may have events dispatched itself
};

Dispatched* innermost = nullptr;

std::vector<std::unique_ptr<Dispatched>>& suspended() {
    static platform::Immortal<std::vector<std::unique_ptr<Dispatched>>> events;
    return *events;
}

// A sender asks several times in a row; its name on the bus is never another's.
std::optional<std::int32_t> processOf(const std::string& sender) {
    static platform::Immortal<std::pair<std::string, std::optional<std::int32_t>>> last;
    const auto connection = EventInbox::instance().connection();
    if (sender.empty() || !connection) {
        return std::nullopt;
    }
    if ((*last).first != sender) {
        ErrorSlot error;
        const VariantHandle reply = connection->callBus(
            "GetConnectionUnixProcessID", g_variant_new("(s)", sender.c_str()), "(u)", error);
        std::uint32_t process = 0;
        if (reply) {
            g_variant_get(reply.get(), "(u)", &process);
        }
        *last = {sender,
                 process != 0 ? std::optional(static_cast<std::int32_t>(process)) : std::nullopt};
    }
    return (*last).second;
}

void dispatch(IncomingEvent incoming) {
    const platform::Event& told = incoming.event;
    const auto handler = platform::HandlerTable::instance().find(told.eventClass, told.eventID);
    if (!handler) {
        return incoming.answer.refuse(platform::errorNotHandled,
                                      "the application has no handler for this event");
    }
    auto dispatched = std::make_unique<Dispatched>(std::move(incoming.answer));
    platform::Event empty;
    empty.eventClass = FourCharCode("aevt");
    empty.eventID = FourCharCode("ansr");
    incoming.event.senderProcess = processOf(incoming.sender);
    if (platform::makeEventDesc(std::move(incoming.event), dispatched->event) != noErr ||
        platform::makeEventDesc(std::move(empty), dispatched->reply) != noErr) {
        return;
    }
    dispatched->outer = std::exchange(innermost, dispatched.get());
    const auto leave = [](Dispatched* left) { innermost = left->outer; };
    std::int32_t result = noErr;
    {
        const std::unique_ptr<Dispatched, decltype(leave)> running(dispatched.get(), leave);
        result = handler->routine(&dispatched->event, &dispatched->reply, handler->refCon);
    }
    if (dispatched->isSuspended) {
        suspended().push_back(std::move(dispatched));
        return;
    }
    if (result != noErr) {
        AEPutParamPtr(&dispatched->reply, keyErrorNumber, typeSInt32, &result, sizeof result);
    }
    dispatched->giveAnswer();
}

} // namespace

OSStatus PLRegisterApplication(OSType signature, PLInstances instances, const char* name) {
    EventInbox& inbox = EventInbox::instance();
    if (inbox.isOpen() || (name != nullptr && g_utf8_validate(name, -1, nullptr) == 0)) {
        return paramErr;
    }
    // The one that all look for is of use where they look only.
    auto connection = platform::SessionBus::instance().connect(
        instances == kPLOneInstance ? platform::WithoutBus::StartOneUnlessNamed
                                    : platform::WithoutBus::StartOne);
    if (!connection) {
        return connectionInvalid;
    }
    // Events may come in as soon as the name is ours.
    if (!inbox.open(connection, signature, name != nullptr ? name : "")) {
        return paramErr;
    }
    const OSStatus status = requestNames(*connection, signature, instances);
    if (status != noErr) {
        inbox.close();
    }
    return status;
}

void PLUnregisterApplication() {
    EventInbox& inbox = EventInbox::instance();
    const OSType signature = inbox.signature();
    const auto connection = inbox.close();
    suspended().clear();
    if (!connection) {
        return;
    }
    releaseName(*connection, platform::busNameOf({signature, getpid()}));
    releaseName(*connection, platform::busNameOf(signature));
    ErrorSlot ignored; // the last answers leave before the process may end
    g_dbus_connection_flush_sync(connection->get(), nullptr, ignored.out());
}

int PLEventFileDescriptor() {
    return EventInbox::instance().descriptor();
}

std::int32_t PLDispatchPendingEvents() {
    EventInbox& inbox = EventInbox::instance();
    if (!inbox.isConnected()) {
        return connectionInvalid;
    }
    inbox.markDispatcher();
    // Events that come in meanwhile are for the next call, so that this one ends.
    const std::size_t waiting = inbox.waiting();
    std::int32_t dispatched = 0;
    for (std::size_t i = 0; i < waiting; ++i) {
        auto incoming = inbox.next();
        if (!incoming) {
            break;
        }
        dispatch(std::move(*incoming));
        ++dispatched;
    }
    return dispatched;
}

std::int32_t PLWaitForEvents(std::int32_t milliseconds) {
    pollfd watched{PLEventFileDescriptor(), POLLIN, 0};
    if (watched.fd == -1) {
        return connectionInvalid;
    }
    poll(&watched, 1, milliseconds);
    return PLDispatchPendingEvents();
}

OSErr AESuspendTheCurrentEvent(const AppleEvent* event) {
    for (Dispatched* running = innermost; running != nullptr; running = running->outer) {
        if (event == &running->event) {
            running->isSuspended = true;
            return noErr;
        }
    }
    return paramErr;
}

OSErr AEResumeTheCurrentEvent(const AppleEvent* event, const AppleEvent* reply,
                              AEEventHandlerUPP dispatcher, void* /*refCon*/) {
    auto& events = suspended();
    const auto found = std::find_if(events.begin(), events.end(), [&](const auto& dispatched) {
        return &dispatched->event == event && &dispatched->reply == reply;
    });
    if (found == events.end() || dispatcher != kAENoDispatch) {
        return paramErr;
    }
    (*found)->giveAnswer();
    events.erase(found);
    return noErr;
}
