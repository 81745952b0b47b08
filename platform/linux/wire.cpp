// SPDX-License-Identifier: MIT
// Events to message bodies and back, with every check that an unknown peer makes necessary.
#include "wire.h"

#include <algorithm>
#include <array>
#include <utility>

namespace platform {

namespace {

constexpr auto maximumSize = static_cast<std::size_t>(kAEMaximumEventSize);

GVariant* itemsVariant(const EventItems& items) {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a(uuay)"));
    for (const EventItem& item : items.all()) {
        const std::array children = {
            g_variant_new_uint32(item.keyword), g_variant_new_uint32(item.type),
            g_variant_new_from_bytes(G_VARIANT_TYPE_BYTESTRING, item.data.get(), TRUE)};
        g_variant_builder_add_value(&builder,
                                    g_variant_new_tuple(children.data(), children.size()));
    }
    return g_variant_builder_end(&builder);
}

WireFault readItems(GVariant* array, const char* what, EventItems& items) {
    const gsize count = g_variant_n_children(array);
    if (count > EventItems::maximumCount) {
        return {errorLimitsExceeded, std::to_string(count) + " " + what + "; at most " +
                                         std::to_string(EventItems::maximumCount) + " are taken"};
    }
    for (gsize i = 0; i < count; ++i) {
        const VariantHandle child(g_variant_get_child_value(array, i));
        EventItem item;
        g_variant_get_child(child.get(), 0, "u", &item.keyword);
        g_variant_get_child(child.get(), 1, "u", &item.type);
        const VariantHandle data(g_variant_get_child_value(child.get(), 2));
        item.data.reset(g_variant_get_data_as_bytes(data.get()));
        items.append(std::move(item));
    }
    return {};
}

WireFault checkSignature(GVariant* body, std::string_view wanted, const char* what) {
    const std::string_view type = body != nullptr ? g_variant_get_type_string(body) : "()";
    const std::string_view found = type.substr(1, type.size() - 2);
    if (found == wanted) {
        return {};
    }
    return {errorInvalidArguments, std::string(what) + " (" + std::string(wanted) + "), not of (" +
                                       std::string(found) + ")"};
}

WireFault checkSize(const Event& event) {
    if (event.wireSize() <= maximumSize) {
        return {};
    }
    return {errorLimitsExceeded, "the event takes " + std::to_string(event.wireSize()) +
                                     " bytes; at most " + std::to_string(maximumSize) +
                                     " are taken"};
}

} // namespace

GVariant* eventBody(const Event& event) {
    const std::array children = {
        g_variant_new_uint32(event.eventClass), g_variant_new_uint32(event.eventID),
        g_variant_new_int16(event.returnID),    g_variant_new_int32(event.transactionID),
        itemsVariant(event.parameters),         itemsVariant(event.attributes)};
    return g_variant_new_tuple(children.data(), children.size());
}

GVariant* replyBody(const EventItems& items) {
    GVariant* const array = itemsVariant(items);
    return g_variant_new_tuple(&array, 1);
}

WireFault readEvent(GVariant* body, Event& event) {
    WireFault fault = checkSignature(body, eventSignature, "Handle takes arguments of");
    if (fault.errorName != nullptr) {
        return fault;
    }
    g_variant_get_child(body, 0, "u", &event.eventClass);
    g_variant_get_child(body, 1, "u", &event.eventID);
    g_variant_get_child(body, 2, "n", &event.returnID);
    g_variant_get_child(body, 3, "i", &event.transactionID);
    const VariantHandle parameters(g_variant_get_child_value(body, 4));
    const VariantHandle attributes(g_variant_get_child_value(body, 5));
    fault = readItems(parameters.get(), "parameters", event.parameters);
    if (fault.errorName == nullptr) {
        fault = readItems(attributes.get(), "attributes", event.attributes);
    }
    return fault.errorName != nullptr ? fault : checkSize(event);
}

WireFault readReply(GVariant* body, Event& reply) {
    WireFault fault = checkSignature(body, replySignature, "Handle answers with values of");
    if (fault.errorName != nullptr) {
        return fault;
    }
    const VariantHandle parameters(g_variant_get_child_value(body, 0));
    fault = readItems(parameters.get(), "parameters", reply.parameters);
    return fault.errorName != nullptr ? fault : checkSize(reply);
}

OSStatus statusOfErrorName(std::string_view name) {
    static constexpr std::array statuses = std::to_array<std::pair<std::string_view, OSErr>>({
        {errorNotHandled, errAEEventNotHandled},
        {errorEnded, connectionInvalid},
        {errorInvalidArguments, errAECorruptData},
        {errorLimitsExceeded, memFullErr},
        {errorUnknownMethod, errAEEventNotHandled},
        {errorUnknownObject, errAEEventNotHandled},
        {"org.freedesktop.DBus.Error.UnknownInterface", errAEEventNotHandled},
        {"org.freedesktop.DBus.Error.ServiceUnknown", procNotFound},
        {"org.freedesktop.DBus.Error.NameHasNoOwner", procNotFound},
    });
    const auto* found = std::find_if(statuses.begin(), statuses.end(),
                                     [name](const auto& entry) { return entry.first == name; });
    // What is left, NoReply and Disconnected above all, means that the peer went away.
    return found != statuses.end() ? found->second : OSErr{connectionInvalid};
}

OSStatus statusOfError(const GError* error) {
    if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_TIMED_OUT) != 0) {
        return errAETimeout;
    }
    if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_INVALID_ARGUMENT) != 0) {
        return memFullErr; // the message could not be written within the bus' limits
    }
    const TextHandle name(error != nullptr && g_dbus_error_is_remote_error(error) != 0
                              ? g_dbus_error_get_remote_error(error)
                              : nullptr);
    return name ? statusOfErrorName(name.get()) : OSStatus{connectionInvalid};
}

} // namespace platform
