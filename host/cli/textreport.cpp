// SPDX-License-Identifier: MIT
// The report for people, and what the exit status is.
#include "host/cli/exitstatus.h"
#include "host/cli/report.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <glib.h>
#include <sstream>
#include <string_view>

namespace host {

namespace {

constexpr std::size_t columnCount = 5;
/// Columns are not made wider for the sake of a longer text in one line.
constexpr std::size_t widestColumn = 60;
using Line = std::array<std::string, columnCount>;

/// The width on a terminal, of a text that is printable.
std::size_t widthOf(const std::string& text) {
    std::size_t width = 0;
    for (const char* c = text.c_str(); *c != '\0'; c = g_utf8_next_char(c)) {
        const gunichar code = g_utf8_get_char(c);
        width += g_unichar_iszerowidth(code) != 0 ? 0 : g_unichar_iswide(code) != 0 ? 2 : 1;
    }
    return width;
}

/// Characters that move the cursor or turn the text around it.
bool isControl(std::uint32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || code == 0x61C || code == 0x200E ||
           code == 0x200F || (code >= 0x2028 && code <= 0x202E) ||
           (code >= 0x2066 && code <= 0x2069);
}

/// Names come from outside: what would move the cursor or turn text around is shown as "?", and so
/// is what is no UTF-8.
std::string printable(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const gunichar code =
            g_utf8_get_char_validated(text.data(), static_cast<gssize>(text.size()));
        const bool valid = g_unichar_validate(code) != 0;
        const std::size_t length =
            valid ? static_cast<std::size_t>(g_utf8_next_char(text.data()) - text.data()) : 1;
        result += valid && !isControl(code) ? text.substr(0, length) : "?";
        text.remove_prefix(length);
    }
    return result;
}

Line lineOf(const FaceOutcome& face) {
    std::string runs = std::to_string(face.runs);
    if (face.runsNow != face.runs) {
        runs += " -> " + std::to_string(face.runsNow);
    }
    return {printable(face.style.empty() ? face.family : face.family + " " + face.style),
            printable(face.postScriptName), face.before ? textOf(*face.before) : "-",
            textOf(face.after), runs};
}

std::string tableOf(const std::vector<Line>& lines) {
    std::array<std::size_t, columnCount> widths{};
    for (const Line& line : lines) {
        for (std::size_t column = 0; column < columnCount; ++column) {
            widths[column] =
                std::max(widths[column], std::min(widthOf(line[column]), widestColumn));
        }
    }
    std::string text;
    for (const Line& line : lines) {
        text += ' ';
        for (std::size_t column = 0; column < columnCount; ++column) {
            text += ' ' + line[column];
            if (column + 1 < columnCount) {
                const std::size_t width = widthOf(line[column]);
                text.append(width < widths[column] ? widths[column] - width + 1 : 1, ' ');
            }
        }
        text += '\n';
    }
    return text;
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
    std::vector<Line> lines{{"face", "PostScript name", "before", "after", "runs"}};
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
