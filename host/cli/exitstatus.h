// SPDX-License-Identifier: MIT
// The program's exit status. Where several apply, it is the greatest below 64.
#pragma once

namespace host {

enum ExitStatus : int {
    exitSuccess = 0,
    exitFontsMissing = 1,     ///< only with --fail-on-missing
    exitDocumentFailed = 2,   ///< a document could not be opened or saved
    exitPluginFailed = 3,     ///< the plug-in, its unloading, its start or a check of its failed
    exitAnswersFailed = 4,    ///< an answer to a dialog could not be given
    exitMissingAndFailed = 5, ///< of a check: 1 and 2
    exitUsage = 64,           ///< the command line is wrong
    exitOutputFailed = 74,    ///< the report could not be written
};

} // namespace host
