// SPDX-License-Identifier: MIT
// Reads SVG drawings into the document model and gives them the writer that can save them.
#include "host/documents/svg/svgreader.h"

#include "host/documents/svg/svgdrawing.h"
#include "host/documents/svg/svgsource.h"
#include "host/documents/svg/svgwriter.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace host {
namespace {

/// Places in the source are 32 bits wide, the parser's sizes an int.
std::size_t sizeLimit(const SvgOptions& options) {
    return std::min(options.maximumSize, std::size_t{0x7FFFFFF0});
}

} // namespace

Document readSvg(const std::filesystem::path& file, const SvgOptions& options) {
    return readSvg(svg::readFile(file, sizeLimit(options)), file.string(), options);
}

Document readSvg(std::string bytes, std::string_view name, const SvgOptions& options) {
    svg::Source source = svg::decodeSource(std::move(bytes), name, sizeLimit(options));
    DocumentParts parts = svg::readDrawing(source.text, name, options).parts;
    parts.writer = std::make_shared<svg::Writer>(std::move(source), options);
    return Document(std::move(parts));
}

} // namespace host
