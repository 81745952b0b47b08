// SPDX-License-Identifier: MIT
// Documents and their files: what is written and kept, and what is read of them.
#include "xmldocument.h"

#include <memory>
#include <unistd.h>
#include <zlib.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

namespace {

const std::string newText = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<new/>\n";

/// While it lives, the process has the rights of an ordinary user, who owns the folder and what is
/// in it. (Rights bind no superuser.)
class Unprivileged {
public:
    explicit Unprivileged(const std::filesystem::path& folder) : user_(geteuid()) {
        if (user_ == 0) {
            constexpr uid_t nobody = 65534;
            for (const auto& entry : std::filesystem::directory_iterator(folder)) {
                EXPECT_EQ(lchown(entry.path().c_str(), nobody, getegid()), 0);
            }
            EXPECT_EQ(chown(folder.c_str(), nobody, getegid()), 0);
            EXPECT_EQ(seteuid(nobody), 0);
        }
    }
    Unprivileged(const Unprivileged&) = delete;
    Unprivileged& operator=(const Unprivileged&) = delete;
    ~Unprivileged() { EXPECT_EQ(seteuid(user_), 0); }

private:
    uid_t user_;
};

class AnXmlFile : public OrvilTests::AnXmlDocument {};

} // namespace

TEST_F(AnXmlFile, LeavesTheOldFileWhenItCannotBeWritten) {
    const std::string path = file("kept.xml", "old");
    document->write(path);
    EXPECT_EQ(contentOf(path), "old") << "there is no document yet";
    document->createRootNode("new", "");
    testing::internal::CaptureStderr();
    {
        const Unprivileged unprivileged(folder);
        std::filesystem::permissions(path, std::filesystem::perms::owner_read);
        document->write(path);
    }
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
    std::filesystem::permissions(path, std::filesystem::perms(0640));
    document->createRootNode("new", "");
    document->write(path);
    EXPECT_EQ(contentOf(path), newText);
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0640));
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
    std::filesystem::create_symlink("below/made.xml", folder / "dangling");
    document->createRootNode("new", "");
    for (const char* const link : {"outer", "dangling"}) {
        document->write((folder / link).string());
        EXPECT_TRUE(std::filesystem::is_symlink(folder / link));
    }
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "inner"));
    EXPECT_EQ(contentOf(folder / "below" / "real.xml"), newText);
    EXPECT_EQ(contentOf(folder / "below" / "made.xml"), newText);
    EXPECT_THAT(entries(), UnorderedElementsAre("below", "inner", "outer", "dangling"));
}

TEST_F(AnXmlFile, OverwritesItsFileInAFolderThatTakesNoNewOne) {
    const std::string path = file("a.xml", std::string(100, 'x'));
    document->createRootNode("new", "");
    {
        const Unprivileged unprivileged(folder);
        const std::filesystem::perms before = std::filesystem::status(folder).permissions();
        std::filesystem::permissions(folder, std::filesystem::perms(0500));
        document->write(path);
        document->write((folder / "b.xml").string());
        std::filesystem::permissions(folder, before);
    }
    EXPECT_EQ(contentOf(path), newText);
    EXPECT_THAT(entries(), ElementsAre("a.xml"));
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
                               "limit of 268435456 bytes";
    EXPECT_EQ(failureOf([&] { document->parse(large); }), reason);
    EXPECT_EQ(failureOf([&] { document->parse("/dev/zero"); }), reason);
    EXPECT_THAT(failureOf([&] { document->parse(folder.string()); }), HasSubstr("Is a directory"));
}
