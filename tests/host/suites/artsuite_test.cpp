// SPDX-License-Identifier: MIT
// Documents, layers and art as plug-ins walk them.
#include "applicationfixture.h"

namespace host::test {
namespace {

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

} // namespace
} // namespace host::test
