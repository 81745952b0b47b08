// SPDX-License-Identifier: MIT
// What pictures show: told by comparing them with each other, so that no version of a library
// matters.
#include "preview/drawing/draw.h"
#include "tests/support/fontmaker.h"
#include "tests/support/temporaryfolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string_view>

using namespace preview;
using testing::StartsWith;
using namespace std::string_literals;
using namespace std::string_view_literals;

namespace {

constexpr const char* dejaVu = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";

class ALine : public testing::Test {
protected:
    std::string write(const std::string& bytes) const { return folder_.write("font", bytes); }
    Answer draw(const Request& request) { return drawer_.draw(request); }
    Picture picture(const Request& request) {
        const Answer answer = draw(request);
        EXPECT_EQ(answer.problem, "");
        EXPECT_EQ(answer.missing, U"");
        return answer.picture;
    }
    Picture dejaVuPicture(const std::string& text) {
        return picture({.file = dejaVu, .text = text});
    }

private:
    testsupport::TemporaryFolder folder_;
    Drawer drawer_;
};

std::size_t inkOf(const Picture& picture) {
    return static_cast<std::size_t>(
        std::ranges::count_if(picture.pixels, [](char c) { return c != '\0'; }));
}

TEST_F(ALine, IsOfTheFirstTextThatTheFaceHasOrOfItsOwnCharacters) {
    const std::string lacked = "a\u6f22b";
    const struct {
        std::string text;
        std::vector<std::string> others;
        bool orOwn;
        std::string drawn;
    } cases[] = {
        {"ab", {"cd"}, true, "ab"},
        {lacked, {}, false, lacked},
        {lacked, {lacked}, false, lacked},
        {lacked, {"\u5b57", "Hamburg", "x"}, true, "Hamburg"},
        {lacked, {"\u5b57"}, true, "ABCDEFGHIJKL"},
    };
    for (const auto& [text, others, orOwn, drawn] : cases) {
        const Answer answer =
            draw({.file = dejaVu, .text = text, .others = others, .orOwn = orOwn});
        EXPECT_EQ(answer.drawn, drawn);
        EXPECT_EQ(answer.missing, text == lacked ? U"\u6f22" : U"");
        if (drawn != lacked) {
            EXPECT_EQ(answer.picture.pixels, dejaVuPicture(drawn).pixels);
        }
    }
}

TEST_F(ALine, HasInkAndGrowsWithItsSizeAndScale) {
    const Picture small = dejaVuPicture("Hamburg");
    const Picture large = picture({.file = dejaVu, .text = "Hamburg", .pixels = 48});
    const Picture scaled = picture({.file = dejaVu, .text = "Hamburg", .scale = 2});
    EXPECT_EQ(small.form, PixelForm::Grey);
    EXPECT_GT(inkOf(small), 0U);
    EXPECT_NEAR(large.width, 2 * small.width, 2);
    EXPECT_NEAR(large.baseline, 2 * small.baseline, 2);
    EXPECT_GT(inkOf(large), 2 * inkOf(small));
    EXPECT_EQ(large.pixels, scaled.pixels);
    // Letters without descenders stand on the baseline.
    const Picture standing = dejaVuPicture("HHH");
    const auto below =
        standing.pixels.substr(static_cast<std::size_t>(standing.baseline) * standing.width);
    EXPECT_EQ(below.find_first_not_of('\0'), std::string::npos);
    EXPECT_GT(inkOf(standing), 0U);
}

TEST_F(ALine, OfNothingOrSpacesHasTheFacesHeight) {
    EXPECT_EQ(dejaVuPicture("").height, dejaVuPicture("x").height);
    EXPECT_EQ(inkOf(dejaVuPicture("  \n")), 0U);
}

TEST_F(ALine, IsShapedInTheDirectionOfEachPart) {
    // Left: as it is stored. Right: in the order that is seen, which an override keeps.
    const std::vector<std::pair<std::string, std::string>> same = {
        {"\u05D0\u05D1\u05D2", "\u202D\u05D2\u05D1\u05D0"},
        {"ab \u05D0\u05D1 cd", "ab \u202D\u05D1\u05D0\u202C cd"},
        {"\u05D0\u05D1 12 \u05D2", "\u202D\u05D2 12 \u05D1\u05D0"},
        {"e\u0301", "\u00E9"},
        {"a\tb", "a b"},
    };
    for (const auto& [stored, seen] : same) {
        EXPECT_EQ(dejaVuPicture(stored).pixels, dejaVuPicture(seen).pixels) << stored;
    }
    // Arabic letters join, which makes them narrower than each by itself.
    const std::uint32_t apart = dejaVuPicture("\u0633").width + dejaVuPicture("\u0645").width;
    EXPECT_LT(dejaVuPicture("\u0633\u0645").width + 2, apart);
}

TEST_F(ALine, TakesFeatures) {
    const auto width = [&](const std::string& feature) {
        return picture({.file = dejaVu, .features = {feature}, .text = "AVAVAVAV"}).width;
    };
    EXPECT_LT(width("kern"), width("kern=0"));
    EXPECT_EQ(draw({.file = dejaVu, .features = {"=x"}, .text = "A"}).problem,
              std::string(dejaVu) + ": no feature is written as \"=x\"");
}

TEST_F(ALine, TellsEachCharacterThatTheFaceLacksOnce) {
    EXPECT_EQ(draw({.file = dejaVu, .text = "a\u6F22b\u6F22\u5B57\u200D"}).missing,
              U"\u6F22\u5B57");
}

TEST_F(ALine, IsOfTheFaceAndTheInstanceAndThePlacesThatWereAskedFor) {
    const std::string variable = write(testsupport::makeCollection(
        {{.family = "Plain"}, {.family = "Variable", .instances = {"Medium", "Demi"}}}));
    const auto width = [&](std::uint32_t face, std::vector<AxisValue> axes = {}) {
        return picture({.file = variable, .face = face, .axes = std::move(axes), .text = "HHHHH"})
            .width;
    };
    const std::uint32_t plain = width(0);
    EXPECT_EQ(width(1), plain);
    // Five letters of 24 pixels, each wider by 0.2 em a step of 100.
    EXPECT_NEAR(width(1 | 1U << 16U), plain + 24, 1);
    EXPECT_NEAR(width(1 | 2U << 16U), plain + 48, 1);
    EXPECT_NEAR(width(1, {{"wght", 700}, {"none", 1}}), plain + 72, 1);
    EXPECT_NEAR(width(1, {{"wght", 30000}}), plain + 120, 1);
    EXPECT_EQ(width(1), plain) << "the places were those of the line before";
    EXPECT_THAT(draw({.file = variable, .face = 2}).problem, StartsWith(variable + ": "));
}

TEST_F(ALine, IsInColourWhereTheFaceIsAndOfTheSizeThatWasAskedFor) {
    // 16 by 16 pixels of one colour.
    constexpr std::string_view orange =
        "\x89\x50\x4e\x47\x0d\x0a\x1a\x0a\x00\x00\x00\x0d\x49\x48\x44\x52\x00\x00\x00\x10"
        "\x00\x00\x00\x10\x08\x06\x00\x00\x00\x1f\xf3\xff\x61\x00\x00\x00\x19\x49\x44\x41"
        "\x54\x78\xda\x63\xf8\xdf\xc0\xf0\x9f\x12\xcc\x30\x6a\xc0\xa8\x01\xa3\x06\x0c\x17"
        "\x03\x00\x80\x00\x7e\x1f\xe1\xca\xab\xd5\x00\x00\x00\x00\x49\x45\x4e\x44\xae\x42"
        "\x60\x82"sv;
    const std::string font = write(testsupport::makeFont({.png = std::string(orange)}));
    for (const std::uint32_t pixels : {8U, 16U, 40U}) {
        const Picture drawn = picture({.file = font, .text = "A", .pixels = pixels});
        EXPECT_EQ(drawn.form, PixelForm::Colour);
        EXPECT_EQ(drawn.width, pixels);
        EXPECT_EQ(drawn.height, pixels);
        EXPECT_EQ(drawn.pixels.size(), std::size_t{drawn.width} * drawn.height * 4);
        EXPECT_EQ(drawn.pixels.substr(drawn.pixels.size() / 2, 4), "\xFF\x80\0\xFF"s);
    }
}

TEST_F(ALine, OfABrokenFontIsAPictureOrAProblemThatNamesTheFile) {
    const std::string whole = testsupport::makeFont({.instances = {"Medium"}});
    for (std::size_t i = 0; i < whole.size(); i += 61) {
        std::string flipped = whole;
        flipped[i] = static_cast<char>(~flipped[i]);
        for (const std::string& bytes : {whole.substr(0, i), flipped}) {
            const std::string font = write(bytes);
            const Answer answer = draw({.file = font, .face = 1U << 16U, .text = "Hamburg"});
            if (!answer.problem.empty()) {
                EXPECT_THAT(answer.problem, StartsWith(font + ": "));
            }
        }
    }
    for (const std::string path : {"/nowhere", "/dev/zero", "/tmp"}) {
        EXPECT_THAT(draw({.file = path}).problem, StartsWith(path + ": "));
    }
}

} // namespace
