// SPDX-License-Identifier: MIT
// Writing messages, and reading them with every length checked against what is there.
#include "preview/wire.h"

#include <algorithm>
#include <cmath>

namespace preview {

namespace {

constexpr double one = 65536;
constexpr std::size_t tagSize = 4;

class Writer {
public:
    void number(std::size_t value) {
        for (unsigned shift = 0; shift < 32; shift += 8) {
            bytes_ += static_cast<char>(value >> shift);
        }
    }
    void fraction(double value) {
        number(static_cast<std::uint32_t>(static_cast<std::int32_t>(std::lround(value * one))));
    }
    void text(std::string_view value) {
        number(value.size());
        bytes_ += value;
    }
    void raw(std::string_view value) { bytes_ += value; }
    [[nodiscard]] std::string message() const {
        Writer length;
        length.number(bytes_.size());
        return length.bytes_ + bytes_;
    }

private:
    std::string bytes_;
};

/// Gives nothing more once something was not there.
class Reader {
public:
    explicit Reader(std::string_view bytes) : bytes_(bytes) {}
    std::string_view raw(std::size_t size) {
        if (size > bytes_.size()) {
            failed_ = true;
            return {};
        }
        const std::string_view result = bytes_.substr(0, size);
        bytes_.remove_prefix(size);
        return result;
    }
    std::uint32_t number() {
        std::uint32_t value = 0;
        unsigned shift = 0;
        for (const char c : raw(4)) {
            value |= std::uint32_t{static_cast<unsigned char>(c)} << shift;
            shift += 8;
        }
        return value;
    }
    double fraction() { return static_cast<std::int32_t>(number()) / one; }
    std::string text() { return std::string(raw(number())); }
    std::size_t count(std::size_t maximum) {
        const std::size_t value = number();
        failed_ = failed_ || value > maximum;
        return failed_ ? 0 : value;
    }
    [[nodiscard]] std::string_view rest() const { return bytes_; }
    [[nodiscard]] bool failed() const { return failed_; }

private:
    std::string_view bytes_;
    bool failed_ = false;
};

std::size_t bytesPerPixel(PixelForm form) {
    return form == PixelForm::Grey ? 1 : 4;
}

bool isWhole(const Picture& picture) {
    return picture.form <= PixelForm::Colour &&
           std::uint64_t{picture.width} * picture.height <= maximumArea &&
           picture.pixels.size() ==
               std::size_t{picture.width} * picture.height * bytesPerPixel(picture.form);
}

bool isWithin(double value, double minimum, double maximum) {
    return value >= minimum && value <= maximum; // not a number is not
}

} // namespace

std::string overstepped(const Request& request) {
    if (request.file.empty() || request.file.size() > maximumPath ||
        request.file.find('\0') != std::string::npos) {
        return "the path is empty, too long or has a null";
    }
    const auto isLong = [](const std::string& text) { return text.size() > maximumText; };
    if (isLong(request.text) || std::any_of(request.others.begin(), request.others.end(), isLong)) {
        return "the text is longer than " + std::to_string(maximumText) + " bytes";
    }
    if (!isWithin(request.pixels, 1, maximumPixels) ||
        !isWithin(request.scale, minimumScale, maximumScale)) {
        return "the size is none that can be drawn";
    }
    bool good = request.others.size() <= maximumOthers && request.axes.size() <= maximumAxes &&
                request.features.size() <= maximumFeatures;
    for (const AxisValue& axis : request.axes) {
        good = good && axis.tag.size() == tagSize &&
               isWithin(axis.value, -maximumAxisValue, maximumAxisValue);
    }
    for (const std::string& feature : request.features) {
        good = good && feature.size() <= maximumFeature;
    }
    return good ? std::string() : "the axes, features or texts are too many or malformed";
}

std::string encode(const Order& order) {
    const Request& request = order.request;
    Writer out;
    out.number(static_cast<std::size_t>(order.task));
    out.number(request.face);
    out.number(request.pixels);
    out.fraction(request.scale);
    out.text(request.file);
    out.text(request.text);
    out.number(request.others.size());
    for (const std::string& other : request.others) {
        out.text(other);
    }
    out.number(request.orOwn ? 1U : 0U);
    out.number(request.axes.size());
    for (const AxisValue& axis : request.axes) {
        out.raw(axis.tag);
        out.fraction(axis.value);
    }
    out.number(request.features.size());
    for (const std::string& feature : request.features) {
        out.text(feature);
    }
    return out.message();
}

std::string encode(const Look& look) {
    Writer out;
    out.text(look.problem);
    for (const std::int64_t number : look.identity) {
        out.number(static_cast<std::uint32_t>(number));
        out.number(static_cast<std::uint32_t>(number >> 32));
    }
    return out.message();
}

std::string encode(const Answer& answer) {
    Writer out;
    out.number(static_cast<std::size_t>(answer.picture.form));
    out.number(answer.picture.width);
    out.number(answer.picture.height);
    out.number(static_cast<std::uint32_t>(answer.picture.baseline));
    out.text(answer.problem);
    out.number(answer.missing.size());
    for (const char32_t c : answer.missing) {
        out.number(c);
    }
    out.text(answer.drawn);
    out.raw(answer.picture.pixels);
    return out.message();
}

std::size_t bodyLength(std::string_view bytes) {
    return Reader(bytes).number();
}

std::optional<Order> decodeOrder(std::string_view body) {
    Reader in(body);
    Order order;
    const std::uint32_t task = in.number();
    order.task = task == 0 ? Task::Look : Task::Draw;
    Request& request = order.request;
    request.face = in.number();
    request.pixels = in.number();
    request.scale = in.fraction();
    request.file = in.text();
    request.text = in.text();
    request.others.resize(in.count(maximumOthers));
    for (std::string& other : request.others) {
        other = in.text();
    }
    const std::uint32_t orOwn = in.number();
    request.orOwn = orOwn == 1;
    request.axes.resize(in.count(maximumAxes));
    for (AxisValue& axis : request.axes) {
        axis.tag = in.raw(tagSize);
        axis.value = in.fraction();
    }
    request.features.resize(in.count(maximumFeatures));
    for (std::string& feature : request.features) {
        feature = in.text();
    }
    if (in.failed() || task > 1 || orOwn > 1 || !in.rest().empty() ||
        !overstepped(request).empty()) {
        return std::nullopt;
    }
    return order;
}

std::optional<Look> decodeLook(std::string_view body) {
    Reader in(body);
    Look look;
    look.problem = in.text();
    for (std::int64_t& number : look.identity) {
        const std::uint64_t low = in.number();
        number = static_cast<std::int64_t>(low | std::uint64_t{in.number()} << 32U);
    }
    if (in.failed() || !in.rest().empty()) {
        return std::nullopt;
    }
    return look;
}

std::optional<Answer> decodeAnswer(std::string_view body) {
    Reader in(body);
    Answer answer;
    const std::uint32_t form = in.number();
    answer.picture.form = form == 0 ? PixelForm::Grey : PixelForm::Colour;
    answer.picture.width = in.number();
    answer.picture.height = in.number();
    answer.picture.baseline = static_cast<std::int32_t>(in.number());
    answer.problem = in.text();
    answer.missing.resize(in.count(maximumText));
    for (char32_t& c : answer.missing) {
        c = in.number();
    }
    answer.drawn = in.text();
    answer.picture.pixels = in.rest();
    if (in.failed() || form > 1 || !isWhole(answer.picture)) {
        return std::nullopt;
    }
    return answer;
}

} // namespace preview
