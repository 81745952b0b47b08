// SPDX-License-Identifier: MIT
// Scalar types and error codes of the host's interface.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

/// A host status: 0 for success, else a number or four characters packed big-endian.
using SPErr = std::int32_t;
using ASErr = SPErr;
using AIErr = SPErr;
using ADMErr = SPErr;
using AIBoolean = std::uint8_t;

/// The host's reference to a loaded plug-in; owned by the host, valid until after its shut-down.
using SPPluginRef = struct SPPlugin*;

/// Packs four characters big-endian ('!MEM' is FourChars("!MEM")), by arithmetic, so that the value
/// does not depend on the machine's byte order. [any-thread]
[[nodiscard]] constexpr std::int32_t FourChars(const char (&text)[5]) {
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i) {
        code = (code << 8U) | static_cast<unsigned char>(text[i]);
    }
    return static_cast<std::int32_t>(code);
}

constexpr SPErr kNoErr = 0;
constexpr SPErr kOutOfMemoryErr = FourChars("!MEM");
constexpr SPErr kUnhandledMsgErr = FourChars("!MSG");
constexpr SPErr kBadParameterErr = FourChars("PARM");
constexpr SPErr kSuiteNotFoundErr = FourChars("S!Fd");
constexpr SPErr kWrongThreadErr = FourChars("THRD"); ///< called off the main thread
constexpr SPErr kNotRunningErr = FourChars("SHUT"); ///< called while the plug-in handles no message
constexpr SPErr kNoSuchFontErr = FourChars("FNT?");
constexpr SPErr kNoSuchStringErr = FourChars("STR?");
constexpr SPErr kPurgedErr = FourChars("pFls"); ///< the answer of a purge that did its work

/// Whether `Suite` is a table of `calls` function pointers and nothing else. Host and plug-in are
/// built apart: they agree on a suite only if both find each call in its place.
template <typename Suite, std::size_t calls>
constexpr bool
    isSuiteTable = std::is_standard_layout_v<Suite>&& std::is_trivially_copyable_v<Suite> &&
                   sizeof(Suite) == calls * sizeof(void (*)());
