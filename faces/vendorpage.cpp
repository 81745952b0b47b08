// SPDX-License-Identifier: MIT
#include "faces/vendorpage.h"

#include <hb-ot.h>

#include <array>
#include <memory>

namespace faces {

std::string vendorPage(const std::string& file, std::uint32_t index) {
    constexpr std::uint32_t face = 0xFFFF; // above are the instances of a variable font
    const std::unique_ptr<hb_blob_t, decltype(&hb_blob_destroy)> blob(
        hb_blob_create_from_file_or_fail(file.c_str()), hb_blob_destroy);
    const std::unique_ptr<hb_face_t, decltype(&hb_face_destroy)> font(
        hb_face_create(blob.get(), index & face), hb_face_destroy);
    constexpr hb_ot_name_id_t vendorUrl = 11;
    std::array<char, 2048> page{};
    auto size = static_cast<unsigned>(page.size());
    hb_ot_name_get_utf8(font.get(), vendorUrl, HB_LANGUAGE_INVALID, &size, page.data());
    return {page.data(), size};
}

} // namespace faces
