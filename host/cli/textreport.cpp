// SPDX-License-Identifier: MIT
// The report for people, and what the exit status is.
#include "host/cli/exitstatus.h"
#include "host/cli/report.h"
#include "host/cli/table.h"

#include <algorithm>
#include <sstream>

namespace host {

namespace {

TableLine lineOf(const FaceOutcome& face) {
    std::string runs = std::to_string(face.runs);
    if (face.runsNow != face.runs) {
        runs += " -> " + std::to_string(face.runsNow);
    }
    return {printable(face.style.empty() ? face.family : face.family + " " + face.style),
            printable(face.postScriptName), face.before ? textOf(*face.before) : "-",
            textOf(face.after), runs};
}

std::string endOf(const ShownDialog& dialog) {
    return dialog.givenUp ? "given up" : "ended by item " + std::to_string(dialog.ending.item);
}

std::string textOfDialog(const ShownDialog& dialog) {
    constexpr std::size_t mostRows = 50;
    std::string text =
        "  dialog \"" + printable(dialog.title) + "\", " + endOf(dialog) + "; it had shown\n";
    const std::size_t count = std::min(dialog.rows.size(), mostRows);
    for (std::size_t i = 0; i < count; ++i) {
        text.append(4 + 2 * std::size_t{dialog.rows[i].level}, ' ');
        text += printable(dialog.rows[i].words) + '\n';
    }
    if (count < dialog.rows.size()) {
        text += "    and " + std::to_string(dialog.rows.size() - count) + " more rows\n";
    }
    for (const ShownDialog::Button& button : dialog.buttons) {
        text += "    button " + std::to_string(button.item) + ": " + printable(button.text) +
                (button.enabled ? "\n" : " (disabled)\n");
    }
    return text;
}

} // namespace

bool DocumentReport::missesFonts() const {
    return std::any_of(faces.begin(), faces.end(),
                       [](const FaceOutcome& face) { return face.after == FaceState::Missing; });
}

int RunReport::exitStatus(bool failOnMissing) const {
    if (answersFailed) {
        return exitAnswersFailed;
    }
    if (pluginFailed ||
        std::any_of(documents.begin(), documents.end(),
                    [](const DocumentReport& document) { return document.checkFailed; })) {
        return exitPluginFailed;
    }
    if (std::any_of(documents.begin(), documents.end(),
                    [](const DocumentReport& document) { return !document.error.empty(); })) {
        return exitDocumentFailed;
    }
    const bool missing =
        std::any_of(documents.begin(), documents.end(),
                    [](const DocumentReport& document) { return document.missesFonts(); });
    return missing && failOnMissing ? exitFontsMissing : exitSuccess;
}

std::string textOfDocument(const DocumentReport& document) {
    if (!document.opened) {
        return {};
    }
    std::vector<TableLine> lines{{"face", "PostScript name", "before", "after", "runs"}};
    std::transform(document.faces.begin(), document.faces.end(), std::back_inserter(lines), lineOf);
    std::string text = printable(document.file) + "\n";
    text += document.faces.empty() ? "  no text\n" : tableOf(lines);
    if (document.closedByPlugin) {
        text += "  (closed by the plug-in; states are those before)\n";
    }
    for (const ShownDialog& dialog : document.dialogs) {
        text += textOfDialog(dialog);
    }
    if (!document.savedAs.empty()) {
        text += "  saved as " + printable(document.savedAs) + "\n";
    }
    return text;
}

std::string textOfAbout(const RunReport& report) {
    std::string text;
    for (const Alert& alert : report.alerts) {
        if (alert.kind == AlertKind::About) {
            std::istringstream lines(alert.title + "\n" + alert.text);
            for (std::string line; std::getline(lines, line);) {
                text += printable(line) + "\n";
            }
        }
    }
    return text;
}

std::string textOfSelfTest(const RunReport& report) {
    return report.pluginFailed ? "the plug-in does not work\n"
                               : report.plugin + ": loaded, started and shut down; " +
                                     std::to_string(report.fonts) + " fonts\n";
}

std::string textOfCalls(const RunReport& report) {
    std::string text;
    for (const CallSite::Count& call : report.calls) {
        text += std::to_string(call.count) + "\t" + call.suite + " / " + call.call + "\n";
    }
    return text;
}

} // namespace host
