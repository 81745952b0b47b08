// SPDX-License-Identifier: MIT
// The wrapper classes against tables that count: what they take they give back exactly once.
#include "ai/spalloc.h"
#include "ai/unicodestring.h"
#include "ate/itext.h"
#include "tests/support/scriptedhost/scriptedhost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace {

AIErr failure = 0; // what the calls of texts answer
int texts = 0;     // live host texts
int blocks = 0;    // live host blocks
bool outOfMemory = false;

const AIUnicodeStringSuite unicodeSuite = {
    [](const char* bytes, std::size_t size, AIUnicodeStringHandle* text) -> AIErr {
        if (failure != 0) {
            return failure;
        }
        ++texts;
        *text = reinterpret_cast<AIUnicodeStringHandle>(
            std::make_unique<std::string>(bytes, size).release());
        return kNoErr;
    },
    [](AIUnicodeStringHandle text) -> AIErr {
        --texts;
        std::unique_ptr<std::string>(reinterpret_cast<std::string*>(text)).reset();
        return kNoErr;
    },
    [](AIUnicodeStringHandle text, const char** bytes, std::size_t* size) -> AIErr {
        const auto* value = reinterpret_cast<const std::string*>(text);
        *bytes = value->c_str();
        *size = value->size();
        return failure;
    },
};

const SPBasicSuite basicSuite = {
    nullptr,
    nullptr,
    [](std::size_t size, void** block) -> SPErr {
        *block = outOfMemory ? nullptr : std::malloc(size);
        blocks += *block != nullptr ? 1 : 0;
        return *block != nullptr ? kNoErr : kOutOfMemoryErr;
    },
    [](void* block) -> SPErr {
        blocks -= block != nullptr ? 1 : 0;
        std::free(block);
        return kNoErr;
    },
};

class AWrapper : public testing::Test {
protected:
    AWrapper() {
        texts = blocks = 0;
        failure = kNoErr;
        outOfMemory = false;
        sTextFrame = &scripted::ateTextFrameTable;
        sTextRange = &scripted::ateTextRangeTable;
        sAIUnicodeString = &unicodeSuite;
        sSPBasic = &basicSuite;
    }
    ~AWrapper() override {
        EXPECT_EQ(host_.text.liveReferences(), 0);
        EXPECT_EQ(texts, 0);
        EXPECT_EQ(blocks, 0);
        sTextFrame = nullptr;
        sTextRange = nullptr;
        sAIUnicodeString = nullptr;
        sSPBasic = nullptr;
    }
    ATE::ITextRange range() {
        const ATE::ITextFrame frame(host_.text.frameOf(&host_.addLayer().addText({})));
        return frame.GetTextRange(true);
    }

    scripted::Host host_;
};

TEST_F(AWrapper, GivesEachReferenceBackOnce) {
    ATE::ITextRange first = range();
    EXPECT_EQ(host_.text.liveReferences(), 1);
    ATE::ITextRange copy = first;
    EXPECT_EQ(host_.text.liveReferences(), 2);
    const ATE::ITextRange moved = std::move(copy);
    EXPECT_EQ(host_.text.liveReferences(), 2);
    EXPECT_TRUE(copy.IsNull()); // NOLINT: what a move leaves behind is what is tested
    const ATE::ITextRange& itself = first;
    first = itself;
    EXPECT_EQ(host_.text.liveReferences(), 2);
    first = range();
    EXPECT_EQ(host_.text.liveReferences(), 2);
    EXPECT_FALSE(moved.HasLocalCharFeatures());
    EXPECT_THAT(host_.misuse, testing::IsEmpty());
}

TEST_F(AWrapper, IsNotCopiedWhereTheCopyCannotBeCounted) {
    const ATE::ITextRange dead = range();
    sTextRange->Release(dead.GetRef());
    EXPECT_THROW(const ATE::ITextRange copy = dead, ATE::Exception); // NOLINT: the copy throws
}

TEST_F(AWrapper, KeepsHostTextsAsValues) {
    ai::UnicodeString name("Müller & Söhne");
    const ai::UnicodeString copy = name;
    EXPECT_EQ(texts, 2);
    name = ai::UnicodeString();
    EXPECT_EQ(texts, 1);
    EXPECT_TRUE(name.empty());
    EXPECT_EQ(copy.as_UTF8(), "Müller & Söhne");
    failure = kBadParameterErr;
    EXPECT_THROW(ai::UnicodeString("\xFF"), ai::Error);
    EXPECT_THROW(static_cast<void>(copy.as_UTF8()), ai::Error);
}

TEST_F(AWrapper, AllocatesFromTheHost) {
    std::vector<int, ai::SPAlloc<int>> numbers(100, 7);
    EXPECT_EQ(blocks, 1);
    std::map<int, int, std::less<>, ai::SPAlloc<std::pair<const int, int>>> map{{1, 2}, {3, 4}};
    EXPECT_EQ(blocks, 3);
    outOfMemory = true;
    EXPECT_THROW(numbers.resize(1000), std::bad_alloc);
    EXPECT_EQ(numbers.back(), 7);
    EXPECT_THROW(static_cast<void>(ai::SPAlloc<long>().allocate(static_cast<std::size_t>(-1) / 2)),
                 std::bad_array_new_length);
}

} // namespace
