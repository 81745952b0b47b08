// SPDX-License-Identifier: MIT
// Tables of the two platforms' numbers.
#include "faces/namelanguage.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace faces {

namespace {

// By the lower ten bits of Microsoft's numbers, from 1; those above tell the region.
constexpr std::array<std::string_view, 145> microsoftLanguages = {
    "ar", "bg",  "ca",  "zh",  "cs",  "da",  "de",  "el",  "en",  "es",  "fi",  "fr",  "he", "hu",
    "is", "it",  "ja",  "ko",  "nl",  "nb",  "pl",  "pt",  "rm",  "ro",  "ru",  "hr",  "sk", "sq",
    "sv", "th",  "tr",  "ur",  "id",  "uk",  "be",  "sl",  "et",  "lv",  "lt",  "tg",  "fa", "vi",
    "hy", "az",  "eu",  "hsb", "mk",  "st",  "ts",  "tn",  "ve",  "xh",  "zu",  "af",  "ka", "fo",
    "hi", "mt",  "se",  "ga",  "yi",  "ms",  "kk",  "ky",  "sw",  "tk",  "uz",  "tt",  "bn", "pa",
    "gu", "or",  "ta",  "te",  "kn",  "ml",  "as",  "mr",  "sa",  "mn",  "bo",  "cy",  "km", "lo",
    "my", "gl",  "kok", "mni", "sd",  "syr", "si",  "chr", "iu",  "am",  "tzm", "ks",  "ne", "fy",
    "ps", "fil", "dv",  "bin", "ff",  "ha",  "ibb", "yo",  "quz", "nso", "ba",  "lb",  "kl", "ig",
    "kr", "om",  "ti",  "gn",  "haw", "la",  "so",  "ii",  "pap", "arn", "",    "moh", "",   "br",
    "",   "ug",  "mi",  "oc",  "co",  "gsw", "sah", "quc", "rw",  "wo",  "",    "",    "",   "prs",
    "",   "",    "",    "",    "gd",
};

// Regions that are languages of their own.
constexpr std::array<std::pair<unsigned, std::string_view>, 11> microsoftRegions = {{
    {0x0404, "zh-tw"},
    {0x0804, "zh-cn"},
    {0x0C04, "zh-hk"},
    {0x1004, "zh-sg"},
    {0x1404, "zh-mo"},
    {0x0814, "nn"},
    {0x081A, "sr"},
    {0x0C1A, "sr"},
    {0x241A, "sr"},
    {0x281A, "sr"},
    {0x141A, "bs"},
}};

constexpr std::array<std::string_view, 95> macintoshLanguages = {
    "en", "fr", "de", "it", "nl", "sv",    "es", "da", "pt", "nb", "he", "ja", "ar", "fi",
    "el", "is", "mt", "tr", "hr", "zh-tw", "ur", "hi", "th", "ko", "lt", "pl", "hu", "et",
    "lv", "se", "fo", "fa", "ru", "zh-cn", "nl", "ga", "sq", "ro", "cs", "sk", "sl", "yi",
    "sr", "mk", "bg", "uk", "be", "uz",    "kk", "az", "az", "hy", "ka", "ro", "ky", "tg",
    "tk", "mn", "mn", "ps", "ku", "ks",    "sd", "bo", "ne", "sa", "mr", "bn", "as", "gu",
    "pa", "or", "ml", "kn", "ta", "te",    "si", "my", "km", "lo", "vi", "id", "tl", "ms",
    "ms", "am", "ti", "om", "so", "sw",    "rw", "rn", "ny", "mg", "eo",
};
constexpr unsigned laterMacintosh = 128; ///< the number of the first of those that follow
constexpr std::array<std::string_view, 23> laterMacintoshLanguages = {
    "cy", "eu", "ca", "la", "qu", "gn", "ay", "tt", "ug", "dz", "jv", "su",
    "gl", "af", "br", "iu", "gd", "gv", "ga", "to", "el", "kl", "az",
};

struct Encoding {
    Platform platform;
    unsigned number;
    const char* name;
};
constexpr std::array encodings = {
    Encoding{Platform::Microsoft, 0, "UTF-16BE"}, // signs
    Encoding{Platform::Microsoft, 1, "UTF-16BE"},
    Encoding{Platform::Microsoft, 10, "UTF-16BE"},
    Encoding{Platform::Microsoft, 2, "CP932"},
    Encoding{Platform::Microsoft, 3, "GB18030"},
    Encoding{Platform::Microsoft, 4, "BIG5-HKSCS"},
    Encoding{Platform::Microsoft, 5, "CP949"},
    Encoding{Platform::Microsoft, 6, "JOHAB"},
    Encoding{Platform::Macintosh, 1, "CP932"},
    Encoding{Platform::Macintosh, 2, "BIG5-HKSCS"},
    Encoding{Platform::Macintosh, 3, "CP949"},
    Encoding{Platform::Macintosh, 7, "MAC-CYRILLIC"},
    Encoding{Platform::Macintosh, 25, "GB18030"},
    Encoding{Platform::Macintosh, 29, "MAC-CENTRALEUROPE"},
    Encoding{Platform::Iso, 0, "ASCII"},
    Encoding{Platform::Iso, 1, "UTF-16BE"},
    Encoding{Platform::Iso, 2, "ISO-8859-1"},
};

template <std::size_t Count>
std::string_view at(const std::array<std::string_view, Count>& words, unsigned place) {
    return place < Count ? words[place] : std::string_view();
}

} // namespace

std::string_view languageTag(Platform platform, unsigned number) {
    if (platform == Platform::Macintosh) {
        return number < laterMacintosh ? at(macintoshLanguages, number)
                                       : at(laterMacintoshLanguages, number - laterMacintosh);
    }
    if (platform != Platform::Microsoft) {
        return {};
    }
    const auto region = std::find_if(microsoftRegions.begin(), microsoftRegions.end(),
                                     [&](const auto& one) { return one.first == number; });
    return region != microsoftRegions.end() ? region->second
                                            : at(microsoftLanguages, (number & 0x3FFU) - 1);
}

const char* encodingName(Platform platform, unsigned number) {
    if (platform == Platform::Unicode) {
        return "UTF-16BE";
    }
    const auto found = std::find_if(encodings.begin(), encodings.end(), [&](const Encoding& one) {
        return one.platform == platform && one.number == number;
    });
    return found == encodings.end() ? nullptr : found->name;
}

} // namespace faces
