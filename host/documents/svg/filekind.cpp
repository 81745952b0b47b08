// SPDX-License-Identifier: MIT
#include "host/documents/svg/filekind.h"

#include <algorithm>
#include <iterator>

namespace host::svg {

namespace {

using namespace std::string_view_literals;

struct Kind {
    std::string_view begin;
    const char* name;
};

constexpr Kind kinds[] = {
    {"%PDF-"sv, "a PDF document"},
    {"%!PS"sv, "a PostScript document"},
    {"\xC5\xD0\xD3\xC6"sv, "a PostScript document"},
    {"\x89PNG\r\n\x1A\n"sv, "a PNG picture"},
    {"\xFF\xD8\xFF"sv, "a JPEG picture"},
    {"GIF8"sv, "a GIF picture"},
    {"II*\0"sv, "a TIFF picture"},
    {"MM\0*"sv, "a TIFF picture"},
    {"8BPS"sv, "a Photoshop picture"},
    {"PK\x03\x04"sv, "a ZIP archive, as office documents are"},
    {"\0\1\0\0"sv, "a TrueType font"},
    {"OTTO"sv, "an OpenType font"},
    {"\xD0\xCF\x11\xE0"sv, "an office document"},
};

} // namespace

std::string notXmlText(std::string_view bytes) {
    const auto* const kind = std::find_if(std::begin(kinds), std::end(kinds), [&](const Kind& one) {
        return bytes.starts_with(one.begin);
    });
    return kind == std::end(kinds) ? "not XML" : std::string("not XML but ") + kind->name;
}

bool looksLikeSvg(std::string_view begin) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    begin.remove_prefix(begin.starts_with(byteOrderMark) ? byteOrderMark.size() : 0);
    const std::size_t first = begin.find_first_not_of(" \t\r\n");
    std::size_t at = first == std::string_view::npos || begin[first] != '<' ? first : first + 1;
    // Over declarations and comments to the first element.
    while (at < begin.size() && (begin[at] == '?' || begin[at] == '!')) {
        const bool comment = begin.substr(at).starts_with("!--");
        const std::size_t end = comment ? begin.find("-->", at) : at;
        const std::size_t next = end == std::string_view::npos ? end : begin.find('<', end);
        at = next == std::string_view::npos ? next : next + 1;
    }
    if (at == first || at >= begin.size()) {
        return false;
    }
    std::string_view name = begin.substr(at, begin.find_first_of(" \t\r\n>/", at) - at);
    name.remove_prefix(name.find(':') == std::string_view::npos ? 0 : name.find(':') + 1);
    return name == "svg" && at + name.size() < begin.size();
}

} // namespace host::svg
