// SPDX-License-Identifier: MIT
// Scalar types and status codes that all desktop services share.
#pragma once

#include <cstdint>

using OSStatus = std::int32_t;
using OSErr = std::int16_t;
using OSType = std::uint32_t;
using Size = long;

enum : OSErr {
    noErr = 0,
    paramErr = -50,
    fnfErr = -43,
    memFullErr = -108,
    procNotFound = -600,
    connectionInvalid = -609,
};

/// Packs four characters big-endian, as four-character codes are written: FourCharCode("QGLY").
/// The packing is arithmetic and so the same on every byte order.
constexpr OSType FourCharCode(const char (&text)[5]) {
    OSType code = 0;
    for (int i = 0; i < 4; ++i) {
        code = (code << 8U) | static_cast<unsigned char>(text[i]);
    }
    return code;
}
