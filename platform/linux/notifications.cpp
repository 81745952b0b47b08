// SPDX-License-Identifier: MIT
// Counting postings by name, and notify.h over it.
#include "notifications.h"

#include "platform/notify.h"

#include <limits>
#include <vector>

namespace platform {

namespace {

constexpr const char* objectPath = "/org/glyphora/Notify1";
constexpr const char* signalMember = "Posted";

constexpr unsigned indexBits = 12;
constexpr std::uint32_t indexMask = (1U << indexBits) - 1;
/// What of a slot's uses fits into a token (an int that is not negative) beside its index.
constexpr std::uint32_t useMask = std::numeric_limits<std::int32_t>::max() >> indexBits;
static_assert(Notifications::maximumTokens == indexMask + 1);

constexpr std::uint64_t generationUnit = std::uint64_t{1} << 32U;
constexpr std::uint64_t seenMask = generationUnit - 1;

constexpr bool inUse(std::uint64_t state) {
    return (state & generationUnit) != 0;
}
/// How often the slot has been in use, as the token tells it.
constexpr std::uint32_t useOf(std::uint64_t state) {
    return static_cast<std::uint32_t>(state >> 33U) & useMask;
}
constexpr bool belongsTo(std::uint64_t state, int token) {
    return inUse(state) && useOf(state) == static_cast<std::uint32_t>(token) >> indexBits;
}

GVariant* matchRule(std::string_view name) {
    const std::string rule = "type='signal',interface='" + std::string(name) + "',member='" +
                             signalMember + "',path='" + objectPath + "'";
    return g_variant_new("(s)", rule.c_str());
}

} // namespace

Notifications& Notifications::instance() {
    static Immortal<Notifications> notifications;
    return *notifications;
}

Notifications::Name& Notifications::nameOf(const std::string& text) {
    const std::scoped_lock lock(names_);
    const auto [entry, isNew] = byName_.try_emplace(text);
    if (isNew) {
        entry->second.text = entry->first;
    }
    return entry->second;
}

bool Notifications::addMatch(const BusConnection& connection, Name& name) {
    ErrorSlot error;
    if (!connection.callBus("AddMatch", matchRule(name.text), "()", error)) {
        return false;
    }
    name.matchedOn = connection.serial();
    return true;
}

int Notifications::add(const BusConnection& connection, const std::string& text) {
    const std::scoped_lock lock(registration_);
    Name& name = nameOf(text);
    if (name.matchedOn != connection.serial() && !addMatch(connection, name)) {
        return -1;
    }
    for (std::uint32_t index = 0; index < slots_.size(); ++index) {
        Slot& slot = slots_[index];
        const std::uint64_t state = slot.state.load(std::memory_order_relaxed);
        if (inUse(state)) {
            continue;
        }
        ++name.tokens;
        slot.name.store(&name, std::memory_order_relaxed);
        const std::uint64_t used =
            ((state & ~seenMask) + generationUnit) | name.posted.load(std::memory_order_acquire);
        slot.state.store(used, std::memory_order_release);
        return static_cast<int>(useOf(used) << indexBits | index);
    }
    return -1;
}

bool Notifications::check(int token, bool& posted) {
    if (token < 0) {
        return false;
    }
    Slot& slot = slots_[static_cast<std::uint32_t>(token) & indexMask];
    std::uint64_t state = slot.state.load(std::memory_order_acquire);
    for (;;) {
        if (!belongsTo(state, token)) {
            return false;
        }
        const Name* name = slot.name.load(std::memory_order_relaxed);
        const auto seen = static_cast<std::uint32_t>(state & seenMask);
        posted = name->posted.load(std::memory_order_acquire) != seen;
        if (!posted) {
            return true;
        }
        // Fails when another thread checked, or gave the slot to another token, in between.
        const std::uint64_t taken = (state & ~seenMask) | (seen + 1U);
        if (slot.state.compare_exchange_weak(state, taken, std::memory_order_acq_rel,
                                             std::memory_order_acquire)) {
            return true;
        }
    }
}

bool Notifications::remove(int token, const BusConnection* connection) {
    if (token < 0) {
        return false;
    }
    const std::scoped_lock lock(registration_);
    Slot& slot = slots_[static_cast<std::uint32_t>(token) & indexMask];
    std::uint64_t state = slot.state.load(std::memory_order_acquire);
    do {
        if (!belongsTo(state, token)) {
            return false;
        }
    } while (!slot.state.compare_exchange_weak(state, state + generationUnit,
                                               std::memory_order_acq_rel));
    Name* name = slot.name.load(std::memory_order_relaxed);
    if (--name->tokens > 0 || connection == nullptr || name->matchedOn != connection->serial()) {
        return true;
    }
    ErrorSlot ignored; // without the bus there is no match either
    name->matchedOn = 0;
    connection->callBus("RemoveMatch", matchRule(name->text), "()", ignored);
    return true;
}

bool Notifications::takePosting(GDBusMessage* message) {
    if (g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_SIGNAL ||
        g_strcmp0(g_dbus_message_get_path(message), objectPath) != 0 ||
        g_strcmp0(g_dbus_message_get_member(message), signalMember) != 0) {
        return false;
    }
    const char* text = g_dbus_message_get_interface(message);
    const std::scoped_lock lock(names_);
    const auto found = byName_.find(std::string_view(text != nullptr ? text : ""));
    if (found != byName_.end()) {
        found->second.posted.fetch_add(1, std::memory_order_acq_rel);
    }
    return true;
}

void Notifications::restoreMatches(const BusConnection& connection) {
    const std::scoped_lock lock(registration_);
    std::vector<Name*> wanted;
    {
        const std::scoped_lock namesLock(names_);
        for (auto& [text, name] : byName_) {
            if (name.tokens > 0) {
                wanted.push_back(&name);
            }
        }
    }
    for (Name* name : wanted) {
        addMatch(connection, *name);
    }
}

} // namespace platform

using platform::Notifications;
using platform::SessionBus;

namespace {

bool isValidName(const char* name) {
    return name != nullptr && g_dbus_is_interface_name(name) != 0;
}

} // namespace

std::uint32_t notify_register_check(const char* name, int* token) {
    if (!isValidName(name)) {
        return NOTIFY_STATUS_INVALID_NAME;
    }
    if (token == nullptr) {
        return NOTIFY_STATUS_INVALID_TOKEN;
    }
    const auto connection = SessionBus::instance().connect();
    const int added = connection ? Notifications::instance().add(*connection, name) : -1;
    if (added < 0) {
        return NOTIFY_STATUS_FAILED;
    }
    *token = added;
    return NOTIFY_STATUS_OK;
}

std::uint32_t notify_check(int token, int* check) {
    bool posted = false;
    if (check == nullptr || !Notifications::instance().check(token, posted)) {
        return NOTIFY_STATUS_INVALID_TOKEN;
    }
    *check = posted ? 1 : 0;
    return NOTIFY_STATUS_OK;
}

std::uint32_t notify_cancel(int token) {
    const auto connection = SessionBus::instance().current();
    return Notifications::instance().remove(token, connection.get()) ? NOTIFY_STATUS_OK
                                                                     : NOTIFY_STATUS_INVALID_TOKEN;
}

std::uint32_t notify_post(const char* name) {
    if (!isValidName(name)) {
        return NOTIFY_STATUS_INVALID_NAME;
    }
    const auto connection = SessionBus::instance().connect();
    if (!connection) {
        return NOTIFY_STATUS_FAILED;
    }
    platform::ErrorSlot error;
    // Flushed, so that a program may post as its last deed.
    const bool sent =
        g_dbus_connection_emit_signal(connection->get(), nullptr, platform::objectPath, name,
                                      platform::signalMember, nullptr, error.out()) != 0 &&
        g_dbus_connection_flush_sync(connection->get(), nullptr, error.out()) != 0;
    return sent ? NOTIFY_STATUS_OK : NOTIFY_STATUS_FAILED;
}
