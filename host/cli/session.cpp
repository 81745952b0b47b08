// SPDX-License-Identifier: MIT
// The course of a run.
#include "host/cli/session.h"

#include "host/cli/bundlesearch.h"
#include "host/cli/sabotage.h"
#include "host/core/text.h"
#include "host/suites/documentsamples.h"
#include "platform/application.h"
#include "system/displays.h"

#include <exception>
#include <new>
#include <utility>

namespace host {

namespace {

ApplicationOptions applicationOptions(const Options& options) {
    ApplicationOptions result;
    result.core.locale = options.locale;
    result.svg.keepGroups = options.keepGroups;
    result.svg.language = options.locale;
    return result;
}

std::vector<Answer> answersOf(const Options& options) {
    try {
        return options.answers ? readAnswers(*options.answers) : std::vector<Answer>{};
    } catch (const AnswersError& problem) {
        throw UsageError(problem.what());
    }
}

/// Closes a document that a plug-in may have closed already, whatever way its showing ends.
class CloseAtEnd {
public:
    CloseAtEnd(Application& application, DocumentSerial serial)
        : application_(application), serial_(serial) {}
    CloseAtEnd(const CloseAtEnd&) = delete;
    CloseAtEnd& operator=(const CloseAtEnd&) = delete;
    ~CloseAtEnd() { application_.closeDocument(serial_); }

private:
    Application& application_;
    DocumentSerial serial_;
};

double milliseconds(Session::Clock::duration duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

} // namespace

Session::Session(const Options& options, ConsoleFrontend& frontend, Clock::time_point start)
    : options_(options), frontend_(frontend), start_(start),
      application_(frontend, applicationOptions(options)),
      user_(application_.dialogs(), answersOf(options), ScriptedUser::AtEnd::GiveUp),
      headlessView_(application_.dialogs(), user_,
                    [this](std::uint32_t ticks) { desktop_->waitForEvents(ticks); }) {
    application_.dialogs().setView(&view_);
    frontend_.setAlertWindow([this](const Alert& alert) { showAlert(alert); });
}

Session::~Session() {
    // Plug-ins are shut down after the views have gone.
    application_.dialogs().setView(nullptr);
    frontend_.setAlertWindow({});
}

RunReport Session::run(const Progress& progress) {
    for (const std::string& fault : options_.misbehave) {
        const std::string problem = applySabotage(application_.core(), fault);
        if (!problem.empty()) {
            throw UsageError("--misbehave: " + problem);
        }
    }
    if (!options_.noPlugin) {
        desktop_ = std::make_unique<DesktopPresence>(application_.core());
        startPlugin();
    }
    report_.startUpMs = sinceStart();
    report_.fonts = application_.fonts().catalogue().faces().size();
    if (options_.about && plugin_ != nullptr) {
        report_.pluginFailed = application_.core().askAbout(*plugin_) != kNoErr;
    }
    for (const std::filesystem::path& file : options_.files) {
        if (options_.reload && !report_.documents.empty()) {
            reloadPlugin();
        }
        report_.documents.push_back(openOne(file));
        if (progress) {
            progress(report_.documents.back());
        }
        idle();
    }
    application_.shutDownPlugins();
    user_.finish();
    report_.answersFailed = user_.failed();
    desktop_.reset();
    report_.alerts = frontend_.alerts();
    report_.errors = frontend_.errors();
    report_.misbehaviour = application_.core().ledger().entries();
    report_.calls = CallSite::counts();
    report_.totalMs = sinceStart();
    return std::move(report_);
}

void Session::startPlugin() {
    try {
        const auto bundle = options_.plugin ? options_.plugin : findPlugin();
        if (!bundle) {
            throw PluginError("no plug-in found; name one with --plugin, or go without by "
                              "--no-plugin");
        }
        plugin_ = &application_.loadPlugin(*bundle);
        application_.announceStart();
        report_.plugin = plugin_->name();
    } catch (const PluginError& problem) {
        frontend_.reportError(problem.what());
        report_.pluginFailed = true;
    }
}

void Session::reloadPlugin() {
    if (plugin_ == nullptr) {
        return;
    }
    if (!plugin_->unload()) {
        report_.pluginFailed = true;
        return;
    }
    try {
        const SPErr error = plugin_->reload();
        if (error != kNoErr) {
            frontend_.reportError(plugin_->name() + ": the plug-in was reloaded with error " +
                                  errorText(error));
            report_.pluginFailed = true; // it may not look at any further drawing
        }
        ++report_.reloads;
    } catch (const PluginError& problem) {
        frontend_.reportError(problem.what());
        report_.pluginFailed = true;
        plugin_ = nullptr;
    }
}

DocumentReport Session::openOne(const std::filesystem::path& file) {
    DocumentReport report;
    report.file = file.string();
    try {
        const Clock::time_point begin = Clock::now();
        OpenDocument& document = application_.openDocument(file);
        report.opened = true;
        report.timings.open = milliseconds(Clock::now() - begin);
        showToPlugins(document, report);
    } catch (const DocumentError& problem) {
        report.error = problem.what();
    } catch (const std::bad_alloc&) {
        report.error = file.string() + ": too large for the memory that there is";
    } catch (const std::exception& problem) {
        report.error = file.string() + ": " + problem.what();
    }
    if (!report.error.empty()) {
        frontend_.reportError(report.error);
    }
    report.timings.outcome = sinceStart();
    return report;
}

void Session::showToPlugins(OpenDocument& document, DocumentReport& report) {
    const DocumentSerial serial = document.serial();
    const CloseAtEnd closing(application_, serial);
    const FaceSurvey survey(document, application_.fonts());
    report.faces = survey.asTaken();
    const Clock::time_point begin = Clock::now();
    report.checkFailed = application_.announceOpened() != kNoErr;
    user_.edit([&] { return application_.undo(serial); },
               [&] { return application_.redo(serial); });
    report.dialogs = user_.takeShown();
    report.timings.plugins = milliseconds(Clock::now() - begin);
    if (plugin_ != nullptr) {
        application_.refreshFonts();
    }
    OpenDocument* const stillOpen = application_.documents().find(serial);
    if (stillOpen == nullptr) {
        report.closedByPlugin = true;
        return;
    }
    report.faces = survey.compareWith(*stillOpen, application_.fonts());
    if (options_.save) {
        save(*stillOpen, report);
    }
}

void Session::save(const OpenDocument& document, DocumentReport& report) {
    try {
        document.document().save(options_.saveThrough.empty() ? *options_.save
                                                              : options_.saveThrough);
        report.savedAs = options_.save->string();
    } catch (const DocumentError& problem) {
        report.error = problem.what();
    } catch (const std::bad_alloc&) {
        report.error =
            options_.save->string() + ": too large to be made in the memory that there is";
    }
}

DialogView& Session::chooseView() {
    const DesktopEvents events{PLEventFileDescriptor, [this] {
                                   return desktop_ != nullptr ? desktop_->dispatchEvents() : 0;
                               }};
    if (!options_.headless) {
        windows_ =
            loadWindows(application_.dialogs(), fontSourceOf(application_), events, Screen::User);
    }
    if (windows_ != nullptr) {
        user_.setAtEnd(ScriptedUser::AtEnd::Leave);
    } else if (options_.pictures) {
        windows_ = loadWindows(application_.dialogs(), fontSourceOf(application_), events,
                               Screen::Nowhere);
    }
    if (windows_ == nullptr) {
        if (options_.pictures) {
            frontend_.reportError(options_.pictures->string() +
                                  ": no pictures, as there is nothing to draw windows with");
        }
        return headlessView_;
    }
    windows_->setUser(&user_);
    if (options_.pictures) {
        windows_->savePictures(*options_.pictures);
    }
    return *windows_;
}

/// Nobody closes it without a display, or when a script answers.
void Session::showAlert(const Alert& alert) {
    if (!options_.headless && !options_.answers && sys::namesDisplay()) {
        static_cast<void>(view_.metrics()); // chooses the view
        if (windows_ != nullptr && user_.atEnd() == ScriptedUser::AtEnd::Leave) {
            windows_->showAlert(alert);
        }
    }
}

void Session::idle() {
    if (desktop_ != nullptr) {
        desktop_->dispatchEvents();
    }
    application_.core().runTimers();
}

double Session::sinceStart() const {
    return milliseconds(Clock::now() - start_);
}

} // namespace host
