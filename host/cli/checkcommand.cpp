// SPDX-License-Identifier: MIT
// The course of a check.
#include "host/cli/checkcommand.h"

#include "host/check/finddrawings.h"
#include "host/cli/exitstatus.h"
#include "host/cli/table.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fstream>
#include <iostream>
#include <system_error>
#include <thread>

namespace host {

namespace {

/// How far it is, on a line of a terminal that is written over.
class Progress {
public:
    explicit Progress(std::size_t total)
        : total_(total), onTerminal_(::isatty(STDERR_FILENO) == 1) {}
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { wipe(); }

    void tell(std::size_t done) {
        constexpr std::chrono::milliseconds pause{100};
        const auto now = std::chrono::steady_clock::now();
        if (onTerminal_ && now - last_ >= pause) {
            last_ = now;
            shown_ = true;
            std::cerr << '\r' << done << " of " << total_ << " drawings" << std::flush;
        }
    }
    /// For other lines to be written.
    void wipe() {
        if (shown_) {
            std::cerr << "\r\x1B[K" << std::flush;
            shown_ = false;
        }
    }

private:
    std::size_t total_;
    bool onTerminal_;
    bool shown_ = false;
    std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();
};

/// Writes the parts of the report as they come.
class Writer {
public:
    Writer(const CheckOptions& options, const std::function<bool(const std::string&)>& print)
        : options_(options), print_(print) {}

    void add(const CheckedDrawing& drawing) {
        if (options_.missingOnly && drawing.error.empty() && !drawing.missesFonts() &&
            !drawing.lacksCharacters()) {
            return;
        }
        switch (options_.form) {
        case CheckForm::Text:
            write(textOfChecked(drawing));
            break;
        case CheckForm::JsonLines:
            write(jsonOfChecked(drawing) + "\n");
            break;
        case CheckForm::Json:
            write((first_ ? "{\"drawings\": [\n" : ",\n") + jsonOfChecked(drawing));
            break;
        }
        first_ = false;
    }

    void finish(const CheckSummary& summary) {
        switch (options_.form) {
        case CheckForm::Text:
            write((first_ ? "" : "\n") + textOfSummary(summary));
            break;
        case CheckForm::JsonLines:
            write(jsonOfSummary(summary) + "\n");
            break;
        case CheckForm::Json: // the summary is an object of one member
            write((first_ ? "{\"drawings\": [\n],\n" : "\n],\n") +
                  jsonOfSummary(summary).substr(1) + "\n");
            break;
        }
    }

    [[nodiscard]] bool written() const { return written_; }

private:
    void write(const std::string& text) { written_ = written_ && print_(text); }

    const CheckOptions& options_;
    const std::function<bool(const std::string&)>& print_;
    bool first_ = true;
    bool written_ = true;
};

void tellProblem(const std::string& problem) {
    std::cerr << "error: " << printable(problem) << '\n';
}

/// Also those of the list. False when that cannot be read.
bool addListed(const CheckOptions& options, std::vector<std::filesystem::path>& paths) {
    if (!options.list) {
        return true;
    }
    std::ifstream file;
    if (*options.list != "-") {
        file.open(*options.list, std::ios::binary);
    }
    std::istream& list = *options.list == "-" ? std::cin : file;
    const auto listed = list ? readPathList(list) : std::vector<std::filesystem::path>();
    if (list.bad() || !list.eof()) {
        tellProblem(options.list->string() + ": " + std::generic_category().message(errno));
        return false;
    }
    paths.insert(paths.end(), listed.begin(), listed.end());
    return true;
}

int statusOf(const CheckSummary& summary, bool foldersUnread, const CheckOptions& options) {
    const bool failed = summary.unreadable != 0 || foldersUnread;
    const bool missing = options.failOnMissing && !summary.missing.empty();
    return failed ? (missing ? exitMissingAndFailed : exitDocumentFailed)
                  : (missing ? exitFontsMissing : exitSuccess);
}

} // namespace

int runCheck(const CheckOptions& options, const std::string& locale,
             const std::function<bool(const std::string&)>& print) {
    std::vector<std::filesystem::path> paths = options.paths;
    if (!addListed(options, paths)) {
        return exitUsage;
    }
    bool foldersUnread = false;
    const std::vector<std::filesystem::path> drawings =
        findDrawings(paths, [&](const std::string& problem) {
            tellProblem(problem);
            foldersUnread = true;
        });
    SvgOptions svg;
    svg.language = locale;
    Checker checker;
    Writer writer(options, print);
    {
        Progress progress(drawings.size());
        std::size_t done = 0;
        const unsigned jobs =
            options.jobs == 0 ? std::max(std::thread::hardware_concurrency(), 1U) : options.jobs;
        readAllFaces(drawings, svg, jobs, [&](DrawingFaces faces) {
            const CheckedDrawing checked = checker.check(std::move(faces));
            progress.wipe();
            if (!checked.error.empty()) {
                tellProblem(checked.error);
            }
            writer.add(checked);
            progress.tell(++done);
        });
    }
    const CheckSummary summary = checker.summary();
    writer.finish(summary);
    if (!writer.written()) {
        std::cerr << "error: the report could not be written\n";
        return exitOutputFailed;
    }
    return statusOf(summary, foldersUnread, options);
}

} // namespace host
