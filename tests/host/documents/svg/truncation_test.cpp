// SPDX-License-Identifier: MIT
// A drawing with something of everything, cut at every length and damaged at every byte.
#include "drawings.h"
#include "host/documents/svg/faceeditor.h"

#include <gtest/gtest.h>

namespace host::test {
namespace {

const std::string sample =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE svg [<!ENTITY e "
    "\"<tspan>&#65;</tspan>\">"
    "]>\n<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\">"
    "<style><![CDATA[@font-face{font-family:E;src:url(data:x)} g > .a[x~='b'], #i{font:italic "
    "bold 12px/1 'M\\FC ller', serif !important;-inkscape-font-specification:'A, B'}]]></style>"
    "<defs><text id=\"t\">d&amp;</text></defs><g id=\"i\" font-family=\"A,&quot;B&quot;\">"
    "<text class=\"a\" style=\"font-weight:bolder;font-family:'C&#38;D'\">x &e; "
    "<tspan dy='1'>\xC3\xA4</tspan><!-- c --><tref xlink:href=\"#t\"/>&e;</text>"
    "<flowRoot><flowRegion><rect/></flowRegion><flowPara>f</flowPara></flowRoot></g></svg>";

/// Reads and, where that works, replaces every run and edits the source: must end in success or
/// DocumentError.
bool survives(const std::string& bytes) {
    try {
        Document document = readSvg(bytes, "sample.svg");
        Face face;
        face.family = "New";
        face.style = "Regular";
        for (RunId run = 0; run < document.runs().size(); ++run) {
            document.replaceFace(run, face);
        }
        static_cast<void>(svg::editFaces(bytes, document, {}, true));
        return true;
    } catch (const DocumentError&) {
        return false;
    }
}

TEST(ATruncatedDrawing, IsRefusedAtEveryLength) {
    for (std::size_t length = 0; length < sample.size(); ++length) {
        EXPECT_FALSE(survives(sample.substr(0, length))) << length;
    }
    EXPECT_NO_THROW(static_cast<void>(readSvg(sample, "sample.svg")));
}

TEST(ADamagedDrawing, IsReadOrRefused) {
    int read = 0;
    for (std::size_t place = 0; place < sample.size(); ++place) {
        for (const char c : {'\0', '<', '&', '\'', '}', '\xFF'}) {
            std::string damaged = sample;
            damaged[place] = c;
            read += survives(damaged) ? 1 : 0;
        }
    }
    EXPECT_GT(read, 0);
}

} // namespace
} // namespace host::test
