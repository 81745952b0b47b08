// SPDX-License-Identifier: MIT
// Documents and their files: what is written and kept, and what is read of them.
#include "xmldocument.h"

#include <csignal>
#include <memory>
#include <sys/resource.h>
#include <unistd.h>
#include <zlib.h>

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
