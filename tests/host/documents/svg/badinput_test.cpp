// SPDX-License-Identifier: MIT
// Files that are no drawings: each is refused with one line that names file and place. And a
// drawing with something of everything, cut at every length and damaged at every byte.
#include "drawings.h"
#include "host/documents/svg/faceeditor.h"
#include "tests/support/repeated.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <zlib.h>

namespace host::test {
namespace {

using testing::ContainsRegex;
using testing::Not;

std::string gzip(std::string_view text) {
    std::string bytes(compressBound(static_cast<uLong>(text.size())) + 32, '\0');
    z_stream stream{};
    deflateInit2(&stream, 1, Z_DEFLATED, 31, 8, Z_DEFAULT_STRATEGY);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(bytes.data());
    stream.avail_out = static_cast<uInt>(bytes.size());
    deflate(&stream, Z_FINISH);
    bytes.resize(stream.total_out);
    deflateEnd(&stream);
    return bytes;
}

/// The message of the error, or what was read instead.
std::string refusal(std::string bytes, const SvgOptions& options = {}) {
    try {
        return "read: " + visibleRuns(readSvg(std::move(bytes), "bad.svg", options));
    } catch (const DocumentError& error) {
        return error.what();
    }
}

TEST(ABadDrawing, IsRefusedWithFileAndPlace) {
    struct Case {
        std::string bytes;
        const char* message;
    };
    const Case cases[] = {
        {"", "^bad.svg:1:1: the file is empty$"},
        {" \n x", "^bad.svg:2:2: not XML$"},
        {"\x89PNG\r\n\x1A\n", "^bad.svg:1:1: not XML but a PNG picture$"},
        {std::string("II*\0", 4), "not XML but a TIFF picture$"},
        {std::string(100, '\0'), "^bad.svg:1:1: not XML$"},
        {"<html/>", "^bad.svg:1:[0-9]+: not an SVG drawing: its root element is 'html'"},
        {"<svg xmlns='urn:x'/>", "^bad.svg:1:[0-9]+: not an SVG drawing: .*not in the namespace"},
        {"<svg xmlns='http://www.w3.org/2000/svg'>\n<g>\n</svg>", "^bad.svg:3:[0-9]+: .*mismatch"},
        {drawing("<text>") + "x", "^bad.svg:1:[0-9]+: "},
        {drawing("<text>\xFF</text>"), "^bad.svg:1:[0-9]+: "},
        {drawing("&x;"), "^bad.svg:1:[0-9]+: .*'x' not defined"},
        {drawing("") + "<g/>", "^bad.svg:1:[0-9]+: "},
        {"<?xml version='1.0' encoding='nonsense'?><svg/>",
         "^bad.svg:1:1: the encoding is not known"},
        {"<?xml version='1.0' encoding='EUC-JP'?>\n<svg>\xFF\xFF</svg>",
         "^bad.svg:2:6: not text in"},
        {"\x1F\x8B not gzip at all", "^bad.svg: the gzip data are damaged at byte [0-9]+$"},
        {gzip(drawing("")).substr(0, 60), "^bad.svg: the gzip data end too early, after byte 60$"},
        {gzip("no drawing"), "^bad.svg:1:1: not XML$"},
        {gzip("%PDF-1.5"), "^bad.svg:1:1: not XML but a PDF document$"},
    };
    for (const Case& c : cases) {
        const std::string message = refusal(c.bytes);
        EXPECT_THAT(message, ContainsRegex(c.message));
        EXPECT_THAT(message, Not(ContainsRegex("[\n\r]")));
    }
}

TEST(ABadDrawing, IsRefusedBeforeItCostsMuch) {
    const std::string head = "<svg xmlns='http://www.w3.org/2000/svg'>";
    // Ten megabytes of groups.
    EXPECT_THAT(refusal(head + repeated("<g>\n", 2'500'000)),
                ContainsRegex("^bad.svg:256:[0-9]+: elements are nested more than 256 deep$"));
    // The same behind an error, where the parser no longer reports elements.
    EXPECT_THAT(refusal(head + "<g a=1>" + repeated("<g>", 1'000'000)),
                ContainsRegex("^bad.svg:1:[0-9]+: AttValue"));

    std::string attributes;
    for (int i = 0; i < 200'000; ++i) {
        attributes += " a" + std::to_string(i) + "=''";
    }
    EXPECT_THAT(refusal(head + "<g" + attributes + "/></svg>"),
                ContainsRegex("more than 1000 attributes$"));
    // In an entity, behind what only looks like a comment from outside.
    EXPECT_THAT(refusal("<!DOCTYPE svg [<!ENTITY a '<!--'><!ENTITY b \"<g" + attributes +
                        "/>\">]>" + head + "&b;</svg>"),
                ContainsRegex("more than 1000 attributes$"));

    // Behind a literal that looks like the start of a comment; made of references; by default.
    EXPECT_THAT(refusal("<!DOCTYPE svg SYSTEM \"<!--\">" + head + "<g" + attributes + "/></svg>"),
                ContainsRegex("more than 1000 attributes$"));
    EXPECT_THAT(refusal("<!DOCTYPE svg [<!ENTITY b \"&#60;g" + attributes + "/&#x3e;\">]>" + head +
                        "&b;</svg>"),
                ContainsRegex("^bad.svg:1:[0-9]+: an element has more than 1000 attributes$"));
    std::string defaults;
    for (int i = 0; i < 900; ++i) {
        defaults += " a" + std::to_string(i) + " CDATA ''";
    }
    EXPECT_THAT(refusal("<!DOCTYPE svg [<!ATTLIST g" + defaults + ">]>" + head +
                        repeated("<g/>", 40'000) + "</svg>"),
                ContainsRegex("^bad.svg:1:[0-9]+: the document type gives .* too many attributes"));

    SvgOptions few;
    few.maximumElements = 1000;
    EXPECT_THAT(refusal(drawing("\n<text>" + repeated("<tspan/>", 2000) + "</text>"), few),
                ContainsRegex("^bad.svg:2:[0-9]+: more than 1000 elements hold text"));
    EXPECT_EQ(refusal(drawing(repeated("<path/>", 2000)), few), "read: ");

    std::string namespaces;
    for (int i = 0; i < 900; ++i) {
        namespaces += " xmlns:n" + std::to_string(i) + "='u'";
    }
    EXPECT_THAT(refusal(head + "<g" + namespaces + "><g" + namespaces + "/></g></svg>"),
                ContainsRegex("too many namespaces"));
}

TEST(ABadDrawing, CannotBlowUpThroughEntities) {
    std::string bomb = "<!DOCTYPE svg [<!ENTITY a0 'xxxxxxxxxx'>";
    for (int i = 1; i < 12; ++i) {
        bomb += "<!ENTITY a" + std::to_string(i) + " '" +
                repeated("&a" + std::to_string(i - 1) + ";", 10) + "'>";
    }
    bomb += "]><svg xmlns='http://www.w3.org/2000/svg' ";
    for (const std::string& body :
         {std::string("><text>&a11;</text>"), std::string("id='&a11;'>")}) {
        EXPECT_THAT(refusal(bomb + body + "</svg>"), ContainsRegex("^bad.svg:1:[0-9]+: "));
    }
    // One large entity, often.
    EXPECT_THAT(refusal("<!DOCTYPE svg [<!ENTITY a '" + repeated("x", 100'000) +
                        "'>]><svg xmlns='http://www.w3.org/2000/svg'><text>" +
                        repeated("&a;", 100'000) + "</text></svg>"),
                ContainsRegex("expand too far$"));
    EXPECT_THAT(refusal("<!DOCTYPE svg [<!ENTITY a '&b;'><!ENTITY b '&a;'>]><svg "
                        "xmlns='http://www.w3.org/2000/svg'>&a;</svg>"),
                ContainsRegex("^bad.svg:1:[0-9]+: "));
}

TEST(ABadDrawing, CannotBlowUpThroughReferencedText) {
    EXPECT_THAT(refusal(drawing("<text id='t'>" + repeated("x", 100'000) + "</text><text>" +
                                repeated("<tref xlink:href='#t'/>", 1000) + "</text>")),
                ContainsRegex("^bad.svg:1:[0-9]+: text references repeat too much text$"));
}

/// Each would take the rest of the text for its id, gigabytes in all.
TEST(ADrawing, MayHoldAnyNumberOfUrlsThatAreNotClosed) {
    const std::string urls = repeated("url(#", 100'000);
    EXPECT_EQ(visibleRuns(read("<style>/*" + urls + "*/ .m{mask:url(#m)} .c{mask: url(#c" +
                               "</style><g style='" + urls +
                               "'/><mask id='m'><text "
                               "font-family='M'>m</text></mask><mask id='c'><text font-family='C'>c"
                               "</text></mask>")),
              "M/Regular:m|C/Regular:c");
}

/// Each would look through all elements for the id that none has.
TEST(ADrawing, MayReferToTextThatIsNotThere) {
    EXPECT_EQ(refusal(drawing("<text>" + repeated("<tref xlink:href='#t'/>", 50'000) + "</text>")),
              "read: ");
}

/// Of an attribute that the document type gives them all, they share the value.
TEST(ADrawing, MayGetAttributesByDefault) {
    EXPECT_EQ(visibleRuns(readSvg("<!DOCTYPE svg [<!ATTLIST svg xmlns CDATA #FIXED 'http://www.w3."
                                  "org/2000/svg'><!ATTLIST text font-family CDATA 'A' x (a|b) 'a'>"
                                  "]><svg><text>a</text><text font-family='B'>b</text></svg>",
                                  "x.svg")),
              "A/Regular:a|B/Regular:b");
}

TEST(ABadDrawing, OpensNoOtherFile) {
    Folder folder;
    write(folder / "other.txt", "<text xmlns='http://www.w3.org/2000/svg'>secret</text>");
    const std::string other = (folder / "other.txt").string();
    EXPECT_THAT(refusal("<!DOCTYPE svg [<!ENTITY x SYSTEM 'file://" + other +
                        "'>]><svg xmlns='http://www.w3.org/2000/svg'>&x;</svg>"),
                Not(testing::HasSubstr("secret")));
    EXPECT_EQ(refusal("<!DOCTYPE svg SYSTEM 'file://" + other + "' [<!ENTITY % p SYSTEM 'file://" +
                      other + "'> %p;]><svg xmlns='http://www.w3.org/2000/svg'/>"),
              "read: ");
}

TEST(ADrawingsSize, IsLimitedAlsoWhenUnpacked) {
    SvgOptions options;
    options.maximumSize = std::size_t{1} << 20;
    const std::string large = drawing(repeated(" ", std::size_t{2} << 20));
    EXPECT_EQ(refusal(large, options), "bad.svg: larger than 1 MiB");
    EXPECT_EQ(refusal(gzip(large), options), "bad.svg: larger than 1 MiB");
    EXPECT_EQ(refusal(gzip(large)), "read: ");
}

TEST(AFile, MustBeARegularOne) {
    Folder folder;
    const auto messageFor = [](const std::filesystem::path& file) {
        try {
            static_cast<void>(readSvg(file));
            return std::string("read");
        } catch (const DocumentError& error) {
            return std::string(error.what());
        }
    };
    EXPECT_EQ(messageFor(folder / "none.svg"),
              (folder / "none.svg").string() + ": No such file or directory");
    EXPECT_EQ(messageFor(folder.path()), folder.path().string() + ": is a directory");
    const std::filesystem::path pipe = folder / "pipe.svg";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(messageFor(pipe), pipe.string() + ": is not a regular file");
    SvgOptions options;
    options.maximumSize = 10;
    write(folder / "large.svg", drawing(""));
    EXPECT_THROW(static_cast<void>(readSvg(folder / "large.svg", options)), DocumentError);
}

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
