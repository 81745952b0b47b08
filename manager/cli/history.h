// SPDX-License-Identifier: MIT
// What the manager did, kept on disk for people to read later.
#pragma once

#include "manager/library/places.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace manager {

/// What an entry tells.
enum class Deed { Started, Asked, Done, Undecided, Failed, Stopped };
constexpr std::size_t deedCount = 6;

/// Appends one entry; a file that would grow above a megabyte is put aside first (one such is
/// kept). A history that cannot be written is no reason to stop: nothing is thrown. A text above
/// 1024 bytes is cut, with a mark at its end.
void recordDeed(const Places& places, Deed deed, std::string_view text);

/// The same for several at once, in their order.
struct HistoryEntry {
    Deed deed{};
    std::string text;
};
void recordDeeds(const Places& places, std::span<const HistoryEntry> entries);

/// What came of one occasion, however much: the first hundred of each deed, then how many more.
class Occasion {
public:
    /// `aloud`: on standard error, too.
    void add(Deed deed, const std::string& text, bool aloud);
    /// Writes what was added so far; it goes on.
    void write(const Places& places);
    /// Ends it.
    void record(const Places& places);

private:
    struct Count {
        std::size_t all = 0;
        bool areMoreAloud = false;
    };
    std::array<Count, deedCount> counts_;
    std::vector<HistoryEntry> entries_;
};

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
