// SPDX-License-Identifier: MIT
// Any bytes as an order, a look and an answer: refused, or within the limits and the same when it
// is sent on.
#include "fuzz/require.h"
#include "preview/wire.h"

#include <cstddef>
#include <cstdint>

using namespace preview;

namespace {

template <typename Message>
void sendOn(const Message& message, std::string_view body, std::size_t maximum) {
    const std::string sent = encode(message);
    REQUIRE(body.size() <= maximum && bodyLength(sent) == body.size());
    REQUIRE(std::string_view(sent).substr(lengthSize) == body);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view body(reinterpret_cast<const char*>(data), size);
    if (const auto order = decodeOrder(body)) {
        REQUIRE(overstepped(order->request).empty());
        sendOn(*order, body, maximumRequestBody);
    }
    if (size > maximumAnswerBody) {
        return 0;
    }
    if (const auto look = decodeLook(body)) {
        sendOn(*look, body, maximumAnswerBody);
    }
    if (const auto answer = decodeAnswer(body)) {
        const Picture& picture = answer->picture;
        const std::size_t channels = picture.form == PixelForm::Grey ? 1 : 4;
        REQUIRE(picture.pixels.size() == std::size_t{picture.width} * picture.height * channels);
        sendOn(*answer, body, maximumAnswerBody);
    }
    return 0;
}
