// SPDX-License-Identifier: MIT
// Layers, and the art trees that plug-ins walk.
#include "drawings.h"

#include <gtest/gtest.h>

#include <ostream>

namespace host::test {
namespace {

/// "(" children ")" of a group, the first run's text of a frame, "*" for other art.
std::string outline(const Document& document, ArtId id) {
    const Art& art = document.art(id);
    if (art.kind != ArtKind::Group) {
        return art.kind == ArtKind::Other ? "*"
                                          : std::string(document.text(document.runsOf(id)[0]));
    }
    std::string result = "(";
    for (ArtId child = art.firstChild; child != noArt; child = document.art(child).nextSibling) {
        EXPECT_EQ(document.art(child).parent, id);
        result += outline(document, child);
    }
    return result + ")";
}

std::string outline(const Document& document) {
    std::string result;
    for (const Layer& layer : document.layers()) {
        EXPECT_EQ(document.art(layer.topGroup).parent, noArt);
        EXPECT_EQ(document.art(layer.topGroup).nextSibling, noArt);
        result += layer.name + outline(document, layer.topGroup);
    }
    return result;
}

struct Case {
    const char* about;
    const char* body;
    const char* flat;
    const char* kept;
};
void PrintTo(const Case& test, std::ostream* stream) {
    *stream << test.about;
}

const Case cases[] = {
    {"Nothing", "", "()", "()"},
    {"DeclaredLayers",
     "<g ink:groupmode='layer' ink:label='L1' id='x'><g><text>a</text><path/></g><text>b</text>"
     "</g><g ink:groupmode='layer' id='L2'><rect/></g>",
     "L1(ab)L2()", "L1((a*)b)L2(*)"},
    {"NestedLayersAreLayersOfTheirOwn",
     "<g ink:groupmode='layer' id='L1'><text>a</text><g ink:groupmode='layer' id='L2'><text>b"
     "</text></g><text>c</text></g>",
     "L1(ac)L2(b)", "L1(ac)L2(b)"},
    {"OtherGroupsAreNoLayersThen",
     "<g id='G'><text>a</text></g><g ink:groupmode='layer' id='L'><text>b</text></g>", "L(b)(a)",
     "L(b)(a)"},
    {"TopLevelGroupsElse",
     "<g id='A'><a><text>a</text></a></g><text>b</text><g id='B'><g><g><text>c</text></g></g></g>",
     "A(a)B(c)(b)", "A((a))B(((c)))(b)"},
    {"WrappersAreLookedThrough",
     "<switch><foreignObject/><g xmlns:i='urn:some-program' i:extraneous='self'><g id='A' "
     "i:layer='yes'><text>a</text></g></g></switch>",
     "A(a)", "A(a)"},
    {"ASwitchAroundPlainGroups", "<switch><g id='A'><text>a</text></g></switch>", "A(a)", "A(a)"},
    {"GroupModeOfAnotherKind",
     "<g ink:groupmode='other' id='A'><text>a</text></g><g groupmode='layer' id='B'/>", "A(a)B()",
     "A(a)B()"},
    {"SymbolsAreNoArtButTheirText",
     "<g id='A'><defs><g><rect/><text>a</text></g></defs><use href='#x'/></g>", "A(a)", "A(a*)"},
};

class ALayer : public testing::TestWithParam<Case> {};

TEST_P(ALayer, HoldsItsTexts) {
    EXPECT_EQ(outline(read(GetParam().body)), GetParam().flat);
    SvgOptions options;
    options.keepGroups = true;
    EXPECT_EQ(outline(read(GetParam().body, options)), GetParam().kept);
}

INSTANTIATE_TEST_SUITE_P(Trees, ALayer, testing::ValuesIn(cases), nameOfCase);

} // namespace
} // namespace host::test
