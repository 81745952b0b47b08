// SPDX-License-Identifier: MIT
// Gzip and encodings of drawings.
#include "host/documents/svgsource.h"

#include "host/documents/css.h"
#include "host/documents/documenterror.h"

#include <iconv.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <memory>

namespace host::svg {
namespace {

constexpr std::size_t chunkSize = std::size_t{256} << 10;

[[noreturn]] void tooLarge(std::string_view name, std::size_t limit) {
    throw DocumentError(name, "larger than " + std::to_string(limit >> 20) + " MiB");
}

struct InflateEnd {
    void operator()(z_stream* stream) const { inflateEnd(stream); }
};
struct DeflateEnd {
    void operator()(z_stream* stream) const { deflateEnd(stream); }
};

Bytef* bytesOf(const char* text) {
    return reinterpret_cast<Bytef*>(const_cast<char*>(text));
}

std::string inflateAll(std::string_view bytes, std::string_view name, std::size_t limit) {
    z_stream stream{};
    if (inflateInit2(&stream, 15 + 16) != Z_OK) {
        throw std::bad_alloc();
    }
    const std::unique_ptr<z_stream, InflateEnd> guard(&stream);
    stream.next_in = bytesOf(bytes.data());
    stream.avail_in = static_cast<uInt>(bytes.size());

    std::string text;
    std::size_t used = 0;
    while (true) {
        if (text.size() - used < chunkSize) {
            text.resize(std::max(std::min(used * 2, limit + 1), used + chunkSize));
        }
        stream.next_out = bytesOf(text.data() + used);
        stream.avail_out = static_cast<uInt>(text.size() - used);
        const int status = inflate(&stream, Z_NO_FLUSH);
        const bool first = used == 0;
        used = text.size() - stream.avail_out;
        if (used > limit) {
            tooLarge(name, limit);
        }
        // What does not begin like a drawing need not be unpacked to its end.
        if (first && used > 4 && text.find_first_of("<\xFE\xFF", 0) > chunkSize / 2) {
            throw DocumentError(name, "not XML", 1, 1);
        }
        if (status == Z_STREAM_END) {
            // Several gzip members may follow one another; anything else after one is ignored.
            if (stream.avail_in < 2 || stream.next_in[0] != 0x1F || stream.next_in[1] != 0x8B) {
                break;
            }
            inflateReset(&stream);
        } else if (status != Z_OK && status != Z_BUF_ERROR) {
            throw DocumentError(name, "the gzip data are damaged");
        } else if (stream.avail_in == 0 && stream.avail_out != 0) {
            throw DocumentError(name, "the gzip data end too early");
        }
    }
    text.resize(used);
    text.shrink_to_fit();
    return text;
}

std::string deflateAll(std::string_view text) {
    z_stream stream{};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY) !=
        Z_OK) {
        throw std::bad_alloc();
    }
    const std::unique_ptr<z_stream, DeflateEnd> guard(&stream);
    std::string bytes(deflateBound(&stream, text.size()), '\0');
    stream.next_in = bytesOf(text.data());
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = bytesOf(bytes.data());
    stream.avail_out = static_cast<uInt>(bytes.size());
    if (deflate(&stream, Z_FINISH) != Z_STREAM_END) {
        throw std::bad_alloc();
    }
    bytes.resize(bytes.size() - stream.avail_out);
    return bytes;
}

/// The encoding by iconv's name; empty for UTF-8 and what contains itself in it.
std::string encodingOf(std::string_view bytes) {
    struct Mark {
        std::string_view start;
        const char* encoding;
    };
    using namespace std::string_view_literals;
    static constexpr Mark marks[] = {{"\xFF\xFE\0\0"sv, "UTF-32LE"}, {"\0\0\xFE\xFF"sv, "UTF-32BE"},
                                     {"<\0\0\0"sv, "UTF-32LE"},      {"\0\0\0<"sv, "UTF-32BE"},
                                     {"\xFF\xFE"sv, "UTF-16LE"},     {"\xFE\xFF"sv, "UTF-16BE"},
                                     {"<\0"sv, "UTF-16LE"},          {"\0<"sv, "UTF-16BE"}};
    for (const Mark& mark : marks) {
        if (bytes.starts_with(mark.start)) {
            return mark.encoding;
        }
    }
    if (!bytes.starts_with("<?xml")) {
        return {};
    }
    std::string_view declaration = bytes.substr(0, std::min(bytes.find("?>"), std::size_t{256}));
    const std::size_t word = declaration.find("encoding");
    const std::size_t open =
        word == std::string_view::npos ? word : declaration.find_first_of("\"'", word);
    if (open == std::string_view::npos) {
        return {};
    }
    declaration = declaration.substr(open);
    std::string name(declaration.substr(1, declaration.find(declaration.front(), 1) - 1));
    // The declaration could be read, so the text is not in an encoding of wider units.
    for (const std::string_view plain : {"utf-8", "utf8", "us-ascii", "ascii", "utf-16", "utf-16le",
                                         "utf-16be", "ucs-2", "utf-32", "unicode", ""}) {
        if (css::equalsIgnoringCase(name, plain)) {
            return {};
        }
    }
    return name;
}

class Converter {
public:
    Converter(const std::string& to, const std::string& from, std::string_view name)
        : handle_(iconv_open(to.c_str(), from.c_str())) {
        if (!valid()) {
            throw DocumentError(name, "the encoding is not known", 1, 1);
        }
    }
    ~Converter() {
        if (valid()) {
            iconv_close(handle_);
        }
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    std::string convert(std::string_view text, std::string_view name, std::size_t limit) {
        std::string result;
        char* input = const_cast<char*>(text.data());
        std::size_t left = text.size();
        std::string chunk(chunkSize, '\0');
        while (left != 0) {
            char* output = chunk.data();
            std::size_t room = chunk.size();
            const std::size_t status = iconv(handle_, &input, &left, &output, &room);
            const int error = errno;
            result.append(chunk.data(), chunk.size() - room);
            if (result.size() > limit) {
                tooLarge(name, limit);
            }
            if (status == static_cast<std::size_t>(-1) && error != E2BIG) {
                const auto line =
                    static_cast<std::size_t>(std::count(result.begin(), result.end(), '\n'));
                const std::size_t lineStart = result.rfind('\n') + 1;
                throw DocumentError(name, "not text in the encoding that it is said to be in",
                                    line + 1, result.size() - lineStart + 1);
            }
        }
        return result;
    }

private:
    bool valid() const {
        return reinterpret_cast<std::intptr_t>(handle_) != -1; // NOLINT: iconv's own error value
    }
    iconv_t handle_;
};

} // namespace

Source decodeSource(std::string bytes, std::string_view name, std::size_t limit) {
    Source source;
    source.gzipped = bytes.starts_with("\x1F\x8B");
    source.text = source.gzipped ? inflateAll(bytes, name, limit) : std::move(bytes);
    if (source.text.size() > limit) {
        tooLarge(name, limit);
    }
    source.encoding = encodingOf(source.text);
    if (!source.encoding.empty()) {
        source.text = Converter("UTF-8", source.encoding, name).convert(source.text, name, limit);
    }
    return source;
}

std::string encodeText(std::string text, const Source& source, bool gzip, std::string_view name) {
    if (!source.encoding.empty()) {
        text = Converter(source.encoding, "UTF-8", name).convert(text, name, std::string::npos - 1);
    }
    return gzip ? deflateAll(text) : text;
}

} // namespace host::svg
