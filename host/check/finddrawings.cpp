// SPDX-License-Identifier: MIT
// Walking folders.
#include "host/check/finddrawings.h"

#include "host/documents/svg/filekind.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <istream>
#include <iterator>
#include <string_view>
#include <system_error>

namespace host {

namespace {

namespace fs = std::filesystem;

bool beginsLikeADrawing(const fs::path& file) {
    constexpr std::size_t looked = 1024;
    std::array<char, looked> begin{};
    std::ifstream stream(file, std::ios::binary);
    stream.read(begin.data(), begin.size());
    return svg::looksLikeSvg({begin.data(), static_cast<std::size_t>(stream.gcount())});
}

bool isDrawing(const fs::directory_entry& entry) {
    std::error_code ignored;
    if (!entry.is_regular_file(ignored)) { // nothing waits for a pipe
        return false;
    }
    std::string extension = entry.path().extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return extension == ".svg" || extension == ".svgz" ||
           (extension == ".gz" && entry.path().stem().extension() == ".svg") ||
           beginsLikeADrawing(entry.path());
}

/// Goes on where a folder cannot be read, as the standard's own recursion does not.
class Walk {
public:
    explicit Walk(const std::function<void(const std::string&)>& problem) : problem_(problem) {}

    void into(const fs::path& folder, std::vector<fs::path>& drawings) {
        std::vector<fs::path> waiting{folder};
        while (!waiting.empty()) {
            const fs::path current = std::move(waiting.back());
            waiting.pop_back();
            std::vector<fs::path> found;
            std::vector<fs::path> folders;
            std::error_code error;
            fs::directory_iterator entry(current, error);
            for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
                std::error_code ignored;
                if (entry->is_directory(ignored) && !entry->is_symlink(ignored)) {
                    folders.push_back(entry->path());
                } else if (isDrawing(*entry)) {
                    found.push_back(entry->path());
                }
            }
            if (error) {
                problem_(current.string() + ": " + error.message());
            }
            std::sort(found.begin(), found.end());
            drawings.insert(drawings.end(), std::make_move_iterator(found.begin()),
                            std::make_move_iterator(found.end()));
            std::sort(folders.rbegin(), folders.rend());
            waiting.insert(waiting.end(), std::make_move_iterator(folders.begin()),
                           std::make_move_iterator(folders.end()));
        }
    }

private:
    const std::function<void(const std::string&)>& problem_;
};

} // namespace

std::vector<fs::path> findDrawings(const std::vector<fs::path>& paths,
                                   const std::function<void(const std::string&)>& problem) {
    std::vector<fs::path> drawings;
    for (const fs::path& path : paths) {
        std::error_code ignored; // what is wrong with a file is told when it is read
        if (path != "-" && fs::is_directory(path, ignored)) {
            Walk(problem).into(path, drawings);
        } else {
            drawings.push_back(path);
        }
    }
    return drawings;
}

std::vector<fs::path> readPathList(std::istream& list) {
    std::string text;
    std::array<char, 65536> part{};
    while (list.read(part.data(), part.size()) || list.gcount() > 0) {
        text.append(part.data(), static_cast<std::size_t>(list.gcount()));
    }
    const char end = text.find('\0') == std::string::npos ? '\n' : '\0';
    std::vector<fs::path> paths;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t stop = std::min(text.find(end, start), text.size());
        if (stop != start) {
            paths.emplace_back(text.substr(start, stop - start));
        }
        start = stop + 1;
    }
    return paths;
}

} // namespace host
