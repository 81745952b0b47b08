// SPDX-License-Identifier: MIT
// The course of a replacement: each drawing is read, changed and written before the next is read.
#include "host/cli/replacecommand.h"

#include "host/check/finddrawings.h"
#include "host/cli/exitstatus.h"
#include "host/cli/table.h"
#include "host/cli/textdifference.h"
#include "host/documents/svg/svgreader.h"
#include "host/replace/replacing.h"

#include <cerrno>
#include <exception>
#include <fstream>
#include <iostream>
#include <new>
#include <set>
#include <system_error>

namespace host {

namespace {

namespace fs = std::filesystem;

void tellProblem(const std::string& problem) {
    std::cerr << "error: " << printable(problem) << '\n';
}

ReplacementTable tableOf(const ReplaceOptions& options) {
    ReplacementTable table;
    for (const std::string& rule : options.rules) {
        table.add(rule, "--with " + rule);
    }
    for (const fs::path& file : options.tables) {
        std::ifstream stream(file, std::ios::binary);
        if (!stream) {
            throw TableError(file.string() + ": " + std::generic_category().message(errno));
        }
        table.read(stream, file.string());
    }
    if (table.empty()) {
        throw TableError("no rule \"old = new\" in --with or --table");
    }
    return table;
}

/// A name that is free, for the old drawing.
fs::path backupOf(const fs::path& file) {
    fs::path backup = file;
    backup += ".orig";
    for (int number = 2; fs::exists(fs::symlink_status(backup)); ++number) {
        backup = file;
        backup += ".orig" + std::to_string(number);
    }
    return backup;
}

/// A drawing and, if it was found in a folder, where it stands there.
struct Found {
    fs::path file;
    fs::path inFolder;
};

class Replacing {
public:
    Replacing(const ReplaceOptions& options, const std::string& locale,
              const std::function<bool(const std::string&)>& print)
        : options_(options), print_(print), table_(tableOf(options)) {
        svg_.language = locale;
    }

    int run() {
        const std::vector<Found> drawings = find();
        std::error_code ignored;
        intoFolder_ = options_.output && (drawings.size() != 1 || !drawings[0].inFolder.empty() ||
                                          fs::is_directory(*options_.output, ignored));
        for (const Found& drawing : drawings) {
            one(drawing);
        }
        if (!written_) {
            std::cerr << "error: the report could not be written\n";
            return exitOutputFailed;
        }
        return failed_ ? exitDocumentFailed : exitSuccess;
    }

private:
    std::vector<Found> find() {
        std::vector<Found> drawings;
        for (const fs::path& path : options_.paths) {
            std::error_code ignored;
            const bool folder = fs::is_directory(path, ignored);
            for (fs::path& file :
                 findDrawings({path}, [&](const std::string& problem) { fail(problem); })) {
                fs::path inFolder = folder ? file.lexically_relative(path) : fs::path();
                drawings.push_back({std::move(file), std::move(inFolder)});
            }
        }
        return drawings;
    }

    void one(const Found& drawing) {
        try {
            Document document = readSvg(drawing.file, svg_);
            const std::vector<ReplacedFace> replaced = replaceFaces(document, table_, catalogue_);
            tell(drawing, document, replaced);
        } catch (const DocumentError& problem) {
            fail(problem.what());
        } catch (const std::bad_alloc&) {
            fail(drawing.file.string() + ": too large for the memory that there is");
        } catch (const std::exception& problem) {
            fail(drawing.file.string() + ": " + problem.what());
        }
    }

    void tell(const Found& drawing, const Document& document,
              const std::vector<ReplacedFace>& replaced) {
        std::string text = printable(drawing.file.string()) + ":";
        if (replaced.empty()) {
            text += " nothing to replace\n";
        } else {
            text += "\n";
        }
        for (const ReplacedFace& face : replaced) {
            text += "  " + printable(face.from) + " by " + printable(face.to) + " in " +
                    std::to_string(face.runs) + (face.runs == 1 ? " text\n" : " texts\n");
        }
        if (options_.dryRun) {
            text += replaced.empty() ? "" : difference(drawing, document);
        } else if (!replaced.empty() || options_.output) {
            text += "  saved as " + printable(save(drawing, document).string()) + "\n";
        }
        written_ = written_ && print_(text);
    }

    static std::string difference(const Found& drawing, const Document& document) {
        const ChangedText texts = document.changedText();
        return differenceOf(texts.before, texts.after, drawing.file.string());
    }

    fs::path save(const Found& drawing, const Document& document) {
        if (options_.inPlace) {
            const fs::path backup = backupOf(drawing.file);
            // Of what a link leads to, as that is what is replaced.
            fs::copy_file(drawing.file, backup, fs::copy_options::none);
            try {
                document.save(drawing.file);
            } catch (...) {
                std::error_code ignored;
                fs::remove(backup, ignored);
                throw;
            }
            return drawing.file;
        }
        fs::path target = *options_.output;
        if (intoFolder_) {
            target /= drawing.inFolder.empty() ? drawing.file.filename() : drawing.inFolder;
            fs::create_directories(target.parent_path());
        }
        std::error_code ignored;
        if (fs::equivalent(target, drawing.file, ignored)) {
            throw DocumentError(drawing.file.string(),
                                "would be written over; --in-place does so and keeps the old one");
        }
        if (!targets_.insert(target.lexically_normal()).second) {
            throw DocumentError(drawing.file.string(),
                                "another drawing was saved as " + target.string());
        }
        document.save(target);
        return target;
    }

    void fail(const std::string& problem) {
        tellProblem(problem);
        failed_ = true;
    }

    const ReplaceOptions& options_;
    const std::function<bool(const std::string&)>& print_;
    ReplacementTable table_;
    SvgOptions svg_;
    Catalogue catalogue_;
    std::set<fs::path> targets_; ///< so far
    bool intoFolder_ = false;
    bool failed_ = false;
    bool written_ = true;
};

} // namespace

int runReplace(const ReplaceOptions& options, const std::string& locale,
               const std::function<bool(const std::string&)>& print) {
    try {
        return Replacing(options, locale, print).run();
    } catch (const TableError& problem) {
        tellProblem(problem.what());
        return exitUsage;
    }
}

} // namespace host
