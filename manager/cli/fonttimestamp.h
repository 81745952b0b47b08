// SPDX-License-Identifier: MIT
// How GTK programs on an X display are told that fonts have changed: by the setting
// Fontconfig/Timestamp. A settings daemon keeps it; where none runs this stands in for it.
#pragma once

#include <cstdint>
#include <memory>

struct xcb_connection_t;

namespace manager {

/// Offers the one setting while it lives, if there is a display and nobody offers settings there
/// already; otherwise does nothing. A settings daemon that starts meanwhile takes over.
/// [one-thread]
class FontTimestamp {
public:
    FontTimestamp();
    FontTimestamp(const FontTimestamp&) = delete;
    FontTimestamp& operator=(const FontTimestamp&) = delete;
    ~FontTimestamp();

    /// Gives the setting another value, on which programs look at their fonts.
    void change();
    [[nodiscard]] bool isOffered() const { return window_ != 0; }

private:
    struct Closer {
        void operator()(xcb_connection_t* connection) const;
    };
    [[nodiscard]] std::uint32_t atom(const char* name) const;
    [[nodiscard]] bool isAnothers(std::uint32_t owner) const;

    std::unique_ptr<xcb_connection_t, Closer> connection_;
    std::uint32_t window_ = 0;
    std::uint32_t settings_ = 0; ///< the property that holds them
    std::uint32_t serial_ = 0;
};

} // namespace manager
