// SPDX-License-Identifier: MIT
#include "manager/cli/fontfiles.h"

#include "manager/activation/filesteps.h"
#include "manager/cli/arguments.h"
#include "manager/cli/libraryops.h"
#include "manager/library/folders.h"
#include "manager/library/fontanswer.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>
#include <variant>

namespace manager {

namespace {

namespace fs = std::filesystem;

std::vector<FontFileOutcome> readAll(const std::vector<std::string>& files) {
    std::vector<FontFileOutcome> outcomes(files.size());
    readFontFiles(files, {}, [&](std::size_t position, FontFileOutcome outcome) {
        outcomes[position] = std::move(outcome);
    });
    return outcomes;
}

bool isFile(const std::string& path) {
    std::error_code ignored;
    return fs::is_regular_file(path, ignored);
}

// A folder of its own for each, so that no two are one container that is switched as a whole.
void copyForSession(const std::string& folder, const std::string& file) {
    std::string own = joinPath(folder, "font-XXXXXX");
    if (mkdtemp(own.data()) == nullptr) {
        throw systemError(own, "cannot be made", errno);
    }
    cloneOrCopy(file, joinPath(own, fs::path(file).filename().string()));
}

} // namespace

bool haveEqualBytes(const std::string& a, const std::string& b) {
    std::error_code noSize;
    if (fs::file_size(a, noSize) != fs::file_size(b, noSize) || noSize) {
        return false;
    }
    std::ifstream one(a, std::ios::binary);
    std::ifstream other(b, std::ios::binary);
    using Bytes = std::istreambuf_iterator<char>;
    return one && other && std::equal(Bytes(one), Bytes(), Bytes(other), Bytes());
}

bool meansFontFile(const std::string& word) {
    if (word.find('/') != std::string::npos) {
        return true;
    }
    return isFile(word) && (faces::hasFontFileName(word) || problemsOf({word}).empty());
}

int readFontsCommand(const std::vector<std::string>& files) {
    for (const FontFileOutcome& outcome : readAll(files)) {
        const std::string answer = encodeAnswer(outcome);
        std::printf("%zu\n", answer.size());
        std::fwrite(answer.data(), 1, answer.size(), stdout);
    }
    return exitSuccess;
}

std::vector<FontFileOutcome> decodeFontFiles(std::string_view printed,
                                             const std::vector<std::string>& files) {
    std::vector<FontFileOutcome> outcomes;
    for (const std::string& file : files) {
        std::size_t size = 0;
        const char* const end = printed.data() + printed.size();
        const auto [rest, wrong] = std::from_chars(printed.data(), end, size);
        const auto left = static_cast<std::size_t>(end - rest);
        std::optional<FontFileOutcome> outcome;
        if (wrong == std::errc() && left > size && *rest == '\n') {
            outcome = decodeAnswer(std::string_view(rest + 1, size));
            printed.remove_prefix(static_cast<std::size_t>(rest - printed.data()) + 1 + size);
        }
        outcomes.push_back(
            outcome ? std::move(*outcome)
                    : FontFileOutcome(FontFileProblem{file + ": could not be read", false}));
    }
    return outcomes;
}

std::vector<std::string> problemsOf(const std::vector<std::string>& files) {
    std::vector<std::string> problems;
    for (const FontFileOutcome& outcome : readAll(files)) {
        if (const auto* const problem = std::get_if<FontFileProblem>(&outcome)) {
            problems.push_back(problem->text);
        }
    }
    return problems;
}

std::optional<FileInLibrary> findInLibrary(Library& library, const std::string& file,
                                           const faces::FontFileContents& contents) {
    std::error_code ignored;
    const std::string own = fs::canonical(file, ignored).string();
    const std::string session = sessionFolder(library.places());
    std::optional<FileInLibrary> ofSession;
    for (const faces::Face& face : contents.faces) {
        for (FaceMatch& match : library.findByPostScriptName(face.postScriptName)) {
            const std::string known = joinPath(match.folder, match.fileName);
            if (known != own && !haveEqualBytes(known, file)) {
                continue;
            }
            if (session.empty() || !liesUnder(known, session)) {
                return FileInLibrary{std::move(match), false};
            }
            ofSession = FileInLibrary{std::move(match), true};
        }
    }
    return ofSession;
}

std::vector<std::string> containersOfFiles(const Places& places, std::vector<std::string> names,
                                           bool forSession, Tally& tally) {
    const auto firstFile = std::stable_partition(names.begin(), names.end(), [](const auto& name) {
        return name.find('/') == std::string::npos || !isFile(name);
    });
    const std::vector<std::string> files(firstFile, names.end());
    names.erase(firstFile, names.end());
    if (files.empty()) {
        return names;
    }
    const std::vector<FontFileOutcome> outcomes = readAll(files);
    const auto contentsOf = [&](std::size_t i) { return std::get_if<ReadFont>(&outcomes[i]); };
    auto library = openScanned(places);
    std::string folder;
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (contentsOf(i) == nullptr) {
            tally.fail(std::get<FontFileProblem>(outcomes[i]).text);
        } else if (!findInLibrary(*library, files[i], contentsOf(i)->contents)) {
            if (!forSession) {
                tally.fail(files[i] + ": is not in the library: add it, or activate it with "
                                      "--until-logout");
                continue;
            }
            folder = makeSessionFolder(places);
            copyForSession(folder, files[i]);
        }
    }
    if (!folder.empty()) {
        library.reset();
        for (const std::string& problem : scanNow(places)) {
            tally.remark(problem);
        }
        library = openScanned(places);
    }
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (const auto* const font = contentsOf(i)) {
            if (const auto known = findInLibrary(*library, files[i], font->contents)) {
                names.push_back(toText(known->face.container));
            }
        }
    }
    return names;
}

} // namespace manager
