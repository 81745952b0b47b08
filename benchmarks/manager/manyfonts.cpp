// SPDX-License-Identifier: MIT
// Families one after the other, until there are enough files.
#include "benchmarks/manager/manyfonts.h"

#include "tests/support/fontmaker.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string_view>

namespace benchmarks {

namespace {

using testsupport::FontRecipe;

struct StyleOfFamily {
    const char* name;
    unsigned weight;
};

constexpr std::array styles{
    StyleOfFamily{"Regular", 400},
    StyleOfFamily{"Bold", 700},
    StyleOfFamily{"Italic", 400},
    StyleOfFamily{"Bold Italic", 700},
    StyleOfFamily{"Light", 300},
    StyleOfFamily{"Light Italic", 300},
    StyleOfFamily{"Medium", 500},
    StyleOfFamily{"Medium Italic", 500},
    StyleOfFamily{"Black", 900},
    StyleOfFamily{"Black Italic", 900},
    StyleOfFamily{"Thin", 100},
    StyleOfFamily{"Thin Italic", 100},
    StyleOfFamily{"Condensed", 400},
    StyleOfFamily{"Condensed Bold", 700},
    StyleOfFamily{"Condensed Italic", 400},
    StyleOfFamily{"Condensed Black", 900},
};

constexpr std::array syllables{"ba",  "cor", "del", "fen", "gro", "hal", "jen", "kis", "lo",  "mar",
                               "nor", "pel", "quo", "ra",  "sil", "ta",  "ul",  "ver", "win", "zo"};
constexpr std::array kinds{"Sans", "Serif", "Slab", "Mono", "Text", "Display", "Script"};

constexpr std::size_t familiesInFoundry = 40;

std::string capitalised(std::string word) {
    word.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(word.front())));
    return word;
}

std::string without(std::string text, char unwanted) {
    std::erase(text, unwanted);
    return text;
}

// The weight class of a font's OS/2 table, in place.
void setWeight(std::string& font, unsigned weight) {
    const std::size_t entry = font.find("OS/2");
    std::size_t offset = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        offset = offset << 8U | static_cast<unsigned char>(font.at(entry + 8 + i));
    }
    font.at(offset + 4) = static_cast<char>(weight >> 8U);
    font.at(offset + 5) = static_cast<char>(weight);
}

class Maker {
public:
    Maker(const std::string& folder, std::size_t files, std::uint32_t seed)
        : folder_(folder), wanted_(files), random_(seed) {}

    ManyFonts run() {
        for (std::size_t family = 0; made_.files < wanted_; ++family) {
            makeFamily(family);
        }
        return std::move(made_);
    }

private:
    // From 0 to below `end`. The distributions of the standard library differ between systems.
    std::size_t dice(std::size_t end) { return random_() % end; }

    std::string word() {
        std::string text;
        for (std::size_t left = 2 + dice(2); left > 0; --left) {
            text += syllables.at(dice(syllables.size()));
        }
        return capitalised(text);
    }

    void makeFamily(std::size_t number) {
        if (number % familiesInFoundry == 0) {
            foundry_ = folder_ + "/" + word() + std::to_string(number / familiesInFoundry);
        }
        const std::string family =
            word() + " " + kinds.at(dice(kinds.size())) + " " + std::to_string(number);
        const std::string folder = foundry_ + "/" + without(family, ' ');
        std::filesystem::create_directories(folder);
        const std::size_t kind = dice(100);
        if (kind == 0) {
            makeCollection(folder, family);
        } else if (kind == 1) {
            makeVariable(folder, family);
        } else {
            makeStyles(folder, family, kind < 20 ? 1 : 4 + dice(styles.size() - 3));
        }
    }

    static FontRecipe recipeOf(const std::string& family, const StyleOfFamily& style) {
        FontRecipe recipe;
        const std::string name = without(family, ' ') + "-" + without(style.name, ' ');
        const bool fourStyles = &style < &styles.at(4);
        recipe.family = fourStyles ? family : family + " " + style.name;
        recipe.style = fourStyles ? style.name : "Regular";
        recipe.postScriptName = name;
        if (!fourStyles) {
            recipe.typographicFamily = family;
            recipe.typographicStyle = style.name;
        }
        return recipe;
    }

    void makeStyles(const std::string& folder, const std::string& family, std::size_t count) {
        const bool layout = dice(2) == 0;
        for (std::size_t i = 0; i < count; ++i) {
            const StyleOfFamily& style = styles.at(i);
            FontRecipe recipe = recipeOf(family, style);
            recipe.layout = layout;
            std::string font = testsupport::makeFont(recipe);
            setWeight(font, style.weight);
            write(folder + "/" + recipe.postScriptName + ".ttf", font, recipe.postScriptName);
        }
    }

    void makeCollection(const std::string& folder, const std::string& family) {
        std::vector<FontRecipe> recipes;
        for (std::size_t i = 0; i < 4; ++i) {
            recipes.push_back(recipeOf(family, styles.at(i)));
        }
        write(folder + "/" + without(family, ' ') + ".ttc", testsupport::makeCollection(recipes),
              recipes.front().postScriptName);
    }

    void makeVariable(const std::string& folder, const std::string& family) {
        FontRecipe recipe = recipeOf(family, styles.front());
        recipe.instances = {"Medium", "Bold", "Black"};
        write(folder + "/" + without(family, ' ') + "-VF.ttf", testsupport::makeFont(recipe),
              recipe.postScriptName);
    }

    // One file in two hundred is bad: empty, cut short, or something else altogether.
    void write(const std::string& path, std::string bytes, const std::string& name) {
        if (made_.files == wanted_) {
            return;
        }
        if (dice(200) == 0) {
            const std::size_t fault = dice(3);
            bytes = fault == 0 ? "" : fault == 1 ? bytes.substr(0, bytes.size() / 2) : "<html>";
            ++made_.bad;
        } else {
            made_.postScriptNames.push_back(name);
        }
        std::ofstream file(path, std::ios::binary);
        file << bytes;
        file.close();
        if (!file) {
            throw std::runtime_error(path + ": cannot be written");
        }
        ++made_.files;
    }

    std::string folder_;
    std::size_t wanted_;
    std::mt19937 random_;
    std::string foundry_;
    ManyFonts made_;
};

} // namespace

ManyFonts makeManyFonts(const std::string& folder, std::size_t files, std::uint32_t seed) {
    return Maker(folder, files, seed).run();
}

} // namespace benchmarks
