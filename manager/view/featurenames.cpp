// SPDX-License-Identifier: MIT
#include "manager/view/featurenames.h"

#include "manager/view/texts.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <map>
#include <string_view>

namespace manager {

namespace {

/// Left for the catalogue to find; translated when it is shown.
constexpr const char* marked(const char* text) {
    return text;
}

const std::map<std::string_view, const char*>& featureNames() {
    static const std::map<std::string_view, const char*> names{
        {"afrc", marked("Stacked fractions")},
        {"c2pc", marked("Capitals as petite capitals")},
        {"c2sc", marked("Capitals as small capitals")},
        {"calt", marked("Contextual alternates")},
        {"case", marked("Case-sensitive forms")},
        {"clig", marked("Contextual ligatures")},
        {"cpsp", marked("Capital spacing")},
        {"cswh", marked("Contextual swashes")},
        {"dlig", marked("Discretionary ligatures")},
        {"dnom", marked("Denominators")},
        {"frac", marked("Fractions")},
        {"hist", marked("Historical forms")},
        {"hlig", marked("Historical ligatures")},
        {"kern", marked("Kerning")},
        {"liga", marked("Ligatures")},
        {"lnum", marked("Lining figures")},
        {"numr", marked("Numerators")},
        {"onum", marked("Old-style figures")},
        {"ordn", marked("Ordinals")},
        {"ornm", marked("Ornaments")},
        {"pcap", marked("Petite capitals")},
        {"pnum", marked("Proportional figures")},
        {"salt", marked("Stylistic alternates")},
        {"sinf", marked("Scientific inferiors")},
        {"smcp", marked("Small capitals")},
        {"subs", marked("Subscript")},
        {"sups", marked("Superscript")},
        {"swsh", marked("Swashes")},
        {"titl", marked("Titling")},
        {"tnum", marked("Tabular figures")},
        {"unic", marked("Unicase")},
        {"zero", marked("Slashed zero")},
    };
    return names;
}

const std::map<std::string_view, const char*>& axisNames() {
    static const std::map<std::string_view, const char*> names{
        {"ital", marked("Italic")}, {"opsz", marked("Optical size")}, {"slnt", marked("Slant")},
        {"wdth", marked("Width")},  {"wght", marked("Weight")},
    };
    return names;
}

std::string withTag(const std::string& name, const std::string& tag) {
    return name.empty() ? tag : name + " (" + tag + ")";
}

/// The number of "ss07" or "cv12"; empty: it is no such tag.
std::string numberOf(const std::string& tag, std::string_view kind) {
    const bool numbered = tag.size() == 4 && tag.starts_with(kind) &&
                          std::all_of(tag.begin() + 2, tag.end(),
                                      [](unsigned char c) { return std::isdigit(c) != 0; });
    return numbered ? std::to_string(std::stoi(tag.substr(2))) : "";
}

} // namespace

std::string featureName(const std::string& tag) {
    if (const auto found = featureNames().find(tag); found != featureNames().end()) {
        return withTag(translated(found->second), tag);
    }
    if (const std::string number = numberOf(tag, "ss"); !number.empty()) {
        return withTag(translated("Stylistic set") + " " + number, tag);
    }
    if (const std::string number = numberOf(tag, "cv"); !number.empty()) {
        return withTag(translated("Character variant") + " " + number, tag);
    }
    return tag;
}

std::string axisName(const std::string& tag, const std::string& own) {
    const auto found = axisNames().find(tag);
    return withTag(found == axisNames().end() ? own : translated(found->second), tag);
}

bool isOnByItself(const std::string& tag) {
    return tag == "calt" || tag == "clig" || tag == "kern" || tag == "liga";
}

bool isChoice(const std::string& tag) {
    // Those of the other scripts, of vertical text and of formulas, and the list of all alternates.
    static constexpr std::array<std::string_view, 54> needed{
        "aalt", "abvf", "abvm", "abvs", "akhn", "blwf", "blwm", "blws", "ccmp", "cfar", "cjct",
        "curs", "dist", "dtls", "falt", "fin2", "fin3", "fina", "flac", "half", "haln", "init",
        "isol", "lfbd", "ljmo", "locl", "mark", "med2", "medi", "mkmk", "nukt", "opbd", "pref",
        "pres", "pstf", "psts", "rclt", "rkrf", "rlig", "rphf", "rtbd", "rvrn", "size", "ssty",
        "stch", "tjmo", "valt", "vatu", "vert", "vhal", "vjmo", "vkrn", "vpal", "vrt2"};
    return std::find(needed.begin(), needed.end(), tag) == needed.end();
}

} // namespace manager
