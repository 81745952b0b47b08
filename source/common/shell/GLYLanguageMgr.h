// SPDX-License-Identifier: MIT
// The texts that users see, in the language of the host.
#pragma once

#include <cstdint>
#include <string>

/// Reads numbered texts from the string list of the host's language. Main thread only.
class GLYLanguageMgr {
public:
    /// The one instance; the host is asked for its locale at the first call only.
    static GLYLanguageMgr* getLanguageMgr();

    GLYLanguageMgr();

    /// Text `index` (from 1, UTF-8, at most 1023 bytes). Empty while there is no plug-in object;
    /// "strtable error" when the list has no such text.
    std::string getString(std::int32_t index) const;

private:
    std::int32_t listID_;
};
