// SPDX-License-Identifier: MIT
// What the manager did, kept on disk for people to read later.
#pragma once

#include "manager/library/places.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace manager {

/// What an entry tells.
enum class Deed { Started, Asked, Done, Undecided, Failed, Stopped };

/// Appends one entry; a file above a megabyte is put aside first (one such is kept). A history that
/// cannot be written is no reason to stop: nothing is thrown. A text above 4096 bytes is cut, with
/// a mark at its end.
void recordDeed(const Places& places, Deed deed, std::string_view text);

/// The same for several at once, in their order.
struct HistoryEntry {
    Deed deed{};
    std::string text;
};
void recordDeeds(const Places& places, std::span<const HistoryEntry> entries);

/// An entry as it was kept.
struct PastDeed {
    std::int64_t seconds = 0; ///< since 1970
    std::string deed;         ///< the name of a Deed; another program version may have more
    std::string text;
};

/// The entries, oldest first: those since the server was last started, or all that are kept.
/// Throws Error.
[[nodiscard]] std::vector<PastDeed> readHistory(const Places& places, bool all);

/// An entry as a line for people, in local time, without a line end.
[[nodiscard]] std::string lineText(const PastDeed& entry);

/// A time in seconds since 1970 as ISO 8601 has it, in UTC.
[[nodiscard]] std::string isoTime(std::int64_t seconds);

} // namespace manager
