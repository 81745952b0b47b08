// SPDX-License-Identifier: MIT
// Documents and their files: what is written and kept, what is read of them, and what documents
// from outside may not do.
#include "tests/support/repeated.h"
#include "xmldocument.h"

#include <sys/resource.h>
#include <unistd.h>
#include <zlib.h>

#include <csignal>
#include <memory>
#include <tuple>

using namespace Orvil;
using OrvilTests::contentOf;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

namespace {

const std::string newText = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<new/>\n";

class AnXmlFile : public OrvilTests::AnXmlDocument {};

} // namespace

TEST_F(AnXmlFile, LeavesTheOldFileWhenItCannotBeWritten) {
    const std::string path = file("kept.xml", "old");
    document->write(path);
    EXPECT_EQ(contentOf(path), "old") << "there is no document yet";
    document->createRootNode("new", "");
    testing::internal::CaptureStderr();
    rlimit unlimited{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &unlimited), 0);
    const rlimit tooSmall{newText.size() - 1, unlimited.rlim_max};
    auto* const handler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &tooSmall), 0);
    document->write(path);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &unlimited), 0);
    std::signal(SIGXFSZ, handler);
    document->write((folder / "missing" / "a.xml").string());
    document->write("/dev/full");
    document->write(folder.string());
    std::filesystem::create_symlink("loop", folder / "loop");
    document->write((folder / "loop").string());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(contentOf(path), "old");
    EXPECT_THAT(entries(), UnorderedElementsAre("kept.xml", "loop"));
}

TEST_F(AnXmlFile, TouchesNothingButTheFileThatItIsWrittenTo) {
    const std::string path = file("a%20b.xml", "old");
    file("a%20b.xml.part", "bystander");
    std::filesystem::create_directory(folder / "a b.xml.part");
    document->createRootNode("new", "");
    document->write(path);
    EXPECT_EQ(contentOf(path), newText);
    EXPECT_EQ(contentOf(path + ".part"), "bystander");
    EXPECT_THAT(entries(), UnorderedElementsAre("a%20b.xml", "a%20b.xml.part", "a b.xml.part"));
    file("a b.xml", "<other/>");
    document->parse(path);
    EXPECT_EQ(document->getRootNode()->getName(), "new") << "the very file is read again";
}

TEST_F(AnXmlFile, IsWrittenToWhatALinkLeadsTo) {
    std::filesystem::create_directory(folder / "below");
    file("below/real.xml", "old");
    std::filesystem::create_symlink("below/real.xml", folder / "inner");
    std::filesystem::create_symlink(folder / "inner", folder / "outer");
    document->createRootNode("new", "");
    document->write((folder / "outer").string());
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "outer"));
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "inner"));
    EXPECT_EQ(contentOf(folder / "below" / "real.xml"), newText);
    EXPECT_THAT(entries(), UnorderedElementsAre("below", "inner", "outer"));
}

TEST_F(AnXmlFile, MayBeAPipe) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    document->createRootNode("new", "");
    document->write("/dev/fd/" + std::to_string(ends[1]));
    close(ends[1]);
    EXPECT_EQ(contentOf("/dev/fd/" + std::to_string(ends[0])), newText);
    close(ends[0]);
}

TEST_F(AnXmlFile, IsBoundedAsItComesOutOfItsFile) {
    const std::string small = (folder / "small.gz").string();
    const std::string large = (folder / "large.gz").string();
    const auto pack = [](const std::string& path, std::size_t blanks) {
        const std::unique_ptr<gzFile_s, int (*)(gzFile_s*)> packed(gzopen(path.c_str(), "w1"),
                                                                   gzclose);
        const std::string piece(std::size_t{1} << 20U, ' ');
        for (std::size_t i = 0; i < blanks / piece.size(); ++i) {
            gzwrite(packed.get(), piece.data(), static_cast<unsigned>(piece.size()));
        }
        gzputs(packed.get(), "<a>packed</a>");
    };
    pack(small, 0);
    document->parse(small);
    EXPECT_EQ(document->getRootNode()->getContent(), "packed");
    pack(large, Orvil::IXmlParser::maximumDocumentSize);
    EXPECT_LT(std::filesystem::file_size(large), Orvil::IXmlParser::maximumDocumentSize / 100);
    const std::string reason = "LibXml: Document not parsed successfully: document exceeds the "
                               "limit of 67108864 bytes";
    EXPECT_EQ(failureOf([&] { document->parse(large); }), reason);
    EXPECT_EQ(failureOf([&] { document->parse("/dev/zero"); }), reason);
    EXPECT_THAT(failureOf([&] { document->parse(folder.string()); }), HasSubstr("Is a directory"));
}

namespace {

class AnXmlDocumentFromOutside : public OrvilTests::AnXmlDocument {};

} // namespace

TEST_F(AnXmlDocumentFromOutside, StaysWithinTheBoundsForOutsideInput) {
    EXPECT_THAT(parseFailure(repeated("<a>", 100000)),
                HasSubstr("Excessive depth in document: 256"));
    std::string laughs = "<!DOCTYPE a [<!ENTITY e0 'lollollollollollol'>";
    for (int i = 1; i < 10; ++i) {
        laughs += "<!ENTITY e" + std::to_string(i) + " '" +
                  repeated("&e" + std::to_string(i - 1) + ";", 10) + "'>";
    }
    EXPECT_THAT(parseFailure(laughs + "]><a>&e9;</a>"), HasSubstr("entity reference loop"));
    EXPECT_THAT(parseFailure(laughs + "]><a x='&e9;'/>"), HasSubstr("entity reference loop"));

    const std::string huge(IXmlParser::maximumDocumentSize + 1, ' ');
    EXPECT_EQ(parseFailure(huge), "LibXml: Document not parsed successfully: document of 67108865 "
                                  "bytes exceeds the limit of 67108864 bytes");
    const std::string path = file("huge.xml", "");
    std::filesystem::resize_file(path, IXmlParser::maximumDocumentSize + 1);
    EXPECT_THAT(failureOf([&] { document->parse(path); }), HasSubstr("exceeds the limit"));
    EXPECT_THAT(failureOf([&] { document->parse("http://127.0.0.1:9/a.xml"); }),
                HasSubstr("Attempt to load network entity"));
}

TEST_F(AnXmlDocumentFromOutside, GrowsInBoundsByWhatItDeclares) {
    const std::string longText(20'000, 'x');
    const std::string entity = "<!DOCTYPE a [<!ENTITY e '" + longText + "'>";
    const std::string nested = entity + "<!ENTITY f '&e;&e;&e;&e;&e;'>]><a>";
    const std::string defaulted = "<!DOCTYPE a [<!ATTLIST b x CDATA '" + longText + "'>]><a>";
    // What stands before as many units as fit (one more does not), and what behind them.
    const std::tuple<std::string, std::string, std::size_t, std::string> cases[] = {
        {entity + "]><a>", "&e;", 50, "</a>"},
        {entity + "]><a><b x='", "&e;", 50, "'/></a>"},
        {entity + "]><a>", "<b x='&e;'/>", 50, "</a>"},
        {entity + "]><a><b x='&e;'/>", "&e;", 49, "</a>"},
        {nested, "&f;", 8, "</a>"}, // looking into each for the first time counts as well
        {defaulted, "<b/>", 49, "</a>"}};
    for (const auto& [start, unit, fits, end] : cases) {
        std::string text = start + repeated(unit, fits);
        EXPECT_LE(read(text + end)->getContent().size(), 1'000'000U);
        text += unit + end;
        EXPECT_THAT(parseFailure(text), HasSubstr("grow by more than 1000000 bytes"));
        EXPECT_THAT(failureOf([&] { document->parse(file("grows.xml", text)); }),
                    HasSubstr("grow by more than 1000000 bytes"));
    }
    // Where the document itself is large, tenfold is meant.
    const std::string large =
        entity + "]><a><!--" + std::string(500'000, ' ') + "-->" + repeated("&e;", 260);
    EXPECT_EQ(read(large + "</a>")->getContent().size(), 5'200'000U);
    EXPECT_THAT(parseFailure(large + "&e;</a>"), HasSubstr("grow by more than 520"));
}

TEST_F(AnXmlDocumentFromOutside, ReadsNothingBesideItself) {
    const std::string secret = file("secret", "secret text");
    const std::string dtd = file("outside.dtd", "<!ATTLIST a x CDATA 'from outside'>");
    const IXmlNode* root = read("<!DOCTYPE a SYSTEM '" + dtd + "' [<!ENTITY s SYSTEM '" + secret +
                                "'><!ENTITY i 'inside'>]><a>&s;|&i;</a>");
    EXPECT_EQ(root->getAttribute("x", "none"), "none");
    EXPECT_EQ(root->getContent(), "|inside");
    // A reference is a node of its own; the walk does not stray into the declarations.
    ASSERT_EQ(root->getChildren().size(), 3U);
    for (const IXmlNode* child : root->getChildren()) {
        EXPECT_FALSE(child->hasChildren());
        EXPECT_EQ(child->getFirstChild(), nullptr);
    }
}
