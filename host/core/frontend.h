// SPDX-License-Identifier: MIT
// Where the host says what it has to say: on a terminal, in a window, to a test.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace host {

enum class AlertKind : std::uint8_t { About, Error, Message };

/// What a plug-in wants the user to read. Texts are UTF-8.
struct Alert {
    AlertKind kind = AlertKind::Message;
    std::string plugin; ///< the name of the plug-in
    std::string title;  ///< of an about box, else empty
    std::string text;
};

/// Implementations must not throw. Misbehaviour is kept apart from errors: the host has put it
/// right and goes on, and only the plug-in's author can do something about it.
class Frontend {
public:
    virtual ~Frontend() = default;

    /// [main-thread, modal] Returns when the user has seen it.
    virtual void showAlert(const Alert& alert) = 0;
    /// [main-thread] `text` is one line that names file or plug-in.
    virtual void reportError(std::string_view text) = 0;
    /// [one-thread] Called only for the first of several that are equal.
    virtual void reportMisbehaviour(std::string_view plugin, std::string_view what) = 0;
};

} // namespace host
