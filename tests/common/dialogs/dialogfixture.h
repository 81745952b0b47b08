// SPDX-License-Identifier: MIT
// The plug-in in the host's real dialog manager, with a document that misses fonts, a user who does
// what the test says, and a font manager that answers what the test says.
#pragma once

#include "GlyphoraDialog.h"
#include "GlyphoraPlugin.h"
#include "PluginMain.h"
#include "platform/threads.h"
#include "tests/host/adm/dialogfixture.h"
#include "tests/host/suites/applicationfixture.h"
#include "tests/support/scriptedplatform/scriptedplatform.h"

#include <functional>
#include <stdexcept>

/// What the font manager says of the font FAMILY-Regular.
struct Answered {
    std::string family;
    int count = 0;
    bool isActive = false;
    std::vector<std::string> candidates = {}; ///< names; the value is "In " and the name
    std::string type = "OT_TT";
    std::string container = "7";
};

/// The document uses the families Aa, Bb, Cc, which the host lacks, and Present.
class ADialog : public testing::Test {
protected:
    using User = std::function<void(host::Dialog&)>;

    ADialog() {
        platform.processes.push_back({FourCharCode("QGLY"), 77, 0});
        plugin.startUp();
        dialogs.setView(&view);
        serving.emplace(core, &plugin);
        EXPECT_EQ(VexFontSuite::getMissingFontInfos(fonts), kNoErr);
        answer({{"Aa", 1}, {"Bb"}, {"Cc", 2, false, {"21", "22"}}});
    }
    ~ADialog() override {
        EXPECT_EQ(ThreadEndCritical(), threadProtocolErr);
        EXPECT_THAT(view.runs, testing::IsEmpty());
        serving.reset();
        application.shutDownPlugins();
        EXPECT_THAT(frontend.errors, testing::IsEmpty());
        EXPECT_THAT(frontend.misbehaviour, testing::IsEmpty());
    }

    /// To every question from now on.
    void answer(const std::vector<Answered>& answers, int showWindow = 1) {
        std::string text = "<cmd>answer</cmd>\n<protocolVersion>2.0</protocolVersion>\n";
        for (const Answered& font : answers) {
            const std::string psName = font.family + "-Regular";
            text += "<font><syncID>" + psName + "-Regular</syncID><psName>" + psName +
                    "</psName><familyName>" + font.family +
                    "</familyName><styleName>Regular</styleName><type>" + font.type +
                    "</type><count>" + std::to_string(font.count) + "</count><isActive>" +
                    (font.isActive ? "1" : "0") + "</isActive><containerID>" + font.container +
                    "</containerID>";
            for (const std::string& name : font.candidates) {
                text +=
                    "<fontInfo><name>" + name + "</name><value>In " + name + "</value></fontInfo>";
            }
            text += "</font>\n";
        }
        platform.answers = {scripted::textAnswer(
            text + "<showWindow>" + std::to_string(showWindow) + "</showWindow>\n</cmd>\n")};
    }

    /// Has the next dialog that opens used by `user`, who cancels it unless it has ended by then.
    void expect(User user) {
        view.runs.emplace_back([this, use = std::move(user)](host::Dialog& dialog) {
            use(dialog);
            dialogs.giveUp(dialog);
        });
    }
    /// Opens the dialog as the check does; the item that ended it.
    std::int32_t run(GlyphoraDialog& dialog, User user) {
        EXPECT_EQ(VexFontSuite::requestFonts(fonts).succeeded, 1);
        platform.sent.clear();
        dialog.setFontData(fonts);
        expect(std::move(user));
        return dialog.Modal(plugin.ref(), "Glyphora", 16000, 0, 0);
    }
    std::int32_t run(User user) {
        GlyphoraDialog dialog;
        return run(dialog, std::move(user));
    }

    static host::Item& item(host::Dialog& dialog, std::int32_t id) { return *dialog.item(id); }
    static std::deque<std::unique_ptr<host::Row>>& rows(host::Dialog& dialog) {
        return dialog.item(fontListItem)->tree->top().rows;
    }
    /// Row "Bb", or candidate 1 of it: "Bb 1".
    static host::Row& row(host::Dialog& dialog, const std::string& name) {
        host::Row* found = nullptr;
        for (const auto& row : rows(dialog)) {
            if (infoOf(*row).font.familyName == name.substr(0, 2)) {
                found = row.get();
            }
        }
        if (found == nullptr) {
            throw std::out_of_range("no row " + name);
        }
        return name.size() > 2
                   ? *found->children->rows.at(static_cast<std::size_t>(name.back() - '0'))
                   : *found;
    }
    static GLY::GLYFontInfo& infoOf(const host::Row& row) {
        return *static_cast<UserDataContainer*>(row.userData)->info;
    }
    static std::vector<std::string> families(host::Dialog& dialog) {
        std::vector<std::string> names;
        for (const auto& row : rows(dialog)) {
            names.push_back(infoOf(*row).font.familyName);
        }
        return names;
    }
    /// The last one is the active one if `active` names none.
    void select(host::Dialog& dialog, const std::vector<std::string>& names,
                const std::string& active = {}) {
        std::vector<host::Row*> chosen;
        for (const std::string& name : names) {
            chosen.push_back(&row(dialog, name));
        }
        host::Row* const last = chosen.empty() ? nullptr : chosen.back();
        dialogs.select(*dialog.item(fontListItem)->tree, std::move(chosen),
                       active.empty() ? last : &row(dialog, active));
    }
    void press(host::Dialog& dialog, std::int32_t id) { dialogs.press(*dialog.item(id)); }
    /// Chooses a font of the host's in the replace dialog that the button opens.
    void replaceBy(host::Dialog& dialog, std::size_t index) {
        expect([this, index](host::Dialog& inner) {
            host::Tree& tree = *inner.item(3)->tree;
            host::Row* const font = tree.top().rows.at(index).get();
            dialogs.select(tree, {font}, font);
            press(inner, kADMOKItemID);
        });
        press(dialog, replaceButton);
    }
    void pass(std::uint32_t milliseconds) {
        ticks += milliseconds * 60 / 1000;
        dialogs.runTimers();
    }
    /// What was sent since the last call.
    std::vector<std::string> sent() {
        std::vector<std::string> commands;
        for (const scripted::SentEvent& event : std::exchange(platform.sent, {})) {
            commands.push_back(event.directText());
        }
        return commands;
    }
    std::vector<std::string> documentFamilies() {
        std::vector<std::string> names;
        for (std::uint32_t run = 0; run < 4; ++run) {
            names.push_back(document.document().faceOf(document.document().run(run)).family);
        }
        return names;
    }

    scripted::Platform platform;
    std::uint32_t ticks = 0;
    host::test::ScriptedView view;
    std::vector<host::InstalledFace> faces{host::test::installed("Present", "Regular"),
                                           host::test::installed("Spare", "Bold")};
    host::test::RecordingFrontend frontend;
    host::Application application{
        frontend, {{"en_US", [this] { return ticks; }}, {}, [this] { return faces; }}};
    host::Core& core = application.core();
    host::Dialogs& dialogs = application.dialogs();
    host::Plugin& plugin = core.addBuiltIn("Glyphora", PluginMain, PLUGIN_RESOURCES);
    std::optional<host::Core::ServeScope> serving;
    host::OpenDocument& document = application.documents().add(
        "made.svg", host::test::makeDocument({{{{host::test::named("Aa", "Regular")},
                                                {host::test::named("Bb", "Regular")},
                                                {host::test::named("Cc", "Regular")},
                                                {host::test::named("Present", "Regular")}}}}));
    VexFontSuite::FontInfos fonts;
};
