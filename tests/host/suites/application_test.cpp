// SPDX-License-Identifier: MIT
// What plug-ins are told of changes to a document.
#include "applicationfixture.h"

namespace host::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(AnApplication, AnnouncesWhatPluginsChangeAsOneStep) {
    static std::vector<std::string> told;
    static Application* running = nullptr;
    told.clear();
    RecordingFrontend frontend;
    Application application(frontend, {{}, {}, [] { return std::vector<InstalledFace>{}; }});
    running = &application;
    const SPEntryProc entry = [](const char* caller, const char*, void* message) -> SPErr {
        if (std::string_view(caller) == "AI Notifier") {
            told.emplace_back(static_cast<AINotifierMessage*>(message)->type);
            OpenDocument* const open = running->documents().current();
            if (told.back() == kAIDocumentOpenedNotifier && open->document().runs().size() > 1) {
                open->document().replaceFace(0, named("Beta", "Italic"));
                open->document().replaceFace(1, named("Beta", "Italic"));
                return FourChars("OOPS");
            }
        }
        return kNoErr;
    };
    Plugin& plugin = application.core().addBuiltIn("guest", entry);
    plugin.startUp();
    for (const char* const type : {kAIDocumentOpenedNotifier, kAIDocumentChangedNotifier}) {
        application.core().notifiers().add({plugin.number(), "n", type});
    }
    const Face before = named("Alpha", "Regular");
    application.documents().add("untouched.svg", makeDocument({{{{before}}}}));
    EXPECT_EQ(application.announceOpened(), kNoErr);
    EXPECT_THAT(std::exchange(told, {}), ElementsAre(kAIDocumentOpenedNotifier));

    OpenDocument& open = application.documents().add(
        "touched.svg", makeDocument({{{{before}, {named("Alpha", "Bold")}}}}));
    EXPECT_EQ(application.announceOpened(), FourChars("OOPS"));
    EXPECT_THAT(std::exchange(told, {}),
                ElementsAre(kAIDocumentOpenedNotifier, kAIDocumentChangedNotifier));
    EXPECT_TRUE(application.undo(open.serial()));
    EXPECT_EQ(open.document().faceOf(open.document().run(0)).family, "Alpha");
    EXPECT_TRUE(application.redo(open.serial()));
    EXPECT_THAT(std::exchange(told, {}),
                ElementsAre(kAIDocumentChangedNotifier, kAIDocumentChangedNotifier));
    EXPECT_FALSE(application.redo(open.serial()) || application.undo(noDocument));
    EXPECT_THAT(told, IsEmpty());
}

} // namespace
} // namespace host::test
