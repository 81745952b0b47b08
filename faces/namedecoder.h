// SPDX-License-Identifier: MIT
// Turns the bytes of name records into UTF-8.
#pragma once

#include "faces/namelanguage.h"

#include <iconv.h>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace faces {

/// A literal string of a Type 1 font, as FreeType hands it out: its octal escapes of ASCII and its
/// escaped brackets and backslashes are resolved (PostScript Language Reference, 3.2.2).
[[nodiscard]] std::string decodeLiteral(std::string_view text);

/// [one-thread] Keeps a converter for each encoding that it has met.
class NameDecoder {
public:
    /// The text of `bytes`, up to a NUL and without blanks at its ends; what does not decode
    /// becomes U+FFFD, a half character at the end is dropped. nullopt: an encoding that is not
    /// known.
    [[nodiscard]] std::optional<std::string> decode(Platform platform, unsigned encoding,
                                                    std::string_view bytes);

private:
    struct ConverterDeleter {
        void operator()(iconv_t converter) const { iconv_close(converter); }
    };
    using Converter = std::unique_ptr<std::remove_pointer_t<iconv_t>, ConverterDeleter>;

    [[nodiscard]] iconv_t converter(const char* encoding);

    std::map<std::string_view, Converter> converters_; ///< null: the system has none
};

} // namespace faces
