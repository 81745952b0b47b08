// SPDX-License-Identifier: MIT
// The host as a whole, without a window: plug-ins, documents and fonts together. Whatever shows it
// to a user does so as its Frontend.
#pragma once

#include "host/adm/dialogs.h"
#include "host/core/core.h"
#include "host/documents/svg/svgreader.h"
#include "host/suites/fontlist.h"
#include "host/suites/opendocuments.h"
#include "host/suites/textengine.h"

#include <filesystem>

namespace host {

struct ApplicationOptions {
    CoreOptions core;
    SvgOptions svg;
    Catalogue::Lister fonts = listInstalledFaces;
};

/// [main-thread] One at a time in a process.
class Application {
public:
    /// `frontend` outlives the application.
    explicit Application(Frontend& frontend, ApplicationOptions options = {});

    Core& core() noexcept { return core_; }
    FontList& fonts() noexcept { return fonts_; }
    OpenDocuments& documents() noexcept { return documents_; }
    TextEngine& textEngine() noexcept { return textEngine_; }
    Dialogs& dialogs() noexcept { return dialogs_; }

    /// Loads a plug-in and starts it up. Throws PluginError when it cannot.
    Plugin& loadPlugin(const std::filesystem::path& bundle);
    /// Tells all plug-ins that the application has started: their post-start-up.
    SPErr announceStart() { return core_.notify(kAIApplicationStartedNotifier); }

    /// Reads a drawing and makes it the current document. Throws DocumentError when it cannot be
    /// read.
    OpenDocument& openDocument(const std::filesystem::path& file);
    /// Tells all plug-ins that the current document was opened. What they have then replaced in it
    /// is one step, and announced as a change.
    SPErr announceOpened();
    /// Takes the last step of a document back, or makes it again, and announces the change; false
    /// when there is none.
    bool undo(DocumentSerial serial) { return change(serial, &Document::undo); }
    bool redo(DocumentSerial serial) { return change(serial, &Document::redo); }
    bool closeDocument(DocumentSerial serial) noexcept { return documents_.close(serial); }

    /// Notices fonts that came or went; true when any did.
    bool refreshFonts();

    /// Shuts all running plug-ins down, the last one first.
    void shutDownPlugins();

private:
    bool change(DocumentSerial serial, bool (Document::*step)());

    SvgOptions svg_;
    FontList fonts_;
    OpenDocuments documents_{fonts_};
    Core core_;
    Dialogs dialogs_{core_};
    TextEngine textEngine_{core_, documents_};
    Published<OpenDocuments> publishedDocuments_{documents_};
    Published<TextEngine> publishedEngine_{textEngine_};
    /// Shuts plug-ins down while everything that they call still lives.
    struct ShutDownFirst {
        Application& application;
        ~ShutDownFirst() { application.shutDownPlugins(); }
    } shutDownFirst_{*this};
};

} // namespace host
