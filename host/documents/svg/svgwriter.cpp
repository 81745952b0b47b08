// SPDX-License-Identifier: MIT
// Saves drawings.
#include "host/documents/svg/svgwriter.h"

#include "host/documents/css/css.h"
#include "host/documents/svg/faceeditor.h"

#include <utility>

namespace host::svg {

ChangedText Writer::change(const Document& document) const {
    if (!document.modified()) {
        return {source_.text, source_.text};
    }
    return {source_.text, editFaces(source_.text, document, options_, source_.takesAll())};
}

void Writer::save(const Document& document, const std::filesystem::path& file) const {
    const std::string extension = file.extension().string();
    const bool gzip = css::equalsIgnoringCase(extension, ".svgz") ||
                      css::equalsIgnoringCase(extension, ".gz") ||
                      (source_.gzipped && !css::equalsIgnoringCase(extension, ".svg"));
    const std::string& name = document.name();
    if (!document.modified()) {
        if (gzip == source_.gzipped) {
            writeFile(file, source_.asRead());
        } else {
            writeFile(file, repack(source_, name));
        }
        return;
    }
    std::string text = editFaces(source_.text, document, options_, source_.takesAll());
    writeFile(file, encodeText(std::move(text), source_, gzip, name));
}

} // namespace host::svg
