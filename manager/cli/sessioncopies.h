// SPDX-License-Identifier: MIT
// Copies of font files that are to be active for one session without being added to the library.
#pragma once

#include "manager/library/places.h"

#include <string>
#include <utility>
#include <vector>

namespace manager {

/// [main-thread] The copies that one command makes. Those that it does not keep go with this
/// object, and the library forgets them.
class SessionCopies {
public:
    explicit SessionCopies(Places places) : places_(std::move(places)) {}
    SessionCopies(const SessionCopies&) = delete;
    SessionCopies& operator=(const SessionCopies&) = delete;
    /// What cannot be removed is told on standard error.
    ~SessionCopies();

    /// Copies a file to a folder that goes with the session. Throws Error.
    void copy(const std::string& file);
    /// Whether there is none that may go.
    [[nodiscard]] bool isEmpty() const { return folders_.empty(); }
    /// The copy in this folder stays; one that none is in is passed over.
    void keep(const std::string& folder);

private:
    Places places_;
    std::vector<std::string> folders_; ///< one of each copy that is not kept
};

} // namespace manager
