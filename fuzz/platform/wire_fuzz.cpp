// SPDX-License-Identifier: MIT
// Any bytes as a message of the bus: its body is refused by an error's name, or becomes an event
// within the limits that an application reads as it came and that travels on unchanged.
#include "fuzz/require.h"
#include "platform/linux/wire.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>

using namespace platform;

namespace {

bool isSame(const EventItems& one, const EventItems& other) {
    return std::equal(one.all().begin(), one.all().end(), other.all().begin(), other.all().end(),
                      [](const EventItem& a, const EventItem& b) {
                          return a.keyword == b.keyword && a.type == b.type &&
                                 g_bytes_equal(a.data.get(), b.data.get()) != 0;
                      });
}

bool isWithinLimits(const EventItems& items) {
    std::size_t size = 0;
    for (const EventItem& item : items.all()) {
        size += EventItems::wireSizeFor(g_bytes_get_size(item.data.get()));
    }
    return items.all().size() <= EventItems::maximumCount && size == items.wireSize();
}

/// What an application reads of a parameter is the first that came under its keyword.
void readParameter(const AppleEvent& event, const EventItem& item) {
    gsize size = 0;
    const void* data = g_bytes_get_data(item.data.get(), &size);
    std::string copy(size, '\0');
    Size told = -1;
    DescType type = typeNull;
    REQUIRE(AEGetParamPtr(&event, item.keyword, typeWildCard, &type, copy.data(),
                          static_cast<Size>(size / 2), &told) == noErr);
    REQUIRE(type == item.type && told == static_cast<Size>(size));
    REQUIRE(size < 2 || std::memcmp(copy.data(), data, size / 2) == 0);
    REQUIRE(copy.find_first_not_of('\0', size / 2) == std::string::npos);
}

void readAsApplication(Event read) {
    AppleEvent event;
    REQUIRE(makeEventDesc(std::move(read), event) == noErr);
    const EventItems& parameters = eventOf(&event)->parameters;
    for (const EventItem& item : parameters.all()) {
        readParameter(event, *parameters.find(item.keyword));
    }
    AEDisposeDesc(&event);
}

void check(GVariant* body) {
    Event event;
    const WireFault fault = readEvent(body, event);
    REQUIRE((fault.errorName == nullptr) == fault.text.empty());
    if (fault.errorName != nullptr) {
        REQUIRE(g_dbus_is_error_name(fault.errorName) != 0);
        REQUIRE(statusOfErrorName(fault.errorName) != noErr);
        return;
    }
    REQUIRE(isWithinLimits(event.parameters) && isWithinLimits(event.attributes));
    REQUIRE(event.wireSize() <= static_cast<std::size_t>(kAEMaximumEventSize));
    const VariantHandle sent(g_variant_ref_sink(eventBody(event)));
    Event again;
    REQUIRE(readEvent(sent.get(), again).errorName == nullptr);
    REQUIRE(again.eventClass == event.eventClass && again.eventID == event.eventID);
    REQUIRE(again.returnID == event.returnID && again.transactionID == event.transactionID);
    REQUIRE(isSame(again.parameters, event.parameters));
    REQUIRE(isSame(again.attributes, event.attributes));
    const VariantHandle answer(g_variant_ref_sink(replyBody(event.parameters)));
    Event reply;
    REQUIRE(readReply(answer.get(), reply).errorName == nullptr);
    REQUIRE(isSame(reply.parameters, event.parameters));
    readAsApplication(std::move(event));
}

} // namespace

// The first byte tells whether the rest is a whole message, of whatever type its header says, or
// the body of one in GVariant's own form, where more of the inputs reach the items.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const bool isMessage = (data[0] & 1U) != 0;
    const std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    if (!isMessage) {
        const std::string type = "(" + std::string(eventSignature) + ")";
        const BytesHandle shared(g_bytes_new(bytes.data(), bytes.size()));
        const VariantHandle body(g_variant_ref_sink(
            g_variant_new_from_bytes(G_VARIANT_TYPE(type.c_str()), shared.get(), FALSE)));
        check(body.get());
        return 0;
    }
    std::string blob = bytes; // the interface takes no constant
    ErrorSlot error;
    const ObjectHandle<GDBusMessage> message(
        g_dbus_message_new_from_blob(reinterpret_cast<guchar*>(blob.data()), blob.size(),
                                     G_DBUS_CAPABILITY_FLAGS_NONE, error.out()));
    if (message) {
        check(g_dbus_message_get_body(message.get()));
    }
    return 0;
}
