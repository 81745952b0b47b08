// SPDX-License-Identifier: MIT
// Putting the parts of the host together.
#include "host/suites/application.h"

#include "host/suites/artsuites.h"

#include <utility>

namespace host {

Application::Application(Frontend& frontend, ApplicationOptions options)
    : svg_(options.svg), fonts_(std::move(options.fonts)),
      core_(frontend, std::move(options.core)) {
    provideArtSuites(core_.suites());
    provideFontSuite(core_.suites());
    provideTextSuites(core_.suites());
    // A dialog that offers fonts offers those, too, that were activated a moment ago.
    dialogs_.setBeforeCreate([this] { refreshFonts(); });
}

Plugin& Application::loadPlugin(const std::filesystem::path& bundle) {
    Plugin& plugin = core_.load(bundle);
    plugin.startUp();
    return plugin;
}

OpenDocument& Application::openDocument(const std::filesystem::path& file) {
    return documents_.add(file, readSvg(file, svg_));
}

SPErr Application::announceOpened() {
    const DocumentSerial serial =
        documents_.current() != nullptr ? documents_.current()->serial() : noDocument;
    const SPErr answer = core_.notify(kAIDocumentOpenedNotifier);
    change(serial, &Document::endStep);
    return answer;
}

bool Application::change(DocumentSerial serial, bool (Document::*step)()) {
    OpenDocument* const document = documents_.find(serial);
    const bool changed = document != nullptr && (document->document().*step)();
    if (changed) {
        core_.notify(kAIDocumentChangedNotifier);
    }
    return changed;
}

bool Application::refreshFonts() {
    const bool changed = fonts_.refresh();
    if (changed) {
        documents_.forgetFonts();
    }
    return changed;
}

void Application::shutDownPlugins() {
    core_.shutDownAll();
}

} // namespace host
