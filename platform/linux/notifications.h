// SPDX-License-Identifier: MIT
// The counters behind notify.h: one per name, and the tokens that read them.
//
// A posting is the signal Posted of the interface that has the notification's name. The
// [bus-thread] adds one to the name's counter; a check compares that with what the token has seen
// and takes no lock, so it can be polled all day.
#pragma once

#include "busconnection.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

namespace platform {

/// [any-thread] but for takePosting.
class Notifications {
public:
    static constexpr std::size_t maximumTokens = 4096;

    static Notifications& instance();

    /// A token, or -1 when the bus refused or all tokens are in use.
    int add(const BusConnection& connection, const std::string& name);
    /// False: unknown token.
    bool check(int token, bool& posted);
    /// Ends a token; with its name's last one `connection` (may be null) is told that postings are
    /// no longer wanted. False: unknown token.
    bool remove(int token, const BusConnection* connection);

    /// [bus-thread] True when the message was a posting. Never waits for the bus.
    bool takePosting(GDBusMessage* message);
    /// Asks a fresh connection for the postings of all names with tokens.
    void restoreMatches(const BusConnection& connection);

private:
    /// Kept for the life of the process once made: programs watch few names, and tokens may read
    /// the counter while others end.
    struct Name {
        std::string_view text; ///< the map's own key
        std::atomic<std::uint32_t> posted = 0;
        int tokens = 0;              ///< guarded by registration_
        std::uint64_t matchedOn = 0; ///< serial of the connection with the match; likewise
    };
    /// `state`: generation in the upper half (odd: in use), postings seen in the lower.
    struct Slot {
        std::atomic<std::uint64_t> state = 0;
        std::atomic<Name*> name = nullptr;
    };

    static bool addMatch(const BusConnection& connection, Name& name);
    Name& nameOf(const std::string& text);

    std::mutex registration_; ///< held during calls to the bus
    std::mutex names_;        ///< guards the map's shape; never held during a call
    std::map<std::string, Name, std::less<>> byName_;
    std::array<Slot, maximumTokens> slots_;
};

} // namespace platform
