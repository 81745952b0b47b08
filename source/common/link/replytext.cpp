// SPDX-License-Identifier: MIT
// Folding of replies.
#include "replytext.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace GLY {

// Bytes serve for characters: before an ASCII end, one more of the one is one more of the other.
void foldReply(std::string& reply) {
    constexpr std::string_view closing = "</cmd>";
    const std::string_view text = reply;
    std::size_t folded = 0;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        std::string_view line = text.substr(begin, end - begin);
        if (line.size() > closing.size() && line.ends_with(closing)) {
            line.remove_suffix(closing.size());
        }
        std::memmove(reply.data() + folded, line.data(), line.size());
        folded += line.size();
        begin = end + 1;
    }
    reply.resize(folded);
}

std::string escapeAmpersands(std::string text) {
    constexpr std::string_view escape = "&amp;";
    const auto ampersands = static_cast<std::size_t>(std::count(text.begin(), text.end(), '&'));
    if (ampersands == 0) {
        return text;
    }
    std::string escaped;
    escaped.reserve(text.size() + ampersands * (escape.size() - 1));
    std::size_t begin = 0;
    for (std::size_t end = text.find('&'); end != std::string::npos; end = text.find('&', begin)) {
        escaped.append(text, begin, end - begin).append(escape);
        begin = end + 1;
    }
    return escaped.append(text, begin);
}

} // namespace GLY
