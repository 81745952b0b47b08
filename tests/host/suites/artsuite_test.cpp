// SPDX-License-Identifier: MIT
// Documents, layers and art as plug-ins walk them, and what they are told of changes.
#include "applicationfixture.h"

namespace host::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ADocumentsArt : public ApplicationFixture {
protected:
    static std::int16_t typeOf(AIArtHandle art) {
        std::int16_t type = -1;
        EXPECT_EQ(sAIArt->GetArtType(art, &type), kNoErr);
        return type;
    }
    static AILayerHandle firstLayer() {
        AILayerHandle layer = nullptr;
        EXPECT_EQ(sAILayer->GetFirstLayer(&layer), kNoErr);
        return layer;
    }
    static AIArtHandle topGroup(AILayerHandle layer) {
        AIArtHandle group = nullptr;
        EXPECT_EQ(sAIArt->GetFirstArtOfLayer(layer, &group), kNoErr);
        return group;
    }
};

TEST_F(ADocumentsArt, IsWalkedFromLayerToFrame) {
    const MadeRun run{named("Alpha", "Regular")};
    open(makeDocument({{{run}, {run}, {run}}, {}}));
    const AILayerHandle first = firstLayer();
    const AIArtHandle group = topGroup(first);
    EXPECT_EQ(typeOf(group), kGroupArt);
    AIArtHandle art = nullptr;
    EXPECT_EQ(sAIArt->GetArtParent(group, &art), kNoErr);
    EXPECT_EQ(art, nullptr);
    int frames = 0;
    for (sAIArt->GetArtFirstChild(group, &art); art != nullptr; sAIArt->GetArtSibling(art, &art)) {
        EXPECT_EQ(typeOf(art), kTextFrameArt);
        AIArtHandle parent = nullptr;
        EXPECT_EQ(sAIArt->GetArtParent(art, &parent), kNoErr);
        EXPECT_EQ(parent, group);
        ++frames;
    }
    EXPECT_EQ(frames, 3);
    AILayerHandle second = nullptr;
    EXPECT_EQ(sAILayer->GetNextLayer(first, &second), kNoErr);
    EXPECT_EQ(sAIArt->GetArtFirstChild(topGroup(second), &art), kNoErr);
    EXPECT_EQ(art, nullptr);
    EXPECT_EQ(sAILayer->GetNextLayer(second, &second), kNoErr);
    EXPECT_EQ(second, nullptr);
}

TEST_F(ADocumentsArt, IsNothingWithoutADocument) {
    AIDocumentHandle document = reinterpret_cast<AIDocumentHandle>(this);
    EXPECT_EQ(sAIDocument->GetDocument(&document), kNoErr);
    EXPECT_EQ(document, nullptr);
    EXPECT_EQ(firstLayer(), nullptr);
    open(makeDocument({}));
    EXPECT_EQ(firstLayer(), nullptr);
    std::int16_t type = 0;
    EXPECT_EQ(sAIArt->GetArtType(nullptr, &type), kBadParameterErr);
    EXPECT_EQ(sAIArt->GetArtType(reinterpret_cast<AIArtHandle>(this), &type), kBadParameterErr);
}

TEST_F(ADocumentsArt, HasDeadHandlesOnceTheDocumentIsClosed) {
    const MadeRun run{named("Alpha", "Regular")};
    open(makeDocument({{{run}}}));
    const AILayerHandle layer = firstLayer();
    const AIArtHandle group = topGroup(layer);
    AIDocumentHandle document = nullptr;
    sAIDocument->GetDocument(&document);
    EXPECT_EQ(sAIDocumentList->Close(document), kNoErr);
    EXPECT_EQ(sAIDocumentList->Close(document), kBadParameterErr);
    open(makeDocument({{{run}}})); // its parts stand where the other's stood
    AIArtHandle art = nullptr;
    AILayerHandle next = nullptr;
    std::int16_t type = 0;
    EXPECT_EQ(sAIArt->GetFirstArtOfLayer(layer, &art), kBadParameterErr);
    EXPECT_EQ(sAILayer->GetNextLayer(layer, &next), kBadParameterErr);
    EXPECT_EQ(sAIArt->GetArtType(group, &type), kBadParameterErr);
    EXPECT_EQ(sAIArt->GetArtFirstChild(group, &art), kBadParameterErr);
}

TEST_F(ADocumentsArt, IsThatOfTheDocumentOpenedLastUntilItIsClosed) {
    const OpenDocument& first = open(makeDocument({{}, {}}));
    const AILayerHandle layerOfFirst = firstLayer();
    const DocumentSerial second = open(makeDocument({{}})).serial();
    EXPECT_NE(firstLayer(), layerOfFirst);
    AILayerHandle next = nullptr;
    EXPECT_EQ(sAILayer->GetNextLayer(layerOfFirst, &next), kNoErr) << "it is still open";
    application.closeDocument(second);
    EXPECT_EQ(firstLayer(), layerOfFirst);
    EXPECT_EQ(application.documents().current(), &first);
}

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
