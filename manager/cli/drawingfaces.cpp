// SPDX-License-Identifier: MIT
// Its report as JSON is read from a process of its own: a drawing that ends that costs nobody else
// anything.
#include "manager/cli/drawingfaces.h"

#include "manager/cli/libraryops.h"
#include "manager/cli/report.h"
#include "manager/library/cancel.h"
#include "manager/view/drawing.h"
#include "manager/view/texts.h"
#include "system/child.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <poll.h>
#include <set>
#include <sys/socket.h>
#include <system_error>
#include <tuple>
#include <unistd.h>

namespace manager {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using Clock = std::chrono::steady_clock;

constexpr const char* reader = "glyphora-host";
constexpr std::chrono::seconds longestReading{60};
constexpr std::size_t longestReport = std::size_t{64} << 20U;
constexpr std::size_t mostDrawings = 100;

/// Empty: it is not installed.
fs::path findReader() {
    std::error_code ignored;
    std::vector<fs::path> folders = {fs::read_symlink("/proc/self/exe", ignored).parent_path()};
    const char* const path = std::getenv("PATH");
    const std::string named = path == nullptr ? "" : path;
    for (std::size_t from = 0; from < named.size();) {
        const std::size_t end = std::min(named.find(':', from), named.size());
        folders.emplace_back(named.substr(from, end - from));
        from = end + 1;
    }
    for (const fs::path& folder : folders) {
        fs::path file = folder / reader;
        if (folder.is_absolute() && fs::is_regular_file(file, ignored) &&
            access(file.c_str(), X_OK) == 0) {
            return file;
        }
    }
    return {};
}

/// Waits for more of the report; false at its end.
bool receive(const sys::Child& child, Clock::time_point deadline, std::string& report) {
    std::array<pollfd, 2> ready = {{{child.socket(), POLLIN, 0}, {cancelDescriptor(), POLLIN, 0}}};
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    const int count = poll(ready.data(), ready.size(),
                           static_cast<int>(std::max(left, std::chrono::milliseconds(0)).count()));
    checkCancelled();
    if (count == 0) {
        throw Error("took longer than " + std::to_string(longestReading.count()) +
                    " seconds to be read");
    }
    if (count < 0 && errno == EINTR) {
        return true;
    }
    std::array<char, 65536> block{};
    const ssize_t length = recv(child.socket(), block.data(), block.size(), 0);
    if (length < 0 && (errno == EINTR || errno == EAGAIN)) {
        return true;
    }
    report.append(block.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    if (report.size() > longestReport) {
        throw Error("uses more fonts than can be told");
    }
    return length > 0;
}

Json reportOf(const std::vector<std::string>& files) {
    const fs::path program = findReader();
    if (program.empty()) {
        throw Error(std::string("cannot be read: the program ") + reader +
                    ", which reads drawings, is not installed");
    }
    std::vector<std::string> words = {"open",     "--no-plugin", "--headless",
                                      "--report", "json",        "--"};
    // Absolute, none can be taken for anything else.
    std::transform(files.begin(), files.end(), std::back_inserter(words),
                   [](const std::string& file) { return fs::absolute(file).string(); });
    sys::Child child(program, words, sys::Child::Output::Socket);
    std::string report;
    for (const auto deadline = Clock::now() + longestReading; receive(child, deadline, report);) {
    }
    Json document = Json::parse(report, nullptr, false);
    if (document.is_discarded()) {
        throw Error("cannot be read: " + program.string() + " ended before it had told of it");
    }
    return document;
}

/// Of the fonts that a drawing uses, those that somebody must have.
bool mustBeHad(const Json& face) {
    const auto state = face.at("before").get<std::string>();
    return state != "embedded" && state != "generic";
}

DrawingFonts fontsIn(const Json& report, const std::vector<std::string>& files, Tally& tally) {
    DrawingFonts found;
    std::set<std::tuple<std::string, std::string, std::string>> met;
    const Json& documents = report.at("documents");
    for (std::size_t i = 0; i < files.size(); ++i) {
        const Json& document = documents.at(i);
        if (!document.at("opened").get<bool>()) {
            tally.fail(document.at("error").get<std::string>());
            continue;
        }
        for (const Json& face : document.at("faces")) {
            const std::tuple names{face.at("postScriptName").get<std::string>(),
                                   face.at("family").get<std::string>(),
                                   face.at("style").get<std::string>()};
            if (!mustBeHad(face) || !met.insert(names).second) {
                continue;
            }
            if (found.fonts.size() == maximumFonts) {
                tally.fail(files[i] + ": of its fonts only some were taken: there are more than " +
                           std::to_string(maximumFonts));
                return found;
            }
            CommandFont& font = found.fonts.emplace_back();
            std::tie(font.postScriptName, font.familyName, font.styleName) = names;
            found.files.push_back(files[i]);
        }
    }
    return found;
}

} // namespace

bool meansDrawing(const std::string& word) {
    std::string ending = fs::path(word).extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](unsigned char c) { return std::tolower(c); });
    std::error_code problem;
    return (ending == ".svg" || ending == ".svgz") && fs::is_regular_file(word, problem);
}

DrawingFonts fontsOfDrawings(const std::vector<std::string>& files, Tally& tally) {
    const CancelBySignals cancel;
    std::vector<std::string> taken = files;
    if (taken.size() > mostDrawings) {
        tally.fail(taken[mostDrawings] + ": left out, as are all behind it: at most " +
                   std::to_string(mostDrawings) + " drawings are read together");
        taken.resize(mostDrawings);
    }
    try {
        return fontsIn(reportOf(taken), taken, tally);
    } catch (const Cancelled&) {
        throw Cancelled(taken.front() + ": " + translated("cancelled before it was read"));
    } catch (const Json::exception&) {
        throw Error(taken.front() + ": cannot be read: " + reader + " tells of it in another form");
    } catch (const std::exception& error) {
        throw Error(taken.front() + ": " + error.what());
    }
}

std::vector<Container> containersOfDrawings(const Places& places,
                                            const std::vector<std::string>& files, Tally& tally) {
    const DrawingFonts used = fontsOfDrawings(files, tally);
    const auto library = openScanned(places);
    Activation activation(places);
    const auto drawing = readDrawing(*library, activation, used.fonts);
    std::vector<Container> containers;
    for (std::size_t i = 0; i < drawing.size(); ++i) {
        const auto& choices = drawing[i].choices;
        const std::string name = used.files[i] + ": " + drawing[i].name;
        const auto count = std::count_if(choices.begin(), choices.end(),
                                         [](const auto& choice) { return choice.isExact; });
        const auto container =
            count == 0 ? std::nullopt : library->container(choices.front().container);
        if (!container) {
            drawing[i].isShown ? tally.remark(name + ": shown by the desktop, not by the library")
                               : tally.fail(name + ": not in the library");
            continue;
        }
        if (count > 1) {
            tally.remark(name + ": in " + std::to_string(count) + " containers; taken is " +
                         called(*container));
        }
        containers.push_back(*container);
    }
    return containers;
}

int readDrawingsCommand(const std::vector<std::string>& files, bool json) {
    Tally tally(json, "fonts");
    const DrawingFonts used = fontsOfDrawings(files, tally);
    for (const CommandFont& font : used.fonts) {
        tally.add(*font.postScriptName, {{"family", *font.familyName},
                                         {"style", *font.styleName},
                                         {"postScriptName", *font.postScriptName}});
    }
    return tally.finish();
}

} // namespace manager
