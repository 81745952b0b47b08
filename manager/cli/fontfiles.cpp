// SPDX-License-Identifier: MIT
#include "manager/cli/fontfiles.h"

#include "faces/fontfile.h"
#include "faces/namekey.h"
#include "manager/cli/arguments.h"
#include "manager/cli/libraryops.h"
#include "manager/library/error.h"
#include "manager/library/folders.h"
#include "manager/library/fontanswer.h"
#include "manager/view/texts.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
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

std::vector<FaceMatch> findNamesakes(Library& library, const faces::FontFileContents& contents) {
    std::vector<FaceMatch> found;
    std::set<std::string> names; // of collections many faces have the same family
    for (const faces::Face& face : contents.faces) {
        std::vector<FaceMatch> matches;
        if (!faces::postScriptKey(face.postScriptName).empty()) {
            matches = library.findByPostScriptName(face.postScriptName);
        } else if (!face.names.empty()) {
            const std::string family = faces::nameKey(face.names.front().family);
            if (names.insert(family).second) {
                matches = library.findByFamily(family);
            }
        }
        std::move(matches.begin(), matches.end(), std::back_inserter(found));
    }
    return found;
}

std::optional<FileInLibrary> findInLibrary(Library& library, const std::string& file,
                                           const faces::FontFileContents& contents) {
    std::error_code ignored;
    const std::string own = fs::canonical(file, ignored).string();
    const std::string session = sessionFolder(library.places());
    std::optional<FileInLibrary> ofSession;
    for (FaceMatch& match : findNamesakes(library, contents)) {
        const std::string known = joinPath(match.folder, match.fileName);
        if (known != own && !haveEqualBytes(known, file)) {
            continue;
        }
        if (session.empty() || !liesUnder(known, session)) {
            return FileInLibrary{std::move(match), false};
        }
        ofSession = FileInLibrary{std::move(match), true};
    }
    return ofSession;
}

std::vector<std::string> containersOfFiles(const Places& places, std::vector<std::string> names,
                                           SessionCopies* copies, Tally& tally) {
    const auto firstFile = std::stable_partition(names.begin(), names.end(), [](const auto& name) {
        return name.find('/') == std::string::npos || !isFile(name);
    });
    const std::vector<std::string> files(firstFile, names.end());
    names.erase(firstFile, names.end());
    if (files.empty()) {
        return names;
    }
    const std::vector<FontFileOutcome> outcomes = readAll(files);
    std::vector<const ReadFont*> fonts; // nullptr: what is wrong was told
    auto library = openScanned(places);
    for (std::size_t i = 0; i < files.size(); ++i) {
        fonts.push_back(std::get_if<ReadFont>(&outcomes[i]));
        try {
            if (fonts[i] == nullptr) {
                tally.fail(std::get<FontFileProblem>(outcomes[i]).text);
            } else if (!findInLibrary(*library, files[i], fonts[i]->contents)) {
                if (copies == nullptr) {
                    throw Error(files[i] + ": is not in the library: add it, or activate it with "
                                           "--until-logout");
                }
                if (!faces::hasFontFileName(files[i])) { // scans would pass it over
                    throw Error(files[i] + ": " +
                                translated("cannot be activated: its name is not a font file's"));
                }
                copies->copy(files[i]);
            }
        } catch (const DamagedDatabase&) {
            throw;
        } catch (const Error& error) {
            fonts[i] = nullptr;
            tally.fail(error.what());
        }
    }
    if (copies != nullptr && !copies->isEmpty()) {
        library.reset();
        for (const std::string& problem : scanNow(places)) {
            tally.remark(problem);
        }
        library = openScanned(places);
    }
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (fonts[i] == nullptr) {
            continue;
        }
        if (const auto known = findInLibrary(*library, files[i], fonts[i]->contents)) {
            names.push_back(toText(known->face.container));
        } else { // why, the scan has told
            tally.fail(files[i] + ": " +
                       translated("cannot be activated: its copy cannot be read"));
        }
    }
    return names;
}

} // namespace manager
