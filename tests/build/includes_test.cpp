// SPDX-License-Identifier: MIT
// Who includes whom: every arrow between the project's folders is one that was meant, none within
// the plug-in points up, and no files include each other in a circle.
#include "tests/support/temporaryfolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

namespace fs = std::filesystem;

struct Folder {
    std::string_view path;
    /// The folders whose headers its files may include, beside its own.
    std::vector<std::string_view> mayInclude;
    /// Its headers are named from here.
    std::string_view includeRoot;
};

constexpr std::string_view protocol = "source/common/protocol";
constexpr std::string_view link = "source/common/link";
constexpr std::string_view shell = "source/common/shell";
constexpr std::string_view document = "source/common/document";
constexpr std::string_view dialogs = "source/common/dialogs";
constexpr std::string_view check = "source/common/check";
constexpr std::string_view orvil = "source/externals/orvil";
constexpr std::string_view services = "platform/include";
constexpr std::string_view hostModel = "host/documents";
constexpr std::string_view hostCss = "host/documents/css";
constexpr std::string_view hostSvg = "host/documents/svg";
constexpr std::string_view hostWindows = "host/qt";
constexpr std::string_view previewPainting = "preview/qt";

/// Of the toolkit, which stands in folders called "qt" alone.
bool isToolkit(std::string_view header) {
    return header.size() > 1 && header[0] == 'Q' &&
           (header[1] == 't' || (header[1] >= 'A' && header[1] <= 'Z'));
}

/// The first entry whose path a file's begins with counts, so folders stand before those that
/// hold them.
const std::vector<Folder>& folders() {
    static const std::vector<Folder> all{
        {"sdk", {}, "sdk"},
        {services, {}, services},
        {"platform", {services, "system"}, ""},
        {orvil, {services}, "source/externals/orvil/source"},
        {protocol, {orvil, "sdk", services}, protocol},
        {link, {orvil, "sdk", services, protocol}, link},
        {shell, {orvil, "sdk", services, protocol, link}, shell},
        {document, {orvil, "sdk", services, protocol, link, shell}, document},
        {dialogs, {orvil, "sdk", services, protocol, link, shell, document}, dialogs},
        {check, {orvil, "sdk", services, protocol, link, shell, document, dialogs}, check},
        {"system", {}, ""},
        {"faces", {"system"}, ""},
        {previewPainting, {"preview", "system"}, ""},
        {"preview", {"system"}, ""},
        {hostCss, {hostModel}, ""},
        {hostSvg, {hostModel, hostCss, "system", "faces"}, ""},
        {hostModel, {"system", "faces"}, ""},
        {hostWindows, {"host", "sdk", services, "system", "preview", previewPainting}, ""},
        {"host",
         {"sdk", services, "system", "faces", "preview", hostModel, hostCss, hostSvg, hostWindows},
         ""},
        {"manager", {services, "system", "faces", "preview", previewPainting}, ""},
        {"tools", {orvil, protocol}, ""},
        {"examples", {orvil}, ""},
    };
    return all;
}

const Folder* folderOf(std::string_view file) {
    const auto found = std::ranges::find_if(folders(), [&](const Folder& folder) {
        return file.starts_with(folder.path) && file.substr(folder.path.size()).starts_with('/');
    });
    return found == folders().end() ? nullptr : &*found;
}

class SourceTree {
public:
    explicit SourceTree(const fs::path& root) {
        for (const Folder& folder : folders()) {
            if (fs::exists(root / folder.path)) {
                read(root, root / folder.path);
            }
        }
    }

    std::size_t size() const { return includes_.size(); }

    /// One line for each include that may not be.
    std::vector<std::string> offences() const {
        std::vector<std::string> found;
        for (const auto& [file, headers] : includes_) {
            const Folder& from = *folderOf(file);
            for (const std::string& header : headers) {
                const Folder* const owner = folderOf(header);
                const std::string_view to = owner == nullptr ? header : owner->path;
                if (isToolkit(header) && file.find("/qt/") != std::string::npos) {
                    continue;
                }
                if (to != from.path &&
                    std::ranges::find(from.mayInclude, to) == from.mayInclude.end()) {
                    found.push_back(file + " includes " + header);
                }
            }
        }
        return found;
    }

    /// The files of each circle of includes that a walk meets.
    std::vector<std::string> circles() const {
        std::vector<std::string> found;
        std::vector<std::string> way;
        std::set<std::string> done;
        const std::function<void(const std::string&)> visit = [&](const std::string& file) {
            if (const auto before = std::ranges::find(way, file); before != way.end()) {
                std::string circle;
                std::for_each(before, way.end(),
                              [&](const std::string& on) { circle += on + " > "; });
                found.push_back(circle + file);
                return;
            }
            if (done.contains(file) || !includes_.contains(file)) {
                return;
            }
            way.push_back(file);
            std::ranges::for_each(includes_.at(file), visit);
            way.pop_back();
            done.insert(file);
        };
        for (const auto& [file, headers] : includes_) {
            visit(file);
        }
        return found;
    }

private:
    void read(const fs::path& root, const fs::path& folder) {
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
            const std::string extension = entry.path().extension().string();
            if (extension == ".h" || extension == ".cpp") {
                const std::string file = entry.path().lexically_relative(root).generic_string();
                includes_.try_emplace(file, headersOf(root, file));
            }
        }
    }

    /// The project's own headers that a file includes, as paths from the root, and the toolkit's.
    /// Others that stand nowhere below it are the system's.
    static std::vector<std::string> headersOf(const fs::path& root, const std::string& file) {
        std::vector<std::string> headers;
        std::ifstream text(root / file);
        for (std::string line; std::getline(text, line);) {
            static const std::regex directive(R"(\s*#\s*include\s*["<]([^">]+)[">].*)");
            std::smatch parts;
            if (!std::regex_match(line, parts, directive)) {
                continue;
            }
            const std::string name = parts[1];
            std::vector<fs::path> places{fs::path(file).parent_path() / name, name};
            for (const Folder& folder : folders()) {
                places.push_back(fs::path(folder.includeRoot) / name);
            }
            const auto place = std::ranges::find_if(
                places, [&](const fs::path& path) { return fs::is_regular_file(root / path); });
            if (place != places.end()) {
                headers.push_back(place->lexically_normal().generic_string());
            } else if (isToolkit(name)) {
                headers.push_back(name);
            }
        }
        return headers;
    }

    std::map<std::string, std::vector<std::string>> includes_;
};

TEST(TheIncludes, PointNowhereThatTheyShouldNot) {
    const SourceTree tree(GLYPHORA_SOURCE);
    EXPECT_GT(tree.size(), 300U); // it is the project that was read
    EXPECT_THAT(tree.offences(), IsEmpty());
    EXPECT_THAT(tree.circles(), IsEmpty());
}

TEST(TheIncludes, AreRefusedWhenTheyPointUpOrAcrossOrInACircle) {
    const testsupport::TemporaryFolder folder;
    folder.write("sdk/sp/types.h", "#pragma once\n");
    folder.write("source/common/protocol/protocol.h", "#include \"GLYEvent.h\"\n");
    folder.write("source/common/link/GLYEvent.h",
                 "#include \"protocol.h\"\n  #include <sp/types.h>\n#include <vector>\n");
    folder.write("host/documents/document.h", "#include \"host/documents/css/css.h\"\n");
    folder.write("host/documents/css/css.h", "");
    folder.write("host/core/core.cpp", "# include <GLYEvent.h>\n#include \"sp/types.h\"\n");
    folder.write("host/qt/windows.cpp", "#include <QWidget>\n#include \"host/core/core.cpp\"\n");
    folder.write("host/cli/main.cpp", "#include <QtWidgets/QWidget>\n#include <Quality.h>\n");
    folder.write("manager/library/library.h", "#include \"host/documents/document.h\"\n");
    const SourceTree tree(folder / "");
    EXPECT_THAT(tree.offences(),
                UnorderedElementsAre(
                    "source/common/protocol/protocol.h includes source/common/link/GLYEvent.h",
                    "host/documents/document.h includes host/documents/css/css.h",
                    "host/core/core.cpp includes source/common/link/GLYEvent.h",
                    "host/cli/main.cpp includes QtWidgets/QWidget",
                    "manager/library/library.h includes host/documents/document.h"));
    EXPECT_THAT(tree.circles(), testing::ElementsAre(HasSubstr("protocol.h > ")));
}

} // namespace
