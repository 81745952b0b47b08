// SPDX-License-Identifier: MIT
// The wrapper classes against tables that count: each reference is given back exactly once, and
// each error code comes out as an exception.
#include "ai/spalloc.h"
#include "ai/unicodestring.h"
#include "ate/itext.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace {

int references = 0;      // of the one text range that the tables know
ATE::ATEErr failure = 0; // what every call but Release answers
int texts = 0;           // live host texts
int blocks = 0;          // live host blocks
bool outOfMemory = false;

ATE::TextRangeRef rangeRef() {
    static char object;
    return reinterpret_cast<ATE::TextRangeRef>(&object);
}

const ATE::TextRangeSuite rangeSuite = {
    [](ATE::TextRangeRef) -> ATE::ATEErr {
        references += failure == 0 ? 1 : 0;
        return failure;
    },
    [](ATE::TextRangeRef) -> ATE::ATEErr {
        --references;
        return 0;
    },
    nullptr,
    [](ATE::TextRangeRef, AIBoolean* result) -> ATE::ATEErr {
        *result = 1;
        return failure;
    },
    nullptr,
    nullptr,
};

const ATE::TextRunsIteratorSuite iteratorSuite = {
    nullptr,
    [](ATE::TextRunsIteratorRef) -> ATE::ATEErr { return 0; },
    nullptr,
    [](ATE::TextRunsIteratorRef, ATE::TextRangeRef* range) -> ATE::ATEErr {
        if (failure == 0) {
            *range = rangeRef();
            ++references;
        }
        return failure;
    },
    nullptr,
};

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
    void SetUp() override {
        references = texts = blocks = 0;
        failure = 0;
        outOfMemory = false;
        sTextRange = &rangeSuite;
        sTextRunsIterator = &iteratorSuite;
        sAIUnicodeString = &unicodeSuite;
        sSPBasic = &basicSuite;
    }
    void TearDown() override {
        EXPECT_EQ(references, 0);
        EXPECT_EQ(texts, 0);
        EXPECT_EQ(blocks, 0);
        sTextRange = nullptr;
        sAIUnicodeString = nullptr;
        sSPBasic = nullptr;
    }

    const ATE::ITextRunsIterator iterator_{reinterpret_cast<ATE::TextRunsIteratorRef>(rangeRef())};
};

TEST_F(AWrapper, GivesEachReferenceBackOnce) {
    ATE::ITextRange first = iterator_.Item();
    EXPECT_EQ(references, 1);
    ATE::ITextRange copy = first;
    EXPECT_EQ(references, 2);
    const ATE::ITextRange moved = std::move(copy);
    EXPECT_EQ(references, 2);
    EXPECT_TRUE(copy.IsNull()); // NOLINT: what a move leaves behind is what is tested
    const ATE::ITextRange& itself = first;
    first = itself;
    EXPECT_EQ(references, 2);
    first = iterator_.Item();
    EXPECT_EQ(references, 2);
    EXPECT_TRUE(moved.HasLocalCharFeatures());
}

TEST_F(AWrapper, ThrowsTheCodeOfAFailedCall) {
    const ATE::ITextRange range = iterator_.Item();
    failure = 17;
    const auto codeOf = [](auto&& call) {
        try {
            call();
        } catch (const ATE::Exception& exception) {
            return exception.error;
        }
        return ATE::ATEErr{0};
    };
    EXPECT_EQ(codeOf([&] { static_cast<void>(range.HasLocalCharFeatures()); }), 17);
    EXPECT_EQ(codeOf([&] { static_cast<void>(iterator_.Item()); }), 17);
    EXPECT_EQ(codeOf([&] { const ATE::ITextRange copy = range; }), 17); // NOLINT: the copy throws
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
