// SPDX-License-Identifier: MIT
// Requests and answers as bytes between a window's process and the one that draws.
//
// A message is the length of its body, then the body. Numbers are little-endian, 32 bits, those
// with fractions in 1/65536. A text is its length and its bytes.
//   order:   task, face, pixels, scale, file, text, count of other texts (text), own characters
//            (1 or 0), count of axes (tag as four bytes, value), count of features (text)
//   look:    problem, the five numbers of an identity, each as its lower and its higher half
//   answer:  form, width, height, baseline, problem, count of missing characters, these, the text
//            that was drawn, the pixels
// An order to look is answered by a look, one to draw by an answer.
#pragma once

#include "preview/fileidentity.h"
#include "preview/request.h"

#include <optional>
#include <string_view>

namespace preview {

inline constexpr std::size_t lengthSize = 4;
inline constexpr std::size_t maximumRequestBody = std::size_t{32} << 10U;
inline constexpr std::size_t maximumAnswerBody = maximumArea * 4 + (std::size_t{64} << 10U);

/// A window looks at no file itself: one on a network share that hangs would hold it up.
enum class Task : std::uint8_t {
    Look, ///< tell which file it is by now
    Draw,
};

struct Order {
    Task task = Task::Draw;
    Request request = {};
};

struct Look {
    std::string problem = {}; ///< "PATH: ..."; empty: there is an identity
    FileIdentity identity = {};
};

/// Whole messages, with their lengths.
[[nodiscard]] std::string encode(const Order& order);
[[nodiscard]] std::string encode(const Look& look);
[[nodiscard]] std::string encode(const Answer& answer);

/// The number that a message begins with. `bytes` has at least `lengthSize`.
[[nodiscard]] std::size_t bodyLength(std::string_view bytes);

/// Nothing: the body is not whole, has more than it should, or oversteps a limit.
[[nodiscard]] std::optional<Order> decodeOrder(std::string_view body);
[[nodiscard]] std::optional<Look> decodeLook(std::string_view body);
[[nodiscard]] std::optional<Answer> decodeAnswer(std::string_view body);

} // namespace preview
