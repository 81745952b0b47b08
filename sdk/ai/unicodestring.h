// SPDX-License-Identifier: MIT
// The host's Unicode text as a value. Main thread only; the Unicode string suite must be acquired.
#pragma once

#include "ai/suites.h"

#include <stdexcept>
#include <string>
#include <string_view>

namespace ai {

/// A suite call's non-zero result.
class Error : public std::runtime_error {
public:
    explicit Error(AIErr errorCode);

    AIErr error;
};

/// An immutable text that the host keeps. Copies are texts of their own. Throws ai::Error.
class UnicodeString {
public:
    UnicodeString() noexcept = default; ///< the empty text, without a host object
    /// Throws ai::Error when the bytes are not valid UTF-8.
    explicit UnicodeString(std::string_view utf8);
    UnicodeString(const UnicodeString& other);
    UnicodeString(UnicodeString&& other) noexcept;
    UnicodeString& operator=(UnicodeString other) noexcept;
    ~UnicodeString();

    std::string as_UTF8() const;
    bool empty() const;

private:
    std::string_view bytes() const;

    AIUnicodeStringHandle handle_ = nullptr;
};

} // namespace ai
