// SPDX-License-Identifier: MIT
// Notifiers, menus, contexts, kept texts and the dialog manager's simple calls.
#include "recordingfrontend.h"

namespace host::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ANotifier : public CoreFixture {
protected:
    ANotifier() {
        handler = [this](std::string_view, std::string_view selector, void* message) {
            if (selector == "AI Notify") {
                auto* const record = static_cast<AINotifierMessage*>(message);
                notified.push_back(record->notifier);
                EXPECT_STREQ(record->type, "type");
                if (whileNotified) {
                    whileNotified();
                }
            }
            return kNoErr;
        };
    }
    AINotifierHandle add(const char* type, Plugin& plugin) {
        AINotifierHandle handle = nullptr;
        EXPECT_EQ(suites->AddNotifier(plugin.ref(), "name", type, &handle), kNoErr);
        return handle;
    }
    /// As a plug-in enumerates them.
    std::vector<AINotifierHandle> enumerated() {
        std::int32_t count = 0;
        EXPECT_EQ(suites->CountNotifiers(&count), kNoErr);
        std::vector<AINotifierHandle> handles(static_cast<std::size_t>(count));
        for (std::int32_t n = 0; n < count; ++n) {
            EXPECT_EQ(suites->GetNthNotifier(n, &handles[static_cast<std::size_t>(n)]), kNoErr);
        }
        AINotifierHandle none = nullptr;
        EXPECT_EQ(suites->GetNthNotifier(count, &none), kBadParameterErr);
        EXPECT_EQ(suites->GetNthNotifier(-1, &none), kBadParameterErr);
        return handles;
    }

    const AINotifierSuite* suites = suite<AINotifierSuite>();
    std::vector<AINotifierHandle> notified;
    std::function<void()> whileNotified;
};

TEST_F(ANotifier, IsToldOfItsTypeInOrderOfRegistration) {
    const AINotifierHandle first = add("type", guest);
    add("another type", guest);
    const AINotifierHandle third = add("type", guest);
    EXPECT_EQ(core.notify("type"), kNoErr);
    EXPECT_THAT(notified, ElementsAre(first, third));
}

TEST_F(ANotifier, OfAPluginThatLeavesIsGoneAndTheOthersKeepTheirOrder) {
    Plugin& other = core.addBuiltIn("other", entry);
    other.startUp();
    const AINotifierHandle first = add("type", guest);
    const AINotifierHandle second = add("type", other);
    const AINotifierHandle third = add("type", guest);
    EXPECT_THAT(enumerated(), ElementsAre(first, second, third));
    other.shutDown();
    EXPECT_THAT(enumerated(), ElementsAre(first, third));
    SPPluginRef owner = nullptr;
    const char* type = nullptr;
    EXPECT_EQ(suites->GetNotifierPlugin(second, &owner), kBadParameterErr);
    EXPECT_EQ(suites->GetNotifierType(second, &type), kBadParameterErr);
    EXPECT_EQ(suites->GetNotifierPlugin(third, &owner), kNoErr);
    EXPECT_EQ(suites->GetNotifierType(third, &type), kNoErr);
    EXPECT_EQ(owner, guest.ref());
    EXPECT_STREQ(type, "type");
}

TEST_F(ANotifier, IsKeptWhileItsPluginIsUnloadedButNotTold) {
    const AINotifierHandle kept = add("type", guest);
    serving.reset();
    ASSERT_TRUE(guest.unload());
    core.notify("type");
    EXPECT_THAT(notified, IsEmpty());
    EXPECT_EQ(guest.reload(), kNoErr);
    serving.emplace(core, &guest);
    EXPECT_THAT(enumerated(), ElementsAre(kept));
    core.notify("type");
    EXPECT_THAT(notified, ElementsAre(kept));
}

TEST_F(ANotifier, ThatIsAddedDuringANotificationWaitsForTheNext) {
    const AINotifierHandle first = add("type", guest);
    AINotifierHandle second = nullptr;
    whileNotified = [&] { suites->AddNotifier(guest.ref(), "late", "type", &second); };
    core.notify("type");
    EXPECT_THAT(notified, ElementsAre(first));
    whileNotified = {};
    core.notify("type");
    EXPECT_THAT(notified, ElementsAre(first, first, second));
}

TEST_F(ANotifier, CannotBeRegisteredForAnUnknownPlugin) {
    Plugin& ended = core.addBuiltIn("ended", entry);
    ended.startUp();
    ended.shutDown();
    EXPECT_EQ(suites->AddNotifier(reinterpret_cast<SPPluginRef>(this), "n", "t", nullptr),
              kBadParameterErr);
    EXPECT_EQ(suites->AddNotifier(ended.ref(), "n", "t", nullptr), kBadParameterErr);
    ASSERT_EQ(core.ledger().entries().size(), 1U);
    EXPECT_EQ(core.ledger().entries()[0].what, "registered a notifier for an unknown plug-in");
    EXPECT_EQ(core.ledger().entries()[0].times, 2U);
}

using AMenu = CoreFixture;

TEST_F(AMenu, TakesItemsAndSubMenusUntilTheirPluginLeaves) {
    const auto* const menus = suite<AIMenuSuite>();
    const std::size_t ownGroups = core.menus().groups().size();
    AIMenuItemHandle parent = nullptr;
    AIMenuItemHandle item = nullptr;
    AIMenuGroup group = nullptr;
    const char* name = nullptr;
    std::int32_t count = 0;
    EXPECT_EQ(menus->AddMenuItem(guest.ref(), "n", "No such group", "text", 0, &item),
              kBadParameterErr);
    EXPECT_EQ(menus->AddMenuItem(guest.ref(), "p", kAIAboutPluginsMenuGroup, "Parent", 0, &parent),
              kNoErr);
    EXPECT_EQ(menus->AddMenuGroupAsSubMenu("Mine", 0, parent, &group), kNoErr);
    EXPECT_EQ(menus->AddMenuGroupAsSubMenu("Mine", 0, parent, &group), kBadParameterErr);
    EXPECT_EQ(menus->AddMenuItem(guest.ref(), "i", "Mine", "Item", 0, &item), kNoErr);
    EXPECT_EQ(menus->CountMenuGroups(&count), kNoErr);
    EXPECT_EQ(menus->GetNthMenuGroup(count - 1, &group), kNoErr);
    EXPECT_EQ(menus->GetMenuGroupName(group, &name), kNoErr);
    EXPECT_STREQ(name, "Mine");
    AIMenuItemHandle chosen = nullptr;
    handler = [&](std::string_view caller, std::string_view selector, void* message) {
        if (caller == "AI Menu" && selector == "AI Go") {
            chosen = static_cast<AIMenuMessage*>(message)->menuItem;
        }
        return kNoErr;
    };
    EXPECT_EQ(core.sendMenu("AI Go", item), kNoErr);
    EXPECT_EQ(chosen, item);
    guest.shutDown();
    EXPECT_THAT(core.menus().items(), IsEmpty());
    EXPECT_EQ(core.menus().groups().size(), ownGroups);
    EXPECT_EQ(core.sendMenu("AI Go", item), kBadParameterErr);
}

using AnApplicationContext = CoreFixture;

TEST_F(AnApplicationContext, IsPoppedFromTheInnermostOutwards) {
    const auto* const contexts = suite<AIAppContextSuite>();
    AIAppContextHandle outer = nullptr;
    AIAppContextHandle inner = nullptr;
    EXPECT_EQ(contexts->PushAppContext(guest.ref(), &outer), kNoErr);
    EXPECT_EQ(contexts->PushAppContext(guest.ref(), &inner), kNoErr);
    EXPECT_EQ(contexts->PopAppContext(outer), kBadParameterErr);
    EXPECT_EQ(contexts->PopAppContext(inner), kNoErr);
    EXPECT_EQ(contexts->PopAppContext(inner), kBadParameterErr);
    EXPECT_EQ(contexts->PopAppContext(outer), kNoErr);
    EXPECT_EQ(core.contexts().innermost(), noPlugin);
    EXPECT_EQ(frontend.misbehaviour.size(), 1U);
}

using AUnicodeString = CoreFixture;

TEST_F(AUnicodeString, IsKeptUntilItIsDestroyed) {
    const auto* const texts = suite<AIUnicodeStringSuite>();
    AIUnicodeStringHandle text = nullptr;
    AIUnicodeStringHandle empty = nullptr;
    AIUnicodeStringHandle bad = nullptr;
    const char* bytes = nullptr;
    std::size_t size = 0;
    EXPECT_EQ(texts->CreateFromUTF8("gr\xC3\xBC\xC3\x9F...", 6, &text), kNoErr);
    EXPECT_EQ(texts->CreateFromUTF8(nullptr, 0, &empty), kNoErr);
    EXPECT_EQ(texts->CreateFromUTF8("\xFF", 1, &bad), kBadParameterErr);
    EXPECT_EQ(texts->CreateFromUTF8(nullptr, 1, &bad), kBadParameterErr);
    EXPECT_EQ(texts->GetUTF8(text, &bytes, &size), kNoErr);
    EXPECT_STREQ(bytes, "gr\xC3\xBC\xC3\x9F");
    EXPECT_EQ(size, 6U);
    EXPECT_EQ(texts->Destroy(text), kNoErr);
    EXPECT_EQ(texts->GetUTF8(text, &bytes, &size), kBadParameterErr);
    EXPECT_EQ(texts->Destroy(text), kBadParameterErr);
    guest.shutDown();
    EXPECT_THAT(frontend.misbehaviour,
                ElementsAre("guest destroyed a Unicode string that is not live",
                            "guest leaked 1 Unicode string(s)"));
}

class TheDialogManager : public CoreFixture {
protected:
    const ADMBasicSuite* dialogs = suite<ADMBasicSuite>();
};

TEST_F(TheDialogManager, ShowsAlertsInThePluginsName) {
    const void* early = nullptr;
    EXPECT_EQ(basic->AcquireSuite("ADM Basic Suite", 2, &early), kNoErr);
    static_cast<const ADMBasicSuite*>(early)->ErrorAlert("early");
    basic->ReleaseSuite("ADM Basic Suite", 2);
    dialogs->MessageAlert("message");
    dialogs->AboutBox(guest.ref(), "title", "text");
    ASSERT_EQ(frontend.alerts.size(), 3U);
    EXPECT_EQ(frontend.alerts[0].kind, AlertKind::Error);
    EXPECT_EQ(frontend.alerts[0].plugin, "guest");
    EXPECT_EQ(frontend.alerts[1].text, "message");
    EXPECT_EQ(frontend.alerts[2].title, "title");
}

TEST_F(TheDialogManager, TellsTheLocaleAndNothingOfAMissingString) {
    const auto* const hostSuite = suite<ADMHostSuite>();
    char buffer[8] = "old";
    EXPECT_EQ(hostSuite->GetAppLocale(buffer, 8), kNoErr);
    EXPECT_STREQ(buffer, "de_DE");
    EXPECT_EQ(hostSuite->GetAppLocale(buffer, 3), kNoErr);
    EXPECT_STREQ(buffer, "de");
    EXPECT_EQ(dialogs->GetIndexString(guest.ref(), 1, 1, buffer, 8), kNoSuchStringErr);
    EXPECT_STREQ(buffer, "");
}

} // namespace
} // namespace host::test
