// SPDX-License-Identifier: MIT
// FriBidi tells which way text runs, HarfBuzz which glyphs it takes.
#include "preview/drawing/shape.h"

#include <fribidi.h>

#include <algorithm>

namespace preview {

namespace {

/// Characters of one direction and one script.
struct Run {
    std::size_t begin = 0;
    std::size_t end = 0;
    FriBidiLevel level = 0;
};

std::u32string decode(const std::string& text) {
    const ShapingBuffer buffer(hb_buffer_create());
    hb_buffer_add_utf8(buffer.get(), text.data(), static_cast<int>(text.size()), 0, -1);
    unsigned count = 0;
    const hb_glyph_info_t* const infos = hb_buffer_get_glyph_infos(buffer.get(), &count);
    std::u32string characters;
    std::transform(infos, infos + count, std::back_inserter(characters),
                   // It is one line.
                   [](const hb_glyph_info_t& info) {
                       return info.codepoint < U' ' ? U' ' : char32_t{info.codepoint};
                   });
    return characters;
}

std::vector<FriBidiLevel> levelsOf(const std::u32string& text) {
    std::vector<FriBidiLevel> levels(text.size());
    std::vector<FriBidiCharType> types(text.size());
    std::vector<FriBidiBracketType> brackets(text.size());
    const auto size = static_cast<FriBidiStrIndex>(text.size());
    const std::vector<FriBidiChar> characters(text.begin(), text.end());
    fribidi_get_bidi_types(characters.data(), size, types.data());
    fribidi_get_bracket_types(characters.data(), size, types.data(), brackets.data());
    FriBidiParType direction = FRIBIDI_PAR_ON;
    if (fribidi_get_par_embedding_levels_ex(types.data(), brackets.data(), size, &direction,
                                            levels.data()) == 0) {
        std::fill(levels.begin(), levels.end(), FriBidiLevel{0});
    }
    return levels;
}

bool isOfAnyScript(hb_script_t script) {
    return script == HB_SCRIPT_COMMON || script == HB_SCRIPT_INHERITED;
}

std::vector<Run> runsOf(const std::u32string& text) {
    const std::vector<FriBidiLevel> levels = levelsOf(text);
    std::vector<Run> runs;
    hb_script_t script = HB_SCRIPT_COMMON;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const hb_script_t here = hb_unicode_script(hb_unicode_funcs_get_default(), text[i]);
        const bool isOther = !isOfAnyScript(here) && !isOfAnyScript(script) && here != script;
        if (i == 0 || isOther || levels[i] != runs.back().level) {
            runs.push_back({i, i, levels[i]});
            script = here;
        } else if (isOfAnyScript(script)) {
            script = here;
        }
        runs.back().end = i + 1;
    }
    return runs;
}

/// From left to right: runs of a level and all above it are turned round, from the highest down.
void reorder(std::vector<Run>& runs) {
    FriBidiLevel highest = 0;
    for (const Run& run : runs) {
        highest = std::max(highest, run.level);
    }
    for (FriBidiLevel level = highest; level > 0; --level) {
        const auto isBelow = [level](const Run& run) { return run.level < level; };
        for (auto begin = runs.begin(); begin != runs.end();) {
            begin = std::find_if_not(begin, runs.end(), isBelow);
            const auto end = std::find_if(begin, runs.end(), isBelow);
            std::reverse(begin, end);
            begin = end;
        }
    }
}

std::vector<hb_feature_t> featuresOf(const Request& request) {
    std::vector<hb_feature_t> features;
    for (const std::string& text : request.features) {
        if (hb_feature_from_string(text.data(), static_cast<int>(text.size()),
                                   &features.emplace_back()) == 0) {
            throw FontError(request.file + ": no feature is written as \"" + text + "\"");
        }
    }
    return features;
}

void append(ShapedLine& line, hb_buffer_t* buffer, const std::u32string& text) {
    unsigned count = 0;
    const hb_glyph_info_t* const infos = hb_buffer_get_glyph_infos(buffer, &count);
    const hb_glyph_position_t* const positions = hb_buffer_get_glyph_positions(buffer, &count);
    for (unsigned i = 0; i < count; ++i) {
        if (const char32_t c = text[infos[i].cluster];
            infos[i].codepoint == 0 && line.missing.find(c) == std::u32string::npos) {
            line.missing += c;
        }
        line.glyphs.push_back({infos[i].codepoint, line.advance + positions[i].x_offset,
                               FT_Pos{positions[i].y_offset}});
        line.advance += positions[i].x_advance;
    }
}

} // namespace

ShapedLine shape(const Face& face, const Request& request) {
    const std::vector<hb_feature_t> features = featuresOf(request);
    const std::u32string text = decode(request.text);
    const std::vector<std::uint32_t> characters(text.begin(), text.end());
    std::vector<Run> runs = runsOf(text);
    reorder(runs);
    ShapedLine line;
    const ShapingBuffer buffer(hb_buffer_create());
    for (const Run& run : runs) {
        hb_buffer_clear_contents(buffer.get());
        hb_buffer_add_utf32(buffer.get(), characters.data(), static_cast<int>(characters.size()),
                            static_cast<unsigned>(run.begin),
                            static_cast<int>(run.end - run.begin));
        hb_buffer_set_direction(buffer.get(),
                                run.level % 2 == 0 ? HB_DIRECTION_LTR : HB_DIRECTION_RTL);
        hb_buffer_guess_segment_properties(buffer.get());
        hb_shape(face.shaping(), buffer.get(), features.data(),
                 static_cast<unsigned>(features.size()));
        append(line, buffer.get(), text);
    }
    return line;
}

} // namespace preview
