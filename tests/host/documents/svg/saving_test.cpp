// SPDX-License-Identifier: MIT
// Where a drawing is saved to, and what that leaves there.
#include "drawings.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <iterator>
#include <thread>
#include <utility>

namespace host::test {
namespace {

/// Gzip data without compression, as the host never writes them.
std::string stored(std::string text) {
    std::string packed(2000, '\0');
    z_stream stream{};
    EXPECT_EQ(deflateInit2(&stream, 0, Z_DEFLATED, 31, 8, Z_DEFAULT_STRATEGY), Z_OK);
    stream.next_in = reinterpret_cast<Bytef*>(text.data());
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

TEST(APackedDrawing, MayComeInSeveralMembersWithOtherBytesBehind) {
    const std::string text = drawing("<text font-family='A'>a</text>");
    const std::string packed = stored(text.substr(0, 20)) + stored(text.substr(20));
    EXPECT_EQ(visibleRuns(readSvg(packed + "\x1Fx", "x.svgz")), "A/Regular:a");
}

TEST(ASavedDrawing, IsUnchangedWhenNothingWasReplaced) {
    const std::string source = "\xEF\xBB\xBF<?xml version='1.0'?>\r\n<!-- x -->" +
                               drawing("<text\n>a</text >\r\n") + "\n\n";
    EXPECT_EQ(saved(readSvg(source, "x.svg")), source);
}

TEST(ASavedDrawing, IsTheVeryFileWhenNothingWasReplaced) {
    // The same character in two codes, of which a converter writes one.
    const std::string twice = "<?xml version='1.0' encoding='windows-31j'?><svg "
                              "xmlns='http://www.w3.org/2000/svg'><text>\xED\x40\xFA\x5C</text>"
                              "</svg>";
    EXPECT_EQ(saved(readSvg(twice, "x.svg")), twice);

    const std::string packed = stored(twice);
    const Document document = readSvg(packed, "x.svgz");
    Folder folder;
    document.save(folder / "same.svgz");
    EXPECT_EQ(contentOf(folder / "same.svgz"), packed);
    EXPECT_EQ(saved(document), twice);
}

TEST(ASavedDrawing, IsGzippedByItsNameElseAsItWas) {
    Folder folder;
    Document plain = read("<text font-family='A'>a</text>");
    plain.save(folder / "packed.svgz");
    plain.replaceFace(0, {});
    plain.save(folder / "changed.svg.GZ");
    EXPECT_TRUE(contentOf(folder / "changed.svg.GZ").starts_with("\x1F\x8B"));
    EXPECT_TRUE(contentOf(folder / "packed.svgz").starts_with("\x1F\x8B"));
    const Document packed = readSvg(folder / "packed.svgz");
    packed.save(folder / "plain.svg");
    packed.save(folder / "other");
    EXPECT_EQ(contentOf(folder / "plain.svg"), drawing("<text font-family='A'>a</text>"));
    EXPECT_TRUE(contentOf(folder / "other").starts_with("\x1F\x8B"));
}

TEST(ASavedDrawing, ReplacesWhatALinkLeadsToAndKeepsItsRights) {
    Folder folder;
    write(folder / "real.svg", "old");
    std::filesystem::permissions(folder / "real.svg", std::filesystem::perms{0640});
    std::filesystem::create_symlink(folder / "real.svg", folder / "link.svg");
    read("").save(folder / "link.svg");
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.svg"));
    EXPECT_EQ(contentOf(folder / "real.svg"), drawing(""));
    EXPECT_EQ(std::filesystem::status(folder / "real.svg").permissions(),
              std::filesystem::perms{0640});
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 2);
}

TEST(ASavedDrawing, GoesThroughAPipeThatStaysOne) {
    Folder folder;
    const std::string pipe = (folder / "pipe.svg").string();
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    std::filesystem::create_symlink(pipe, folder / "link.svg");
    for (const char* name : {"pipe.svg", "link.svg"}) {
        std::string received;
        std::thread reader([&] { received = contentOf(pipe); });
        read("").save(folder / name);
        reader.join();
        EXPECT_EQ(received, drawing("")) << name;
        EXPECT_TRUE(std::filesystem::is_fifo(pipe)) << name;
    }
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.svg"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 2);
}

TEST(ASavedDrawing, GoesThroughALinkThatNamesADescriptor) {
    Folder folder;
    int ends[2] = {-1, -1};
    ASSERT_EQ(::pipe(ends), 0);
    const std::filesystem::path link = folder / "output.svg";
    std::filesystem::create_symlink("/proc/self/fd/" + std::to_string(ends[1]), link);
    read("").save(link);
    ::close(ends[1]);
    std::string received(1000, '\0');
    received.resize(static_cast<std::size_t>(
        std::max<ssize_t>(0, ::read(ends[0], received.data(), received.size()))));
    ::close(ends[0]);
    EXPECT_EQ(received, drawing(""));
    EXPECT_TRUE(std::filesystem::is_symlink(link));
}

TEST(ASavedDrawing, ThatCannotBeWrittenSaysSo) {
    Folder folder;
    std::filesystem::create_symlink("round.svg", folder / "round.svg");
    std::filesystem::create_directory(folder / "folder.svg");
    for (const auto& [name, reason] :
         {std::pair{"no/such/folder.svg", "cannot be written: No such file"},
          std::pair{"round.svg", "cannot be written: Too many levels of symbolic links"},
          std::pair{"folder.svg", "cannot be written: is not a regular file"}}) {
        try {
            read("").save(folder / name);
            ADD_FAILURE() << name;
        } catch (const DocumentError& error) {
            EXPECT_NE(std::string(error.what()).find(reason), std::string::npos) << error.what();
        }
    }
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "round.svg"));
}

} // namespace
} // namespace host::test
