// SPDX-License-Identifier: MIT
// The texts that users see, in the language of the host.
#pragma once

#include <cstdint>
#include <string>

/// Reads numbered texts from the string list of the host's language. [main-thread]
class GLYLanguageMgr {
public:
    /// The one instance, which lives as long as the module and is not to be deleted. The host is
    /// asked for its locale at the first call only.
    [[nodiscard]] static GLYLanguageMgr* getLanguageMgr();

    GLYLanguageMgr();

    /// Text `index` (from 1), in UTF-8, at most 1023 bytes of it. Empty while there is no plug-in
    /// object; "strtable error" if the list has no such text.
    [[nodiscard]] std::string getString(std::int32_t index) const;

private:
    std::int32_t listID_;
};
