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

} // namespace host::svg
