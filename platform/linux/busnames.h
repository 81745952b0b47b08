// SPDX-License-Identifier: MIT
// How an application is called on the session bus.
//
// Each registered process owns `org.glyphora.AppleEvents1.<SIG>.instance<PID>`; the holder of a
// single instance owns `org.glyphora.AppleEvents1.<SIG>` besides. <SIG> is the signature, its
// letters and digits as they are and every other byte (the underscore too, and a digit at the
// front, where the bus allows none) as an underscore and two lower-case hexadecimal digits:
// 'QGLY' is QGLY, '3D _' is _33D_20_5f.
#pragma once

#include "platform/types.h"

#include <optional>
#include <string>
#include <string_view>
#include <tuple>

namespace platform {

struct InstanceName {
    OSType signature = 0;
    std::int32_t processID = 0;

    bool operator==(const InstanceName&) const = default;
    /// By process id, then by signature.
    auto operator<=>(const InstanceName& other) const {
        return std::tie(processID, signature) <=> std::tie(other.processID, other.signature);
    }
};

/// "org.glyphora.AppleEvents1.<SIG>".
[[nodiscard]] std::string busNameOf(OSType signature);
/// "org.glyphora.AppleEvents1.<SIG>.instance<PID>".
[[nodiscard]] std::string busNameOf(const InstanceName& instance);
/// Nothing unless `busName` is exactly what busNameOf makes of some instance.
[[nodiscard]] std::optional<InstanceName> parseInstanceName(std::string_view busName);

} // namespace platform
