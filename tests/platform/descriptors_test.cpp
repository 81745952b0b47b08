// SPDX-License-Identifier: MIT
// Descriptors and events as containers: parameters, attributes, types and limits.
#include "tests/platform/events.h"

#include <array>
#include <vector>

namespace {

using platformtest::Desc;
using platformtest::TestEvent;

std::string textParameter(AppleEvent* event, AEKeyword keyword, DescType type = typeChar) {
    std::array<char, 64> buffer{};
    Size size = 0;
    const OSErr error =
        AEGetParamPtr(event, keyword, type, nullptr, buffer.data(), buffer.size(), &size);
    return error == noErr ? std::string(buffer.data(), static_cast<std::size_t>(size))
                          : "error " + std::to_string(error);
}

TEST(AnEvent, KeepsParametersByKeyword) {
    TestEvent event("NONE", "echo");
    EXPECT_EQ(textParameter(event.event(), typeWildCard), "error -1701");
    EXPECT_EQ(event.putText("second", FourCharCode("two ")), noErr);
    EXPECT_EQ(event.putText("first"), noErr);
    EXPECT_EQ(event.putText("", FourCharCode("none")), noErr);
    EXPECT_EQ(event.putText("replaced", FourCharCode("two ")), noErr);
    EXPECT_EQ(textParameter(event.event(), keyDirectObject), "first");
    EXPECT_EQ(textParameter(event.event(), FourCharCode("two "), typeWildCard), "replaced");
    EXPECT_EQ(textParameter(event.event(), typeWildCard), "replaced") << "the first one put";
    EXPECT_EQ(textParameter(event.event(), FourCharCode("none")), "");
    EXPECT_EQ(textParameter(event.event(), keyDirectObject, typeSInt32), "error -1700");
    EXPECT_EQ(textParameter(event.event(), FourCharCode("else")), "error -1701");
}

TEST(AnEvent, TellsTheWholeSizeWhenTheBufferIsShort) {
    TestEvent event("NONE", "echo");
    event.putText("twelve bytes");
    std::array<char, 6> buffer{'.', '.', '.', '.', '.', '.'};
    Size size = 0;
    DescType type = typeNull;
    EXPECT_EQ(
        AEGetParamPtr(event.event(), keyDirectObject, typeWildCard, &type, buffer.data(), 4, &size),
        noErr);
    EXPECT_EQ(std::string(buffer.data(), buffer.size()), "twel..");
    EXPECT_EQ(size, 12);
    EXPECT_EQ(type, DescType{typeChar});
}

TEST(AnEvent, TellsItsClassAndIDAsAttributes) {
    TestEvent event("NONE", "echo");
    const auto attribute = [&](AEKeyword keyword, DescType type) {
        OSType value = 0;
        EXPECT_EQ(AEGetAttributePtr(event.event(), keyword, type, nullptr, &value, 4, nullptr),
                  noErr);
        return value;
    };
    EXPECT_EQ(attribute(keyEventClassAttr, typeType), FourCharCode("TEST"));
    EXPECT_EQ(attribute(keyEventIDAttr, typeType), FourCharCode("echo"));
    EXPECT_EQ(attribute(keyTransactionIDAttr, typeSInt32), 0U);
    EXPECT_NE(attribute(keyReturnIDAttr, typeSInt32), static_cast<OSType>(kAutoGenerateReturnID));
    EXPECT_EQ(AEPutAttributePtr(event.event(), keyEventIDAttr, typeType, "abcd", 4), paramErr);
    EXPECT_EQ(AEPutAttributePtr(event.event(), FourCharCode("mine"), typeChar, "abcd", 4), noErr);
    EXPECT_EQ(textParameter(event.event(), FourCharCode("mine")), "error -1701")
        << "attributes are no parameters";
    EXPECT_NE(attribute(FourCharCode("mine"), typeChar), 0U);
}

TEST(AnEvent, GoesOnlyToAnAddress) {
    Desc event;
    Desc address;
    const auto create = [&] {
        return AECreateAppleEvent(FourCharCode("TEST"), FourCharCode("echo"), address.get(), -1, 0,
                                  event.get());
    };
    EXPECT_EQ(create(), errAENotAEDesc) << "null descriptor";
    ASSERT_EQ(AECreateDesc(typeChar, "QGLY", 4, address.get()), noErr);
    EXPECT_EQ(create(), errAENotAEDesc) << "text";
    AEDisposeDesc(address.get());
    ASSERT_EQ(AECreateDesc(typeApplSignature, "QGL", 3, address.get()), noErr);
    EXPECT_EQ(create(), errAENotAEDesc) << "three bytes";
    EXPECT_EQ(AESend(address.get(), nullptr, kAENoReply, 0, 0, nullptr, nullptr), errAENotAEDesc);
}

TEST(ADescriptor, RefusesBadArguments) {
    Desc desc;
    EXPECT_EQ(AECreateDesc(typeChar, nullptr, 1, desc.get()), paramErr);
    EXPECT_EQ(AECreateDesc(typeChar, "", -1, desc.get()), paramErr);
    EXPECT_EQ(AECreateDesc(typeChar, "", 0, nullptr), paramErr);
    EXPECT_EQ(AECreateDesc(typeAppleEvent, "", 0, desc.get()), paramErr);
    EXPECT_EQ(AECreateDesc(typeChar, "", kAEMaximumEventSize + 1, desc.get()), memFullErr);
    EXPECT_EQ(AEPutParamPtr(desc.get(), keyDirectObject, typeChar, "", 0), errAENotAEDesc);
    EXPECT_EQ(AEGetParamPtr(desc.get(), keyDirectObject, typeChar, nullptr, nullptr, 0, nullptr),
              errAENotAEDesc);
    EXPECT_EQ(AEDisposeDesc(desc.get()), noErr);
    EXPECT_EQ(AEDisposeDesc(desc.get()), noErr) << "twice";
}

TEST(AnEvent, HoldsNoMoreThanItsLimit) {
    constexpr Size header = 16; // of one parameter, with the padding of its data
    TestEvent event("NONE", "echo");
    const std::vector<char> data(kAEMaximumEventSize);
    const auto put = [&](AEKeyword keyword, Size size) {
        return AEPutParamPtr(event.event(), keyword, typeChar, data.data(), size);
    };
    EXPECT_EQ(put(keyDirectObject, kAEMaximumEventSize), memFullErr);
    EXPECT_EQ(put(keyDirectObject, kAEMaximumEventSize - header), noErr);
    EXPECT_EQ(put(FourCharCode("more"), 0), memFullErr);
    EXPECT_EQ(AEPutAttributePtr(event.event(), FourCharCode("more"), typeChar, "", 0), memFullErr);
    EXPECT_EQ(put(keyDirectObject, 10), noErr) << "replacing makes room";
    EXPECT_EQ(put(FourCharCode("more"), kAEMaximumEventSize / 2), noErr);
    EXPECT_EQ(put(FourCharCode("rest"), kAEMaximumEventSize / 2), memFullErr);
}

} // namespace
