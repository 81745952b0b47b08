// SPDX-License-Identifier: MIT
// The plug-in's dialogs in a host that shows nothing of its own.
#pragma once

#include "GlyphoraDialog.h"
#include "PluginMain.h"
#include "host/suites/application.h"
#include "tests/support/scriptedplatform/scriptedplatform.h"

#include <optional>
#include <string>
#include <vector>

class SilentFrontend : public host::Frontend {
public:
    void showAlert(const host::Alert&) override {}
    void reportError(std::string_view) override {}
    void reportMisbehaviour(std::string_view, std::string_view) override {}
};

inline VexFontSuite::FontInfos missingFonts(std::int64_t count) {
    VexFontSuite::FontInfos fonts;
    for (std::int64_t i = 0; i < count; ++i) {
        Protocol::Font& font = fonts.emplace_back(new GLY::GLYFontInfo)->font;
        font.familyName = "Family " + std::to_string(i);
        font.styleName = "Regular";
        font.count = 3;
        for (const char* const name : {"1", "2", "3"}) {
            font.fontInfos.push_back({name, font.familyName + " in the set \"Brochures " + name +
                                                "\", version 2.001, 480 glyphs"});
        }
    }
    return fonts;
}

inline std::vector<host::InstalledFace> installedFonts(std::int64_t count) {
    std::vector<host::InstalledFace> faces;
    for (std::int64_t i = 0; i < count; ++i) {
        host::InstalledFace& face = faces.emplace_back();
        face.family = face.fullName = "Installed family " + std::to_string(i);
        face.style = "Regular";
        face.postScriptName = "Installed-" + std::to_string(i);
        face.file = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
    }
    return faces;
}

/// The plug-in in a host, and a font manager that knows no font.
struct Stage {
    explicit Stage(std::int64_t missing, std::int64_t installed = 0)
        : application(frontend, {{}, {}, [installed] { return installedFonts(installed); }}),
          fonts(missingFonts(missing)) {
        platform.answers = {scripted::textAnswer(
            "<cmd>answer</cmd>\n<protocolVersion>2.0</protocolVersion>\n</cmd>\n")};
        plugin.startUp();
        serving.emplace(application.core(), &plugin);
    }
    ~Stage() { serving.reset(); }

    void run(GlyphoraDialog& dialog) {
        dialog.setFontData(fonts);
        platform.sent.clear();
        dialog.Modal(plugin.ref(), "Glyphora", 16000, kADMModalDialogStyle, 0);
    }

    scripted::Platform platform;
    SilentFrontend frontend;
    host::Application application;
    host::Plugin& plugin = application.core().addBuiltIn("Glyphora", PluginMain, PLUGIN_RESOURCES);
    VexFontSuite::FontInfos fonts;
    std::optional<host::Core::ServeScope> serving;
};
