// SPDX-License-Identifier: MIT
// A plug-in whose resources are a folder of the test's, and a view that does what the test says.
#pragma once

#include "host/adm/dialogs.h"
#include "tests/host/core/recordingfrontend.h"
#include "tests/support/temporaryfolder.h"

#include <deque>
#include <functional>
#include <string>

namespace host::test {

/// Shows nothing. Each modal run does the next of `runs`, and whatever runs then.
class ScriptedView : public DialogView {
public:
    void runModal(Dialog& dialog) override {
        shown.push_back(dialog.title);
        ASSERT_FALSE(runs.empty()) << "a dialog ran that the test does not expect";
        const std::function<void(Dialog&)> run = runs.front();
        runs.pop_front();
        run(dialog);
        ASSERT_TRUE(dialog.ending) << "the test has not ended the dialog";
    }
    void endModal(Dialog& dialog) override { ended.push_back(dialog.title); }
    void dialogChanged(Dialog& /*dialog*/) override { ++changes; }
    void itemChanged(Item& /*item*/) override { ++changes; }
    void forget(Dialog& dialog) override { forgotten.push_back(dialog.title); }
    const TextMetrics& metrics() const override { return metrics_; }

    std::deque<std::function<void(Dialog&)>> runs;
    std::vector<std::string> shown;
    std::vector<std::string> ended;
    std::vector<std::string> forgotten;
    int changes = 0;

private:
    FixedMetrics metrics_;
};

/// Calls are the plug-in "owner"'s.
class DialogFixture : public CoreFixture {
protected:
    DialogFixture() {
        owner.startUp();
        dialogs.setView(&view);
        serving.emplace(core, &owner);
    }
    ~DialogFixture() override {
        serving.reset();
        core.shutDownAll();
    }

    /// Layout 1: buttons 1, 2 and 3, a tree 7, a flat list 4, a text 8.
    static std::string layoutText() {
        const auto widget = [](const char* type, int id) {
            return std::string("<item><widget class=\"") + type +
                   "\"><property name=\"itemID\" stdset=\"0\"><number>" + std::to_string(id) +
                   "</number></property></widget></item>";
        };
        return "<ui version=\"4.0\"><widget class=\"QDialog\"><property name=\"geometry\"><rect>"
               "<width>300</width><height>400</height></rect></property>"
               "<property name=\"windowTitle\"><string>Title</string></property>"
               "<layout class=\"QVBoxLayout\">" +
               widget("QLabel", 8) + widget("QTreeView", 7) + widget("QListView", 4) +
               widget("QPushButton", 1) + widget("QPushButton", 2) + widget("QPushButton", 3) +
               "</layout></widget></ui>";
    }

    ADMDialogRef create(const char* title = "Title", ADMDialogInitProc init = nullptr,
                        void* data = nullptr) {
        ADMDialogRef ref = nullptr;
        EXPECT_EQ(suite<ADMDialogSuite>()->Create(owner.ref(), "name", 1, kADMModalDialogStyle,
                                                  init, data, 0, &ref),
                  kNoErr);
        EXPECT_EQ(suite<ADMDialogSuite>()->SetText(ref, title), kNoErr);
        return ref;
    }
    /// Runs the dialog; the item that ended it.
    std::int32_t run(ADMDialogRef ref) {
        std::int32_t item = -1;
        EXPECT_EQ(suite<ADMDialogSuite>()->DisplayAsModal(ref, &item), kNoErr);
        return item;
    }
    /// The same, doing `during` meanwhile; -1 when it is only given up after that.
    std::int32_t run(ADMDialogRef ref, std::function<void(Dialog&)> during) {
        bool givenUp = false;
        view.runs.emplace_back([this, &givenUp, use = std::move(during)](Dialog& dialog) {
            use(dialog);
            givenUp = !dialog.ending;
            dialogs.giveUp(dialog);
        });
        const std::int32_t item = run(ref);
        return givenUp ? -1 : item;
    }

    testsupport::TemporaryFolder folder;
    std::string layoutFile = folder.write("1.ui", layoutText()).string();
    ScriptedView view;
    Dialogs dialogs{core};
    Plugin& owner = core.addBuiltIn("owner", entry, folder.path());
};

} // namespace host::test
