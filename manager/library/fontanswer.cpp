// SPDX-License-Identifier: MIT
// One list of a face's fields for both directions; numbers as they lie in memory: both ends are the
// same program.
#include "manager/library/fontanswer.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace manager {

namespace {

class Encoder {
public:
    template <class Number>
    void number(Number value) {
        static_assert(std::is_arithmetic_v<Number>);
        text_.append(reinterpret_cast<const char*>(&value), sizeof value);
    }
    template <class Enumerator>
    void enumerator(Enumerator value, Enumerator /*last*/) {
        number(static_cast<std::uint8_t>(value));
    }
    void text(const std::string& value) {
        number(static_cast<std::uint32_t>(value.size()));
        text_ += value;
    }
    template <class Values, class Each>
    void list(Values& values, Each each) {
        number(static_cast<std::uint32_t>(values.size()));
        for (auto& value : values) {
            each(value);
        }
    }
    template <class Value, class Each>
    void optional(std::optional<Value>& value, Each each) {
        number(static_cast<std::uint8_t>(value.has_value()));
        if (value) {
            each(*value);
        }
    }
    [[nodiscard]] std::string take() { return std::move(text_); }

private:
    std::string text_;
};

/// Once it has failed, what it reads is empty.
class Decoder {
public:
    explicit Decoder(std::string_view text) : text_(text) {}

    template <class Number>
    void number(Number& value) {
        value = {};
        if (text_.size() < sizeof value) {
            fail();
            return;
        }
        std::memcpy(&value, text_.data(), sizeof value);
        text_.remove_prefix(sizeof value);
        if constexpr (std::is_floating_point_v<Number>) {
            // Sums of such numbers stay numbers.
            if (!std::isfinite(value) || std::abs(value) > 1e12) {
                fail();
                value = 0;
            }
        }
    }
    void number(bool& value) {
        std::uint8_t byte = 0;
        number(byte);
        value = byte == 1;
    }
    template <class Enumerator>
    void enumerator(Enumerator& value, Enumerator last) {
        std::uint8_t byte = 0;
        number(byte);
        require(byte <= static_cast<std::uint8_t>(last));
        value = ok_ ? static_cast<Enumerator>(byte) : Enumerator{};
    }
    void text(std::string& value) {
        std::uint32_t size = 0;
        number(size);
        require(size <= text_.size());
        value = ok_ ? text_.substr(0, size) : std::string_view();
        text_.remove_prefix(value.size());
    }
    template <class Values, class Each>
    void list(Values& values, Each each) {
        std::uint32_t size = 0;
        number(size);
        require(size <= text_.size()); // each takes a byte at least
        values.clear();
        for (std::uint32_t i = 0; ok_ && i < size; ++i) {
            each(values.emplace_back());
        }
    }
    template <class Value, class Each>
    void optional(std::optional<Value>& value, Each each) {
        bool present = false;
        number(present);
        value.reset();
        if (present) {
            each(value.emplace());
        }
    }
    void require(bool condition) {
        if (!condition) {
            fail();
        }
    }
    /// Whether all was read, without failure.
    [[nodiscard]] bool isDone() const { return ok_ && text_.empty(); }

private:
    void fail() {
        ok_ = false;
        text_ = {};
    }
    std::string_view text_;
    bool ok_ = true;
};

template <class Coder>
void codeMeasures(Coder& coder, faces::Measures& measures) {
    for (double* value : {&measures.xHeight, &measures.capitalHeight, &measures.ascender,
                          &measures.descender, &measures.letterWidth, &measures.capitalWidth,
                          &measures.digitWidth, &measures.stem, &measures.contrast, &measures.serif,
                          &measures.slant, &measures.roundness, &measures.serifThickness}) {
        coder.number(*value);
    }
}

template <class Coder>
void codeVariation(Coder& coder, faces::Face& face) {
    coder.list(face.axes, [&](faces::Axis& axis) {
        coder.text(axis.tag);
        coder.text(axis.name);
        coder.number(axis.minimum);
        coder.number(axis.initial);
        coder.number(axis.maximum);
        coder.number(axis.hidden);
    });
    coder.list(face.position, [&](auto& place) {
        coder.text(place.first);
        coder.number(place.second);
    });
}

template <class Coder>
void codeLooks(Coder& coder, faces::Face& face) {
    coder.number(face.style.weight);
    coder.number(face.style.width);
    coder.enumerator(face.style.slant, faces::Slant::Oblique);
    coder.enumerator(face.classification, faces::Classification::Symbol);
    coder.optional(face.panose, [&](auto& panose) {
        for (std::uint8_t& digit : panose) {
            coder.number(digit);
        }
    });
    coder.number(face.monospaced);
    coder.number(face.symbolic);
    coder.number(face.colour);
    coder.optional(face.measures, [&](auto& measures) { codeMeasures(coder, measures); });
    coder.number(face.glyphs);
}

template <class Coder>
void codeFace(Coder& coder, faces::Face& face) {
    const auto text = [&](std::string& value) { coder.text(value); };
    coder.number(face.index);
    coder.enumerator(face.technology, faces::Technology::OpenTypeTrueType);
    coder.text(face.postScriptName);
    coder.list(face.fullNames, text);
    coder.list(face.names, [&](faces::Name& name) {
        coder.text(name.family);
        coder.text(name.style);
        coder.text(name.language);
        coder.enumerator(name.kind, faces::NameKind::WeightWidthSlant);
    });
    codeLooks(coder, face);
    coder.text(face.version);
    coder.number(face.revision);
    coder.text(face.foundry);
    coder.text(face.copyright);
    coder.text(face.licence);
    coder.text(face.licenceLink);
    coder.optional(face.embedding, [&](std::uint16_t& value) { coder.number(value); });
    coder.list(face.scripts, text);
    coder.list(face.languages, text);
    coder.list(face.features, text);
    codeVariation(coder, face);
    coder.list(face.coverage, [&](auto& range) {
        auto first = static_cast<std::uint32_t>(range.first);
        auto last = static_cast<std::uint32_t>(range.second);
        coder.number(first);
        coder.number(last);
        range = {first, last};
    });
}

enum class Kind : std::uint8_t { Font, PassingProblem, LastingProblem };

bool isOrdered(const faces::Coverage& coverage) {
    char32_t next = 0;
    return std::all_of(coverage.begin(), coverage.end(), [&](const auto& range) {
        const bool fits = range.first >= next && range.second >= range.first;
        next = range.second + 1;
        return fits && range.second <= 0x10FFFF;
    });
}

bool isSound(const faces::Face& face) {
    const auto& [weight, width, slant] = face.style;
    return !face.names.empty() && weight >= 0 && weight <= 1000 && width > 0 && width <= 1000 &&
           isOrdered(face.coverage);
}

} // namespace

std::string encodeAnswer(const FontFileOutcome& outcome) {
    Encoder encoder;
    if (const auto* problem = std::get_if<FontFileProblem>(&outcome)) {
        encoder.enumerator(problem->lasting ? Kind::LastingProblem : Kind::PassingProblem,
                           Kind::LastingProblem);
        encoder.text(problem->text);
        return encoder.take();
    }
    auto read = std::get<ReadFont>(outcome); // the one list of fields takes what can be changed
    encoder.enumerator(Kind::Font, Kind::LastingProblem);
    encoder.number(read.digest);
    encoder.number(read.contents.collection);
    encoder.list(read.contents.faces, [&](faces::Face& face) { codeFace(encoder, face); });
    return encoder.take();
}

std::optional<FontFileOutcome> decodeAnswer(std::string_view answer) {
    Decoder decoder(answer);
    Kind kind = Kind::Font;
    decoder.enumerator(kind, Kind::LastingProblem);
    if (kind != Kind::Font) {
        FontFileProblem problem{{}, kind == Kind::LastingProblem};
        decoder.text(problem.text);
        return decoder.isDone() ? std::optional<FontFileOutcome>(std::move(problem)) : std::nullopt;
    }
    ReadFont read;
    decoder.number(read.digest);
    decoder.number(read.contents.collection);
    decoder.list(read.contents.faces, [&](faces::Face& face) { codeFace(decoder, face); });
    const auto& found = read.contents.faces;
    if (!decoder.isDone() || found.empty() || !std::all_of(found.begin(), found.end(), isSound)) {
        return std::nullopt;
    }
    return read;
}

} // namespace manager
