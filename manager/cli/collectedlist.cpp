// SPDX-License-Identifier: MIT
#include "manager/cli/collectedlist.h"

#include "manager/cli/report.h"
#include "manager/view/facefacts.h"
#include "manager/view/texts.h"

#include <algorithm>
#include <map>
#include <string_view>

namespace manager {

namespace {

/// "TITLE WORDS", further lines of the words below and further in. Empty without words.
std::string paragraph(const std::string& title, std::string_view words) {
    std::string text;
    std::size_t blankLines = 0;
    while (!words.empty()) {
        const std::size_t length = std::min(words.find_first_of("\r\n"), words.size());
        std::string line(words.substr(0, length));
        const bool isPair = words.substr(length).starts_with("\r\n"); // old fonts have '\r' alone
        words.remove_prefix(std::min(length + (isPair ? 2 : 1), words.size()));
        std::replace(line.begin(), line.end(), '\t', ' ');
        line.erase(line.find_last_not_of(' ') + 1);
        if (line.empty()) {
            ++blankLines;
            continue;
        }
        if (text.empty()) {
            text = "    " + title + " ";
        } else {
            text += std::string(blankLines, '\n') + "      ";
        }
        text += printable(line) + "\n";
        blankLines = 0;
    }
    return text;
}

} // namespace

std::string textOf(const std::vector<CollectedFile>& files) {
    constexpr std::size_t paragraphs = 200;   // bytes: longer ones are not repeated
    std::map<std::string, std::string> known; // by a text, the file where it is told
    std::string text;
    for (const CollectedFile& file : files) {
        text += printable(file.path) + "\n";
        std::string licences;
        for (const std::string& path : file.licenceFiles) {
            licences += (licences.empty() ? "" : ", ") + printable(path);
        }
        text += paragraph(translated("Files on the licence:"), licences);
        for (const CollectedFace& face : file.faces) {
            text += "  " + printable(face.name) + "\n";
            for (const FaceFact& fact : factsOf(face.facts)) {
                std::string words = fact.words;
                if (words.size() >= paragraphs) {
                    const auto [place, isNew] = known.emplace(words, printable(file.path));
                    words =
                        isNew ? words : filled(translated("the same as of %1"), {place->second});
                }
                text += paragraph(fact.title, words);
            }
        }
    }
    return text;
}

} // namespace manager
