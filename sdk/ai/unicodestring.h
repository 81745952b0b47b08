// SPDX-License-Identifier: MIT
// The host's Unicode text as a value. [main-thread] The Unicode string suite must be acquired.
#pragma once

#include "ai/suites.h"

#include <stdexcept>
#include <string>
#include <string_view>

namespace ai {

/// The non-zero result of a suite call.
class Error : public std::runtime_error {
public:
    explicit Error(AIErr errorCode);

    AIErr error;
};

/// An immutable text that the host keeps; a copy is a text of its own. Throws ai::Error when a
/// suite call fails.
class UnicodeString {
public:
    UnicodeString() noexcept = default; ///< the empty text, without a host object
    /// Throws ai::Error, too, when the bytes are not valid UTF-8.
    explicit UnicodeString(std::string_view utf8);
    UnicodeString(const UnicodeString& other);
    UnicodeString(UnicodeString&& other) noexcept;
    UnicodeString& operator=(UnicodeString other) noexcept;
    ~UnicodeString();

    [[nodiscard]] std::string as_UTF8() const;
    [[nodiscard]] bool empty() const;

private:
    [[nodiscard]] std::string_view bytes() const;

    AIUnicodeStringHandle handle_ = nullptr;
};

} // namespace ai
