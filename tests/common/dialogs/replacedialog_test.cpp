// SPDX-License-Identifier: MIT
// The dialog that chooses among the host's fonts.
#include "dialogfixture.h"

#include <cstdio>

using testing::ElementsAre;

namespace {

class TheReplaceDialog : public ADialog {
protected:
    std::int32_t choose(User user) {
        expect(std::move(user));
        return glyphora.Modal(plugin.ref(), "Glyphora Dialog", 17001, 0, 0);
    }
    std::string chosen() const {
        std::string name = "untouched";
        const std::int32_t result = glyphora.getSelectedFont(name);
        return result == 0 ? name : std::to_string(result) + " " + name;
    }
    void activate(host::Dialog& dialog, std::size_t index) {
        host::Tree& tree = *dialog.item(3)->tree;
        host::Row* const font = tree.top().rows.at(index).get();
        dialogs.select(tree, {font}, font);
    }

    GlyphoraReplaceDialog glyphora;
};

TEST_F(TheReplaceDialog, ListsTheFontsOfTheHostAsItOrdersThem) {
    EXPECT_EQ(glyphora.DisplayAsModal(), 0) << "there is none yet";
    choose([](host::Dialog& dialog) {
        EXPECT_EQ(dialog.title, "Replace Font");
        EXPECT_EQ(dialog.item(1)->text, "OK");
        EXPECT_EQ(dialog.item(2)->text, "Cancel");
        std::vector<std::string> names;
        for (const auto& row : dialog.item(3)->tree->top().rows) {
            names.push_back(row->text);
        }
        EXPECT_THAT(names, ElementsAre("The Present Regular", "The Spare Bold"));
    });
}

TEST_F(TheReplaceDialog, TakesTheActiveFontWhenItIsConfirmed) {
    EXPECT_EQ(chosen(), "1 untouched");
    EXPECT_EQ(choose([&](host::Dialog& dialog) { activate(dialog, 1); }), kADMCancelItemID);
    EXPECT_EQ(chosen(), "1 untouched");
    EXPECT_EQ(choose([&](host::Dialog& dialog) {
                  activate(dialog, 1);
                  press(dialog, kADMOKItemID);
              }),
              kADMOKItemID);
    EXPECT_EQ(chosen(), "The Spare Bold");
    choose([](host::Dialog& /*dialog*/) {});
    EXPECT_EQ(chosen(), "The Spare Bold");
    choose([&](host::Dialog& dialog) { press(dialog, kADMOKItemID); });
    EXPECT_EQ(chosen(), "1 untouched");
    choose([&](host::Dialog& dialog) {
        dialog.item(3)->tree->top().rows[0]->text = std::string(600, 'x');
        activate(dialog, 0);
        press(dialog, kADMOKItemID);
    });
    EXPECT_EQ(chosen(), std::string(511, 'x'));
}

TEST_F(TheReplaceDialog, TakesNothingByOtherNotifiers) {
    ADMNotifierSuite other = *sADMNotifier;
    other.GetNotifierType = [](ADMNotifierRef, char* type, std::int32_t size) {
        std::snprintf(type, static_cast<std::size_t>(size), "ADM Intermediate Changed Notifier");
        return ADMErr{kNoErr};
    };
    const ADMNotifierSuite* const own = std::exchange(sADMNotifier, &other);
    EXPECT_EQ(choose([&](host::Dialog& dialog) {
                  activate(dialog, 1);
                  press(dialog, kADMOKItemID);
              }),
              kADMOKItemID);
    sADMNotifier = own;
    EXPECT_EQ(chosen(), "1 untouched");
}

} // namespace
