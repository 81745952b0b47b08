// SPDX-License-Identifier: MIT
// What is the face that is asked for, and what only comes near it. Run against the rule itself, and
// with real fonts through the manager's look-up and the host's catalogue, so that all three agree.
#pragma once

#include "faces/matching.h"
#include "tests/support/fontmaker.h"

#include <string>
#include <vector>

namespace facestest {

struct HeldFace {
    std::string family;
    std::string style;
    std::string postScriptName;
    faces::Style look = {};
    std::string legacyFamily = {}; ///< empty: `family` and `style` are all its names
    std::string legacyStyle = {};
    std::string fullName = {}; ///< empty: the typographic family and style
};

struct MatchingCase {
    const char* what;
    std::vector<HeldFace> held;
    faces::Wanted wanted;
    const char* exact; ///< PostScript names of what is exact; "": nothing
    const char* near;  ///< the reason of the first candidate; "": there is none
};

/// A font that has this face.
inline testsupport::FontRecipe recipeOf(const HeldFace& face) {
    testsupport::FontRecipe recipe;
    const bool legacy = !face.legacyFamily.empty();
    recipe.family = legacy ? face.legacyFamily : face.family;
    recipe.style = legacy ? face.legacyStyle : face.style;
    recipe.postScriptName = face.postScriptName;
    recipe.fullName = face.fullName.empty() ? face.family + " " + face.style : face.fullName;
    recipe.typographicFamily = legacy ? face.family : "";
    recipe.typographicStyle = legacy ? face.style : "";
    recipe.weight = static_cast<std::size_t>(face.look.weight);
    recipe.widthClass = static_cast<std::size_t>(face.look.width / 12.5) - 3;
    recipe.italic = face.look.slant != faces::Slant::Upright;
    return recipe;
}

inline const std::vector<MatchingCase>& matchingCases() {
    using faces::Slant;
    using faces::Style;
    static const std::vector<HeldFace> lato{
        {"Lato", "Regular", "Lato-Regular"},
        {"Lato", "Heavy", "Lato-Heavy", {800}, "Lato Heavy", "Regular"},
        {"Lato", "Black", "Lato-Black", {900}, "Lato Black", "Regular"},
        {"Lato",
         "Black Italic",
         "Lato-BlackItalic",
         {900, 100, Slant::Italic},
         "Lato Black",
         "Italic"},
    };
    static const std::vector<HeldFace> garamond{
        {"EB Garamond", "08 Regular", "EBGaramond08-Regular", {}, "EB Garamond", "Normal"},
        {"EB Garamond", "12 Regular", "EBGaramond12-Regular", {}, "EB Garamond 12", "Regular"},
        {"EB Garamond", "12 Bold", "EBGaramond12-Bold", {700}, "EB Garamond 12", "Bold"},
    };
    static const std::vector<MatchingCase> cases{
        {"by PostScript name, whatever else is told",
         lato,
         {"Lato-Black", "Other", "Regular"},
         "Lato-Black",
         ""},
        {"by PostScript name without the blanks that it should not have",
         {{"Blank", "Bold", "Blank Bold", {700}}},
         {"BlankBold", "", ""},
         "Blank Bold",
         ""},
        {"not by a PostScript name in other case",
         lato,
         {"lato-black", "", ""},
         "",
         "family Lato instead of lato"},
        {"by family and style, without case and blanks",
         lato,
         {"", "LATO", "BlackItalic"},
         "Lato-BlackItalic",
         ""},
        {"by a legacy family and its style",
         lato,
         {"Lato-Black-Italic", "Lato Black", "Italic"},
         "Lato-BlackItalic",
         ""},
        {"by the full name in the family's place",
         {{"Grand", "Black", "Grand-Black", {900}}},
         {"", "Grand Black", "Regular"},
         "Grand-Black",
         ""},
        {"by the PostScript name in the family's place",
         {{"Lato", "Heavy", "LatoHeavy", {800}}, {"Lato", "Black", "LatoBlack", {900}}},
         {"LatoBlack-Bold", "LatoBlack", "Bold"},
         "LatoBlack",
         ""},
        {"by a full name that is the family's, of its only face",
         {{"Puft", "Heavy", "P-Heavy", {900}, "", "", "Puft"}},
         {"Puft-Regular", "Puft", "Regular"},
         "P-Heavy",
         ""},
        {"by full name cut elsewhere",
         {{"Grand", "Black Italic", "Grand-BlackItalic", {900, 100, Slant::Italic}}},
         {"", "Grand Black", "Italic"},
         "Grand-BlackItalic",
         ""},

        {"Book for Regular",
         {{"Gothic", "Book", "Gothic-Book", {380}}, {"Gothic", "Bold", "Gothic-Bold", {700}}},
         {"Gothic-Regular", "Gothic", "Regular"},
         "Gothic-Book",
         ""},
        {"Demi Oblique for SemiBold Italic",
         {{"Gothic", "Demi Oblique", "Gothic-DemiO", {600, 100, Slant::Oblique}}},
         {"", "Gothic", "SemiBold Italic"},
         "Gothic-DemiO",
         ""},
        {"words that agree with the numbers",
         {{"Gothic", "Roman", "G-Roman"}, {"Gothic", "Bold", "G-Bold"}},
         {"", "Gothic", "Regular"},
         "G-Roman",
         ""},
        {"the regular face when no style is told", lato, {"", "Lato", ""}, "Lato-Regular", ""},
        {"the medium one of a family without",
         {{"Gothic", "Medium", "G-Medium", {500}}, {"Gothic", "Bold", "G-Bold", {700}}},
         {"", "Gothic", ""},
         "G-Medium",
         ""},
        {"words where the numbers are normal for want of better ones",
         {{"Roman", "Roman", "R-Roman", {500}}, {"Roman", "Black", "R-Black", {400}}},
         {"", "Roman", "Heavy"},
         "R-Black",
         ""},
        {"the design's text size",
         garamond,
         {"EBGaramond-Regular", "EB Garamond", "Regular"},
         "EBGaramond12-Regular",
         ""},
        {"the only weight of a design's sizes",
         garamond,
         {"EBGaramond-Bold", "EB Garamond", "Bold"},
         "EBGaramond12-Bold",
         ""},
        {"a word that says nothing of the face",
         {{"Linux Libertine Mono O", "Mono", "LinLibertineMO"}},
         {"LinuxLibertineMonoO-Regular", "Linux Libertine Mono O", "Regular"},
         "LinLibertineMO",
         ""},
        {"a word that says another weight than the numbers",
         {{"osifont", "Medium", "osifont"}},
         {"osifont-Regular", "osifont", "Regular"},
         "osifont",
         ""},
        {"words that correct the numbers, under each name",
         {{"Gothic", "Light Cond", "G-LtCn", {400, 75}, "Gothic Lt Cd", "Light"}},
         {"", "Gothic Lt Cd", "Condensed Light"},
         "G-LtCn",
         ""},
        {"a width that the family's name says",
         {{"Liberation Sans Narrow", "Regular", "LiberationSansNarrow"}},
         {"", "Liberation Sans Narrow", "Condensed"},
         "LiberationSansNarrow",
         ""},
        {"a style relative to the family's name",
         {{"DejaVu Sans",
           "Condensed Oblique",
           "DejaVuSansCondensed-Oblique",
           {400, 87.5, Slant::Oblique},
           "DejaVu Sans Condensed",
           "Oblique"}},
         {"", "DejaVu Sans Condensed", "Italic"},
         "DejaVuSansCondensed-Oblique",
         ""},

        {"not for a word that the family has for another face",
         lato,
         {"Lato-HeavyItalic", "Lato", "Heavy Italic"},
         "",
         "same family, Black Italic instead of Heavy Italic"},
        {"not of two",
         {{"Gothic", "Book", "Gothic-Book"}, {"Gothic", "Roman", "Gothic-Roman"}},
         {"Gothic-Regular", "Gothic", "Regular"},
         "",
         "same family, Book instead of Regular"},
        {"not of another weight",
         lato,
         {"Lato-SemiBold", "Lato", "ExtraLight"},
         "",
         "same family, Regular instead of ExtraLight"},
        {"not for a family that has the medium weight alone",
         {{"Gothic", "Medium", "G-Medium", {500}}},
         {"", "Gothic", "Regular"},
         "",
         "same family, Medium instead of Regular"},
        {"not by a full name that is the family's, of one of its faces",
         {{"Puft", "Heavy", "P-Heavy", {900}, "", "", "Puft"}, {"Puft", "Thin", "P-Thin", {100}}},
         {"Puft-Regular", "Puft", "Regular"},
         "",
         "same family, Thin instead of Regular"},
        {"not by numbers that say otherwise than the word",
         {{"Lato", "Heavy", "Lato-Heavy", {800}}},
         {"Lato-Black", "Lato", "Black"},
         "",
         "same family, Heavy instead of Black"},
        {"not with words that nobody knows",
         lato,
         {"Lato-Swash", "Lato", "Black Swash"},
         "",
         "same family, Black instead of Black Swash"},
        {"not upright for italic",
         {{"Gothic", "Bold", "Gothic-Bold", {700}}},
         {"", "Gothic", "Bold Italic"},
         "",
         "same family, Bold instead of Bold Italic"},
        {"slant before weight",
         {{"Gothic", "Bold", "Gothic-Bold", {700}},
          {"Gothic", "Italic", "Gothic-Italic", {400, 100, Slant::Italic}}},
         {"", "Gothic", "Bold Italic"},
         "",
         "same family, Italic instead of Bold Italic"},
        {"not for the family that a PostScript name begins with",
         {{"Two Words", "Bold", "TwoWordsB", {700}}},
         {"TwoWords-Black", "", ""},
         "",
         "same family, Bold instead of Black"},
        {"nor for one by a like name",
         {{"Minion", "Bold", "Minion-Bold", {700}}},
         {"MinionPro-Bold", "Minion Pro", "Bold"},
         "",
         "family Minion instead of Minion Pro"},
        {"nor for one with a hyphen",
         {{"Foo-Bar", "Bold", "FB-Bold", {700}}},
         {"", "Foo Bar", "Medium"},
         "",
         "family Foo-Bar instead of Foo Bar, Bold instead of Medium"},
        {"not for another family", lato, {"Other-Regular", "Other", "Regular"}, "", ""},
    };
    return cases;
}

} // namespace facestest
