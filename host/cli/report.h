// SPDX-License-Identifier: MIT
// What a run came to, and its two written forms.
#pragma once

#include "host/adm/scripteduser.h"
#include "host/core/callsite.h"
#include "host/core/frontend.h"
#include "host/core/ledger.h"
#include "host/suites/facesurvey.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

/// Milliseconds by a clock that never runs backwards.
struct DocumentTimings {
    double open = 0;    ///< reading the file
    double plugins = 0; ///< the plug-ins' part: the document-opened notification
    double outcome = 0; ///< from the start of the program to this document's outcome
};

struct DocumentReport {
    std::string file;
    bool opened = false;
    bool closedByPlugin = false; ///< faces are then those before
    std::string error;           ///< why it could not be opened or saved, else empty
    std::vector<FaceOutcome> faces;
    /// Those that plug-ins have shown while they looked at it, or since the document before.
    std::vector<ShownDialog> dialogs;
    bool checkFailed = false; ///< a plug-in answered the document-opened notification with an error
    std::string savedAs;
    DocumentTimings timings;

    [[nodiscard]] bool missesFonts() const;
};

struct RunReport {
    std::string plugin; ///< its name; empty: none
    bool pluginFailed = false;
    bool answersFailed = false; ///< a dialog could not be answered as the script wants it
    std::size_t fonts = 0;      ///< that the desktop offered at the start
    std::vector<DocumentReport> documents;
    std::vector<Alert> alerts;
    std::vector<std::string> errors;
    std::vector<Misbehaviour> misbehaviour;
    std::vector<CallSite::Count> calls;
    unsigned reloads = 0;
    double startUpMs = 0; ///< from the start of the program to the end of the post-start-up
    double totalMs = 0;

    [[nodiscard]] int exitStatus(bool failOnMissing) const;
};

/// A table of one document's faces, and the dialogs that came.
[[nodiscard]] std::string textOfDocument(const DocumentReport& document);
/// The about boxes that plug-ins have shown, a title and a text each.
[[nodiscard]] std::string textOfAbout(const RunReport& report);
/// One line on what was loaded.
[[nodiscard]] std::string textOfSelfTest(const RunReport& report);
/// The counts of suite calls, one per line.
[[nodiscard]] std::string textOfCalls(const RunReport& report);
/// All of it as one object.
[[nodiscard]] std::string jsonOf(const RunReport& report);

} // namespace host
