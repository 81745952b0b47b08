// SPDX-License-Identifier: MIT
// What the manager did, kept on disk for people to read later.
#pragma once

#include "manager/library/places.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace manager {

/// What an entry tells.
enum class Deed { started, asked, done, undecided, failed, stopped };

/// Appends one entry; a file above a megabyte is put aside first (one such is kept). A history that
/// cannot be written is no reason to stop: nothing is thrown.
void recordDeed(const Places& places, Deed deed, std::string_view text);

/// The same for several at once, in their order.
struct HistoryEntry {
    Deed deed{};
    std::string text;
};
void recordDeeds(const Places& places, std::span<const HistoryEntry> entries);

/// The entries as lines for people, without line ends, oldest first: those since the server was
/// last started, or all that are kept. Throws Error.
std::vector<std::string> readHistory(const Places& places, bool all);

} // namespace manager
