// SPDX-License-Identifier: MIT
// Sending a command text as an Apple event and taking the reply text out.
#include "transport.h"

#include "GLYController.h"
#include "platform/appleevents.h"
#include "platform/timing.h"
#include "replytext.h"

#include <array>
#include <cstdint>
#include <exception>
#include <utility>

namespace GLY {

namespace {

constexpr int maximumAttempts = 20;
constexpr std::uint32_t pauseInTicks = 30;

/// Owns a descriptor.
class Descriptor {
public:
    Descriptor() = default;
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { AEDisposeDesc(&desc_); }

    AEDesc* get() { return &desc_; }
    const AEDesc* get() const { return &desc_; }

private:
    AEDesc desc_;
};

bool makeEvent(const std::string& command, Descriptor& event) {
    constexpr std::array<char, 4> signature{'Q', 'G', 'L', 'Y'}; // glyphoraSignature, in order
    Descriptor target;
    return AECreateDesc(typeApplSignature, signature.data(), signature.size(), target.get()) ==
               noErr &&
           AECreateAppleEvent(glyphoraSignature, typeWildCard, target.get(), kAutoGenerateReturnID,
                              kAnyTransactionID, event.get()) == noErr &&
           AEPutParamPtr(event.get(), keyDirectObject, typeChar, command.data(),
                         static_cast<Size>(command.size())) == noErr;
}

enum class Outcome { Answered, Failed, Hopeless };

/// `status` is the last one there was, also of earlier attempts: it decides what follows an
/// exception.
Outcome attempt(const Descriptor& event, OSStatus& status, std::string& result) {
    Descriptor reply;
    try {
        status = AESend(event.get(), reply.get(), kAEWaitReply, kAENormalPriority,
                        kAEDefaultTimeout, nullptr, nullptr);
        Size size = 0;
        if (status == noErr) {
            status = AEGetParamPtr(reply.get(), typeWildCard, typeChar, nullptr, nullptr, 0, &size);
        }
        if (status != noErr) {
            return Outcome::Failed;
        }
        if (size <= 0) {
            return Outcome::Hopeless;
        }
        std::string text(static_cast<std::size_t>(size), '\0');
        status =
            AEGetParamPtr(reply.get(), typeWildCard, typeChar, nullptr, text.data(), size, nullptr);
        if (status != noErr) {
            return Outcome::Failed;
        }
        foldReply(text);
        result = std::move(text);
        return Outcome::Answered;
    } catch (const std::exception&) {
        return status == noErr ? Outcome::Hopeless : Outcome::Failed;
    }
}

} // namespace

std::string exchangeCommand(const std::string& command) {
    std::string result;
    {
        Descriptor event;
        if (!makeEvent(command, event)) {
            return {};
        }
        OSStatus status = noErr;
        for (int count = 0; count < maximumAttempts; ++count) {
            const Outcome outcome = attempt(event, status, result);
            if (outcome == Outcome::Answered) {
                break;
            }
            Delay(pauseInTicks, nullptr);
            if (outcome == Outcome::Hopeless) {
                break;
            }
        }
    }
    return escapeAmpersands(std::move(result));
}

} // namespace GLY
