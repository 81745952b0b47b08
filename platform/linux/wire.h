// SPDX-License-Identifier: MIT
// Apple events as messages of the bus.
//
// One event is a call of Handle on org.glyphora.AppleEvent1 at /org/glyphora/AppleEvents1:
//   u class, u ID, n return ID, i transaction ID, a(uuay) parameters, a(uuay) attributes
// where an item is keyword, type and data; it returns a(uuay), the reply's parameters. The bus
// allows an array 64 MiB, and kAEMaximumEventSize counts both arrays as they stand in the message,
// so that an event that could be filled can be sent.
#pragma once

#include "event.h"

#include <string>
#include <string_view>

namespace platform {

inline constexpr const char* eventInterface = "org.glyphora.AppleEvent1";
inline constexpr const char* eventPath = "/org/glyphora/AppleEvents1";
inline constexpr const char* eventMethod = "Handle";
inline constexpr std::string_view eventSignature = "uunia(uuay)a(uuay)";
inline constexpr std::string_view replySignature = "a(uuay)";
/// A property of the interface, for other processes' ProcessInfoRec::processName.
inline constexpr const char* nameProperty = "ApplicationName";

inline constexpr const char* errorNotHandled = "org.glyphora.AppleEvents1.Error.NotHandled";
inline constexpr const char* errorEnded = "org.glyphora.AppleEvents1.Error.Ended";
inline constexpr const char* errorInvalidArguments = "org.freedesktop.DBus.Error.InvalidArgs";
inline constexpr const char* errorLimitsExceeded = "org.freedesktop.DBus.Error.LimitsExceeded";
inline constexpr const char* errorUnknownMethod = "org.freedesktop.DBus.Error.UnknownMethod";
inline constexpr const char* errorUnknownObject = "org.freedesktop.DBus.Error.UnknownObject";

/// The body of the call, floating; shares the event's data.
[[nodiscard]] GVariant* eventBody(const Event& event);
/// The body of the answer, floating; shares the items' data.
[[nodiscard]] GVariant* replyBody(const EventItems& items);

/// What is wrong with an incoming body: a D-Bus error name (null: nothing) and a sentence.
struct WireFault {
    const char* errorName = nullptr;
    std::string text;
};
/// Fill `event` from the body of a call or of an answer (null: no body), whose data it then shares.
[[nodiscard]] WireFault readEvent(GVariant* body, Event& event);
[[nodiscard]] WireFault readReply(GVariant* body, Event& reply);

/// The status that AESend reports for an error that came back instead of an answer.
[[nodiscard]] OSStatus statusOfError(const GError* error);
/// The same for a D-Bus error name.
[[nodiscard]] OSStatus statusOfErrorName(std::string_view name);

} // namespace platform
