// SPDX-License-Identifier: MIT
// Reading in bounds, and writing that leaves either the old file or the new one.
#include "misc/xml/libxmlfile.h"

#include "misc/xml/ixmlparser.h"
#include "misc/xml/libxmlhandles.h"
#include "misc/xml/libxmlsupport.h"

#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <random>
#include <system_error>
#include <unistd.h>

namespace Orvil::LibXml {

namespace {

/// libxml2 unescapes names of files; this undoes it beforehand.
std::string escapePercents(const std::string& name) {
    std::string escaped;
    for (const char byte : name) {
        escaped += byte == '%' ? std::string("%25") : std::string(1, byte);
    }
    return escaped;
}

/// Closes the file. False if it is null, or if not all of the bytes have reached the disk.
bool writeBytes(std::FILE* file, std::string_view bytes) {
    if (file == nullptr) {
        return false;
    }
    const bool isWritten = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size() &&
                           std::fflush(file) == 0 &&
                           (fsync(fileno(file)) == 0 || errno == EINVAL); // a pipe has no disk
    return std::fclose(file) == 0 && isWritten;
}

} // namespace

std::string readFile(const std::string& fileName) {
    constexpr std::size_t pieceSize = std::size_t{64} << 10U;
    const Silence silence;
    xmlResetLastError();
    std::error_code ignored; // libxml2 reports what cannot be found
    const bool exists = std::filesystem::exists(fileName, ignored);
    const std::string name = exists ? escapePercents(fileName) : fileName;
    const ParserContext context(xmlCreateURLParserCtxt(name.c_str(), parseOptions));
    if (!context) {
        throw notParsed(xmlGetLastError(), __LINE__);
    }
    const xmlParserInputBuffer& input = *context->input->buf;
    std::string text;
    int count = 1;
    while (count > 0) {
        const std::size_t size = text.size();
        text.resize(size + pieceSize);
        count = input.readcallback(input.context, text.data() + size, static_cast<int>(pieceSize));
        if (count < 0) {
            throw notParsed(xmlGetLastError(), __LINE__);
        }
        text.resize(size + static_cast<std::size_t>(count));
        if (text.size() > IXmlParser::maximumDocumentSize) {
            throw tooLarge("document", __LINE__);
        }
    }
    return text;
}

bool replaceFile(const std::string& fileName, std::string_view bytes) {
    namespace fs = std::filesystem;
    std::error_code error;
    if (fs::is_other(fileName, error)) { // a pipe, a device
        return writeBytes(std::fopen(fileName.c_str(), "wbe"), bytes);
    }
    const fs::path target = fs::weakly_canonical(fileName, error); // where links lead to
    const fs::path temporary = target.string() + "." + std::to_string(std::random_device()());
    if (error || !writeBytes(std::fopen(temporary.c_str(), "wbxe"), bytes)) {
        fs::remove(temporary, error);
        return false;
    }
    fs::rename(temporary, target, error);
    if (!error) {
        return true;
    }
    fs::remove(temporary, error);
    return false;
}

} // namespace Orvil::LibXml
