// SPDX-License-Identifier: MIT
// One run of the program: start-up, each drawing in turn, shut-down.
#pragma once

#include "host/adm/headlessview.h"
#include "host/adm/scripteduser.h"
#include "host/cli/consolefrontend.h"
#include "host/cli/options.h"
#include "host/cli/report.h"
#include "host/core/desktop.h"
#include "host/qt/windows.h"
#include "host/suites/application.h"

#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>

namespace host {

/// The command line asks for something that does not exist.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// [main-thread] Runs once.
class Session {
public:
    using Clock = std::chrono::steady_clock;
    /// [main-thread] Called with each document's part of the report as soon as it is complete.
    using Progress = std::function<void(const DocumentReport&)>;

    /// `options` and `frontend` outlive the session; `start` is when the program was started.
    /// Throws UsageError when the answers to dialogs cannot be read.
    Session(const Options& options, ConsoleFrontend& frontend, Clock::time_point start);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session();

    /// What goes wrong with documents and plug-ins is in the report. Throws UsageError when a fault
    /// cannot be built in.
    [[nodiscard]] RunReport run(const Progress& progress = {});

private:
    void startPlugin();
    void reloadPlugin();
    DocumentReport openOne(const std::filesystem::path& file);
    void showToPlugins(OpenDocument& document, DocumentReport& report);
    void save(const OpenDocument& document, DocumentReport& report);
    /// Windows where there is a display, or where pictures of them are wanted.
    DialogView& chooseView();
    void showAlert(const Alert& alert);
    /// Serves timers and waiting events.
    void idle();
    double sinceStart() const;

    const Options& options_;
    ConsoleFrontend& frontend_;
    Clock::time_point start_;
    RunReport report_;
    Application application_;
    ScriptedUser user_;
    HeadlessView headlessView_;
    std::unique_ptr<Windows> windows_;
    LateView view_{[this]() -> DialogView& { return chooseView(); }};
    std::unique_ptr<DesktopPresence> desktop_;
    Plugin* plugin_ = nullptr;
};

} // namespace host
