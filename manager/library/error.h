// SPDX-License-Identifier: MIT
// The manager's one exception: a text of one line that names the file or peer, the place and what
// is wrong with it.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace manager {

/// Carries a message that can be shown to the user as it stands, without a line end.
class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Somebody else held a lock for longer than was waited; the text says who, where that can be told.
class Locked : public Error {
public:
    using Error::Error;
};

/// "PATH: WHAT: system's text for `code`"; `code` is an errno value.
inline Error systemError(std::string_view path, std::string_view what, int code) {
    std::string text(path);
    text.append(": ").append(what).append(": ").append(std::generic_category().message(code));
    return Error(text);
}

} // namespace manager
