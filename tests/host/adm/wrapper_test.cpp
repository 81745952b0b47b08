// SPDX-License-Identifier: MIT
// The plug-in's classes of dialogs and items, over the dialog manager itself.
#include "adm/BaseADMDialog.h"

#include "adm/BaseADMItem.h"
#include "ai/unicodestring.h"
#include "dialogfixture.h"

#include <array>
#include <stdexcept>

namespace host::test {
namespace {

using testing::ElementsAre;

/// Notes what it is called for, and fails where the test says.
class NotingDialog : public BaseADMDialog {
public:
    ~NotingDialog() override = default;
    void Destroy() override {
        calls.emplace_back("destroy");
        BaseADMDialog::Destroy();
    }

    std::vector<std::string> calls;
    std::string failing;
    ADMErr initError = kNoErr;

protected:
    ADMErr Init() override {
        note("init");
        return initError;
    }
    void Notify(ADMNotifierRef notifier) override {
        note("notify");
        BaseADMDialog::Notify(notifier);
    }
    void Draw(ADMDrawerRef drawer) override {
        note("draw");
        BaseADMDialog::Draw(drawer);
    }

private:
    void note(const char* what) {
        calls.emplace_back(what);
        if (failing == what) {
            throw std::runtime_error(what + std::to_string(calls.size()));
        }
    }
};

class NotingItem : public BaseADMItem {
public:
    using BaseADMItem::BaseADMItem;
    std::vector<std::string> calls;
    bool failing = false;

protected:
    void Init() override { calls.emplace_back("init"); }
    void Notify(ADMNotifierRef notifier) override {
        calls.emplace_back("notify");
        if (failing) {
            throw std::runtime_error("item");
        }
        BaseADMItem::Notify(notifier);
    }
};

class AWrappedDialog : public DialogFixture {
protected:
    AWrappedDialog() {
        sADMDialog = suite<ADMDialogSuite>();
        sADMItem = suite<ADMItemSuite>();
    }
    ~AWrappedDialog() override {
        sADMDialog = nullptr;
        sADMItem = nullptr;
    }
    std::int32_t modal(std::function<void(Dialog&)> during) {
        view.runs.push_back(std::move(during));
        return dialog.Modal(owner.ref(), "name", 1, 0, 0);
    }

    NotingDialog dialog;
};

TEST_F(AWrappedDialog, ThrowsAgainWhatACallbackThrew) {
    for (const char* const callback : {"draw", "notify"}) {
        dialog.failing = callback;
        dialog.calls.clear();
        try {
            modal([&](Dialog& model) {
                RecordingCanvas canvas;
                dialogs.draw(model, canvas);
                dialogs.draw(model, canvas);
                dialogs.press(*model.item(3));
            });
            ADD_FAILURE() << callback << " did not come out";
        } catch (const std::runtime_error& problem) {
            EXPECT_EQ(problem.what(), std::string(callback) + (*callback == 'd' ? "2" : "4"))
                << "not the first";
        }
        EXPECT_EQ(dialog.GetDialogRef(), nullptr);
        EXPECT_EQ(dialog.GetItem(1), nullptr);
    }
    dialog.failing.clear();
    EXPECT_EQ(modal([&](Dialog& model) { dialogs.press(*model.item(2)); }), 2);
    EXPECT_THAT(frontend.misbehaviour, testing::IsEmpty());
}

TEST_F(AWrappedDialog, IsTakenBackWhenItsInitFails) {
    dialog.failing = "init";
    EXPECT_THROW(dialog.Modal(owner.ref(), "name", 1, 0, 0), std::runtime_error);
    EXPECT_THAT(dialog.calls, ElementsAre("init", "destroy"));
    dialog.failing.clear();
    dialog.calls.clear();
    dialog.initError = FourChars("OOPS");
    EXPECT_EQ(dialog.Create(owner.ref(), "name", 1, 0, 0), FourChars("OOPS"));
    EXPECT_THAT(dialog.calls, ElementsAre("init", "destroy"));
    EXPECT_EQ(dialog.GetDialogRef(), nullptr);
    EXPECT_EQ(dialog.Modal(owner.ref(), "name", 9, 0, 0), 0) << "there is no such layout";
}

TEST_F(AWrappedDialog, HasItemsThatMayBeAttached) {
    EXPECT_EQ(dialog.Create(owner.ref(), "name", 1, 0, 0), kNoErr);
    EXPECT_THROW(NotingItem(dialog, 99), ai::Error);
    NotingItem item(dialog, 3);
    NotingItem text(dialog, 8);
    EXPECT_EQ(item.GetID(), 3);
    item.Attach();
    text.SetText("words");
    text.Enable(false);
    EXPECT_THROW(text.SetItemStyle(1), ai::Error);
    EXPECT_EQ(text.GetBoundsRect().left, 9);
    const auto run = [&](std::function<void(Dialog&)> during) {
        view.runs.push_back(std::move(during));
        return dialog.DisplayAsModal();
    };
    EXPECT_EQ(run([&](Dialog& model) {
                  EXPECT_EQ(model.item(8)->text, "words");
                  dialogs.press(*model.item(3));
                  dialogs.press(*model.item(1));
              }),
              1);
    EXPECT_THAT(item.calls, ElementsAre("init", "notify"));
    EXPECT_THAT(dialog.calls, ElementsAre("init", "notify", "notify"))
        << "the item's, passed on, and the button's";
    item.failing = true;
    EXPECT_EQ(run([&](Dialog& model) { dialogs.press(*model.item(3)); }), 2);
    dialog.Destroy();
}

} // namespace
} // namespace host::test
