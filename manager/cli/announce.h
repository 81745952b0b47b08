// SPDX-License-Identifier: MIT
// Telling other processes: that the library or what is active has changed, or to quit.
#pragma once

#include "manager/exchange/exchange.h"

#include <cstdint>
#include <optional>

namespace manager {

/// The signature under which the manager listens.
inline constexpr char managerSignature[5] = "QGLY";

/// What is posted when the library or what is active has changed.
inline constexpr const char* changeNotification = "org.glyphora.Glyphora.FontLibraryChanged";

/// What is posted when a command has changed a collection or tag.
inline constexpr const char* setsNotification = "org.glyphora.Glyphora.SetsChanged";

/// Posts it. Without a session bus there is nobody to tell.
void postSetsChanged();

/// Posts the library-changed notification. Without a session bus there is nobody to tell.
void postLibraryChanged();

/// Sends the change event to one process, without waiting for anything. False: it is gone.
[[nodiscard]] bool sendLibraryChanged(const ChangeTarget& target);

/// The process id of the running application of a signature, if there is one.
[[nodiscard]] std::optional<std::int32_t> findApplication(const char* signature);
/// The server's.
[[nodiscard]] inline std::optional<std::int32_t> findServer() {
    return findApplication(managerSignature);
}

/// Has the bus start the server, where it is installed. False: it cannot.
[[nodiscard]] bool startServer();

/// Asks the running server to quit and returns once it has ended, or after a few seconds if it has
/// agreed and not ended yet. Throws Error when there is none.
void askServerToQuit();

} // namespace manager
