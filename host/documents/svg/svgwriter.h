// SPDX-License-Identifier: MIT
// Saves drawings: the source as it was read, with the replaced faces edited into it.
#pragma once

#include "host/documents/document.h"
#include "host/documents/svg/svgreader.h"
#include "host/documents/svg/svgsource.h"

#include <filesystem>

namespace host::svg {

/// Files ending in .svgz or .gz are gzipped, those ending in .svg are not; under any other name
/// the drawing stays as it was. With no face replaced, the file is written as it was read.
class Writer final : public DocumentWriter {
public:
    Writer(Source source, const SvgOptions& options)
        : source_(std::move(source)), options_(options) {}
    void save(const Document& document, const std::filesystem::path& file) const override;
    [[nodiscard]] ChangedText change(const Document& document) const override;

private:
    Source source_;
    SvgOptions options_;
};

} // namespace host::svg
