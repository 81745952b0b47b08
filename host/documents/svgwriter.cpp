// SPDX-License-Identifier: MIT
// Saves drawings.
#include "host/documents/svgwriter.h"

#include "host/documents/css.h"
#include "host/documents/faceeditor.h"

namespace host::svg {

void Writer::save(const Document& document, const std::filesystem::path& file) const {
    const std::string extension = file.extension().string();
    const bool gzip = css::equalsIgnoringCase(extension, ".svgz") ||
                      css::equalsIgnoringCase(extension, ".gz") ||
                      (source_.gzipped && !css::equalsIgnoringCase(extension, ".svg"));
    std::string text = document.modified()
                           ? editFaces(source_.text, document, options_, source_.encoding.empty())
                           : source_.text;
    writeFile(file, encodeText(std::move(text), source_, gzip, document.name()));
}

} // namespace host::svg
