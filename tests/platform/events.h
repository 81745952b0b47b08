// SPDX-License-Identifier: MIT
// Short ways for tests to make, send and read events, and a raw connection to misbehave with.
#pragma once

#include "platform/appleevents.h"
#include "platform/application.h"

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace platformtest {

/// A descriptor that disposes of itself.
class Desc {
public:
    Desc() = default;
    ~Desc() { AEDisposeDesc(&desc_); }
    Desc(const Desc&) = delete;
    Desc& operator=(const Desc&) = delete;
    AEDesc* get() { return &desc_; }

private:
    AEDesc desc_;
};

/// An event, of class 'TEST' unless told otherwise, and its reply once sent.
class TestEvent {
public:
    TestEvent(const char (&signature)[5], const char (&what)[5],
              const char (&eventClass)[5] = "TEST") {
        make(typeApplSignature, signature, eventClass, what);
    }
    TestEvent(std::int32_t processID, const char (&what)[5]) {
        make(typeKernelProcessID, &processID, "TEST", what);
    }

    OSErr putText(std::string_view text, AEKeyword keyword = keyDirectObject) {
        return AEPutParamPtr(event(), keyword, typeChar, text.data(),
                             static_cast<Size>(text.size()));
    }
    OSStatus send(std::int32_t timeOut = kAEDefaultTimeout, AESendMode mode = kAEWaitReply) {
        AEDisposeDesc(reply());
        return AESend(event(), reply(), mode, kAENormalPriority, timeOut, nullptr, nullptr);
    }
    std::optional<std::int32_t> number(AEKeyword keyword = keyDirectObject) {
        std::int32_t value = 0;
        const OSErr error =
            AEGetParamPtr(reply(), keyword, typeSInt32, nullptr, &value, sizeof value, nullptr);
        return error == noErr ? std::optional(value) : std::nullopt;
    }
    /// Sends it; the number that is answered, if any.
    std::optional<std::int32_t> ask(std::int32_t timeOut = kAEDefaultTimeout) {
        return send(timeOut) == noErr ? number() : std::nullopt;
    }
    std::optional<std::string> text() {
        Size size = 0;
        if (AEGetParamPtr(reply(), typeWildCard, typeChar, nullptr, nullptr, 0, &size) != noErr) {
            return std::nullopt;
        }
        std::string value(static_cast<std::size_t>(size), '\0');
        AEGetParamPtr(reply(), typeWildCard, typeChar, nullptr, value.data(), size, nullptr);
        return value;
    }
    AppleEvent* event() { return event_.get(); }
    AppleEvent* reply() { return reply_.get(); }

private:
    void make(DescType type, const void* target, const char (&eventClass)[5],
              const char (&what)[5]) {
        Desc address;
        EXPECT_EQ(AECreateDesc(type, target, 4, address.get()), noErr);
        EXPECT_EQ(AECreateAppleEvent(FourCharCode(eventClass), FourCharCode(what), address.get(),
                                     kAutoGenerateReturnID, kAnyTransactionID, event()),
                  noErr);
    }

    Desc event_;
    Desc reply_;
};

/// A connection that knows nothing of this project.
class RawConnection {
public:
    explicit RawConnection(const std::string& address)
        : connection_(g_dbus_connection_new_for_address_sync(
              address.c_str(),
              static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
              nullptr, nullptr, nullptr)) {
        g_dbus_connection_set_exit_on_close(connection_, FALSE);
    }
    ~RawConnection() {
        g_dbus_connection_close_sync(connection_, nullptr, nullptr);
        g_object_unref(connection_);
    }
    RawConnection(const RawConnection&) = delete;
    RawConnection& operator=(const RawConnection&) = delete;
    GDBusConnection* get() { return connection_; }

    /// "name: text" of the error that a call gets, or "" when it gets an answer.
    std::string errorOf(const std::string& busName, const char* path, const char* interface,
                        const char* member, GVariant* body) {
        GDBusMessage* call =
            g_dbus_message_new_method_call(busName.c_str(), path, interface, member);
        if (body != nullptr) {
            g_dbus_message_set_body(call, body);
        }
        GError* error = nullptr;
        GDBusMessage* answer = g_dbus_connection_send_message_with_reply_sync(
            connection_, call, G_DBUS_SEND_MESSAGE_FLAGS_NONE, G_MAXINT, nullptr, nullptr, &error);
        // Copied by GLib, which made it in another thread in a way that sanitizers cannot follow.
        char* message = g_strdup(error != nullptr ? error->message : "");
        std::string text = message;
        g_free(message);
        if (answer != nullptr &&
            g_dbus_message_get_message_type(answer) == G_DBUS_MESSAGE_TYPE_ERROR) {
            const char* words = nullptr;
            g_variant_get(g_dbus_message_get_body(answer), "(&s)", &words);
            text = std::string(g_dbus_message_get_error_name(answer)) + ": " + words;
        }
        g_clear_error(&error);
        g_clear_object(&answer);
        g_object_unref(call);
        return text;
    }
    void ownName(const std::string& name) {
        EXPECT_EQ(askBus("RequestName", g_variant_new("(su)", name.c_str(), 4U)), "(uint32 1,)");
    }
    bool hasOwner(const std::string& name) {
        return askBus("NameHasOwner", g_variant_new("(s)", name.c_str())) == "(true,)";
    }

private:
    /// The bus' answer, printed.
    std::string askBus(const char* method, GVariant* arguments) {
        GVariant* reply = g_dbus_connection_call_sync(
            connection_, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
            method, arguments, nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
        char* text = reply != nullptr ? g_variant_print(reply, TRUE) : g_strdup("none");
        g_clear_pointer(&reply, g_variant_unref);
        std::string answer = text;
        g_free(text);
        return answer;
    }

    GDBusConnection* connection_;
};

} // namespace platformtest
