// SPDX-License-Identifier: MIT
// Messages from peers that do not keep to the protocol: refused by name, without effect.
#include "platform/linux/busnames.h"
#include "platform/linux/wire.h"
#include "tests/platform/events.h"
#include "tests/support/privatebus/privatebus.h"

#include <vector>

namespace {

using platformtest::RawConnection;
using platformtest::TestEvent;

constexpr const char* objectPath = "/org/glyphora/AppleEvents1";
constexpr const char* testInterface = "org.glyphora.AppleEvent1";

class WithAnApplication : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(PLRegisterApplication(FourCharCode("SELF"), kPLOneInstance, "Self"), noErr);
    }
    void TearDown() override { PLUnregisterApplication(); }
    testsupport::PrivateBus bus;
    RawConnection stranger{bus.address()};
    const std::string busName = platform::busNameOf(FourCharCode("SELF"));
};

using AMalformedCall = WithAnApplication;

TEST_F(AMalformedCall, IsRefusedByName) {
    const std::string invalid = "org.freedesktop.DBus.Error.InvalidArgs: ";
    const std::string otherType =
        invalid + "Handle takes arguments of (uunia(uuay)a(uuay)), not of ";
    const std::string otherMethod = "org.freedesktop.DBus.Error.UnknownMethod: "
                                    "org.glyphora.AppleEvent1 has only the method Handle";
    const struct {
        const char* path;
        const char* interface;
        const char* member;
        const char* body; ///< text form of a GVariant; null: none
        std::string error;
    } calls[] = {
        {objectPath, testInterface, "Handle", nullptr, otherType + "()"},
        {objectPath, testInterface, "Handle", "('text',)", otherType + "(s)"},
        {objectPath, testInterface, "Handle",
         "(uint32 1, uint32 2, int16 3, 4, @a(uuay) [], @a(uuay) [], 5)",
         otherType + "(uunia(uuay)a(uuay)i)"},
        {objectPath, testInterface, "Mangle", nullptr, otherMethod},
        {objectPath, nullptr, "Mangle", nullptr, otherMethod},
        {"/org/glyphora", testInterface, "Handle", nullptr,
         "org.freedesktop.DBus.Error.UnknownObject: events are taken at "
         "/org/glyphora/AppleEvents1"},
        {objectPath, "org.freedesktop.DBus.Properties", "Get",
         "('org.glyphora.AppleEvent1', 'Age')",
         invalid + "the only property is ApplicationName of org.glyphora.AppleEvent1, and it can "
                   "only be read by Get"},
    };
    for (const auto& [path, interface, member, body, error] : calls) {
        GVariant* parsed = body != nullptr ? g_variant_new_parsed(body) : nullptr;
        EXPECT_EQ(stranger.errorOf(busName, path, interface, member, parsed), error);
        EXPECT_EQ(PLDispatchPendingEvents(), 0) << "nothing was queued";
    }
    EXPECT_EQ(TestEvent("SELF", "echo").send(kNoTimeOut, kAENoReply), noErr);
    EXPECT_EQ(PLWaitForEvents(-1), 1) << "good ones still come in";
}

class AnExcessiveCall : public WithAnApplication {
protected:
    std::string errorOf(const std::vector<gsize>& parameterSizes,
                        const std::vector<gsize>& attributeSizes) {
        const auto items = [](const std::vector<gsize>& sizes) {
            GVariantBuilder builder;
            g_variant_builder_init(&builder, G_VARIANT_TYPE("a(uuay)"));
            for (const gsize size : sizes) {
                gpointer bytes = g_malloc0(size);
                GVariant* data =
                    g_variant_new_from_data(G_VARIANT_TYPE("ay"), bytes, size, TRUE, g_free, bytes);
                g_variant_builder_add(&builder, "(uu@ay)", 1U, 2U, data);
            }
            return g_variant_builder_end(&builder);
        };
        return stranger.errorOf(busName, objectPath, testInterface, "Handle",
                                g_variant_new("(uuni@a(uuay)@a(uuay))", 1U, 2U, 3, 4,
                                              items(parameterSizes), items(attributeSizes)));
    }
};

TEST_F(AnExcessiveCall, IsRefusedWithTheLimit) {
    constexpr gsize half = kAEMaximumEventSize / 2;
    EXPECT_EQ(errorOf({half}, {half}),
              "org.freedesktop.DBus.Error.LimitsExceeded: the event takes 67108896 bytes; at most "
              "67108864 are taken");
    EXPECT_EQ(errorOf(std::vector<gsize>(1025), {}),
              "org.freedesktop.DBus.Error.LimitsExceeded: 1025 parameters; at most 1024 are taken");
    EXPECT_EQ(PLDispatchPendingEvents(), 0);
}

TEST_F(AnExcessiveCall, CostsOnlyItsSenderTheConnection) {
    // An array above the bus' own limit: the daemon hangs up on whoever sends it.
    constexpr gsize half = kAEMaximumEventSize / 2;
    EXPECT_NE(errorOf({half, half, half}, {}), "");
    EXPECT_EQ(TestEvent("SELF", "echo").send(kNoTimeOut, kAENoReply), noErr);
    EXPECT_EQ(PLWaitForEvents(-1), 1);
}

TEST_F(AnExcessiveCall, FindsTheQueueFull) {
    constexpr int waiting = 4096;
    for (int i = 0; i < waiting; ++i) {
        ASSERT_EQ(TestEvent("SELF", "echo").send(kNoTimeOut, kAENoReply), noErr);
    }
    // By the answer to this call the bus has passed all of them on.
    ASSERT_EQ(TestEvent("NONE", "echo").send(), procNotFound);
    EXPECT_EQ(errorOf({}, {}), "org.freedesktop.DBus.Error.LimitsExceeded: too many events wait "
                               "for this application already");
    EXPECT_EQ(PLDispatchPendingEvents(), waiting);
}

/// Answers the next call with a body of its own choice.
GDBusMessage* answerWrongly(GDBusConnection* connection, GDBusMessage* message, gboolean incoming,
                            gpointer body) {
    if (incoming == 0 ||
        g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL) {
        return message;
    }
    GDBusMessage* answer = g_dbus_message_new_method_reply(message);
    if (body != nullptr) {
        g_dbus_message_set_body(answer, static_cast<GVariant*>(body));
    }
    g_dbus_connection_send_message(connection, answer, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr,
                                   nullptr);
    g_object_unref(answer);
    g_object_unref(message);
    return nullptr;
}

using AMalformedAnswer = WithAnApplication;

TEST_F(AMalformedAnswer, IsAnErrorOfTheSend) {
    stranger.ownName(platform::busNameOf(FourCharCode("BAD ")));
    const std::vector<std::pair<const char*, OSStatus>> answers = {
        {"('text',)", errAEReplyNotValid},
        {"(@a(uus) [],)", errAEReplyNotValid},
        {"(@a(uuay) [],)", noErr},
    };
    for (const auto& [text, status] : answers) {
        GVariant* body = g_variant_ref_sink(g_variant_new_parsed(text));
        const guint filter = g_dbus_connection_add_filter(
            stranger.get(), answerWrongly, body, reinterpret_cast<GDestroyNotify>(g_variant_unref));
        EXPECT_EQ(TestEvent("BAD ", "echo").send(kNoTimeOut), status) << text;
        g_dbus_connection_remove_filter(stranger.get(), filter);
    }
}

} // namespace
