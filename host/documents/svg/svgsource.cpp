// SPDX-License-Identifier: MIT
// Gzip and encodings of drawings.
#include "host/documents/svg/svgsource.h"

#include "host/documents/css/css.h"
#include "host/documents/documenterror.h"
#include "host/documents/svg/filekind.h"

#include <iconv.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <string>
#include <utility>
#include <vector>

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

/// What has been unpacked so far, in blocks, lest growing copy it and take twice its room.
class Unpacked {
public:
    /// Room for the next bytes.
    void offer(z_stream& stream) {
        if (blocks_.empty() || used_ == chunkSize) {
            blocks_.push_back(std::make_unique_for_overwrite<char[]>(chunkSize)); // NOLINT
            used_ = 0;
        }
        stream.next_out = bytesOf(blocks_.back().get() + used_);
        stream.avail_out = static_cast<uInt>(chunkSize - used_);
    }
    void take(const z_stream& stream) { used_ = chunkSize - stream.avail_out; }
    std::size_t size() const {
        return blocks_.empty() ? 0 : (blocks_.size() - 1) * chunkSize + used_;
    }
    /// Takes all of it out.
    std::string join() {
        std::string text;
        text.reserve(size());
        const std::size_t whole = size();
        for (auto& block : blocks_) {
            text.append(block.get(), std::min(chunkSize, whole - text.size()));
            block.reset();
        }
        return text;
    }
    std::string_view start() const { return {blocks_.front().get(), std::min(size(), chunkSize)}; }

private:
    std::vector<std::unique_ptr<char[]>> blocks_; // NOLINT: not to be filled with zeros first
    std::size_t used_ = 0;                        ///< of the last one
};

std::string inflateAll(std::string_view bytes, std::string_view name, std::size_t limit) {
    z_stream stream{};
    if (inflateInit2(&stream, 15 + 16) != Z_OK) {
        throw std::bad_alloc();
    }
    const std::unique_ptr<z_stream, InflateEnd> guard(&stream);
    stream.next_in = bytesOf(bytes.data());
    stream.avail_in = static_cast<uInt>(bytes.size());
    const auto fail = [&](const std::string& what) {
        throw DocumentError(name, "the gzip data " + what + " byte " +
                                      std::to_string(bytes.size() - stream.avail_in));
    };

    Unpacked text;
    while (true) {
        const bool first = text.size() == 0;
        text.offer(stream);
        const int status = inflate(&stream, Z_NO_FLUSH);
        text.take(stream);
        if (text.size() > limit) {
            tooLarge(name, limit);
        }
        // What does not begin like a drawing need not be unpacked to its end.
        if (first && text.size() > 4 && text.start().find_first_of("<\xFE\xFF") > chunkSize / 2) {
            throw DocumentError(name, notXmlText(text.start()), 1, 1);
        }
        if (status == Z_STREAM_END) {
            // Several gzip members may follow one another; anything else after one is ignored.
            if (stream.avail_in < 2 || stream.next_in[0] != 0x1F || stream.next_in[1] != 0x8B) {
                return text.join();
            }
            inflateReset(&stream);
        } else if (status != Z_OK && status != Z_BUF_ERROR) {
            fail("are damaged at");
        } else if (stream.avail_in == 0 && stream.avail_out != 0) {
            fail("end too early, after");
        }
    }
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

/// The encoding by iconv's name; empty for UTF-8 and for ASCII, which is part of it.
std::string encodingOf(std::string_view bytes, bool& ascii) {
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
    ascii = css::equalsIgnoringCase(name, "us-ascii") || css::equalsIgnoringCase(name, "ascii");
    if (ascii) {
        return {};
    }
    for (const std::string_view plain :
         {"utf-8", "utf8", "utf-16", "utf-16le", "utf-16be", "ucs-2", "utf-32", "unicode", ""}) {
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
    source.file = std::move(bytes);
    source.text =
        source.gzipped ? inflateAll(source.file, name, limit) : std::exchange(source.file, {});
    if (source.text.size() > limit) {
        tooLarge(name, limit);
    }
    source.encoding = encodingOf(source.text, source.ascii);
    if (!source.encoding.empty()) {
        std::string text =
            Converter("UTF-8", source.encoding, name).convert(source.text, name, limit);
        if (!source.gzipped) {
            source.file = std::move(source.text);
        }
        source.text = std::move(text);
    }
    return source;
}

std::string encodeText(std::string text, const Source& source, bool gzip, std::string_view name) {
    constexpr std::size_t noLimit = std::string::npos - 1;
    if (!source.encoding.empty()) {
        std::string bytes = Converter(source.encoding, "UTF-8", name).convert(text, name, noLimit);
        if (Converter("UTF-8", source.encoding, name).convert(bytes, name, noLimit) != text) {
            throw DocumentError(name, "the text cannot be written in the encoding of the file");
        }
        text = std::move(bytes);
    }
    return gzip ? deflateAll(text) : text;
}

std::string repack(const Source& source, std::string_view name) {
    return source.gzipped ? inflateAll(source.file, name, std::string::npos - 1)
                          : deflateAll(source.asRead());
}

} // namespace host::svg
