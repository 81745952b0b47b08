// SPDX-License-Identifier: MIT
// Opening faces with FreeType, and handing them to HarfBuzz.
#include "preview/drawing/face.h"

#include "system/descriptor.h"

#include <fcntl.h>
#include <hb-ft.h>
#include FT_MULTIPLE_MASTERS_H

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <span>
#include <system_error>

namespace preview {

namespace {

constexpr std::int64_t maximumFile = std::int64_t{256} << 20U;

[[noreturn]] void fail(const std::string& path, const std::string& what) {
    throw FontError(path + ": " + what);
}

[[noreturn]] void failSystem(const std::string& path) {
    fail(path, std::generic_category().message(errno));
}

void check(FT_Error error, const std::string& path, const char* what) {
    if (error != 0) {
        const char* const reason = FT_Error_String(error);
        fail(path, reason == nullptr
                       ? std::string(what) + " (FreeType error " + std::to_string(error) + ")"
                       : std::string(what) + ": " + reason);
    }
}

std::string readFile(const std::string& path, FileIdentity& identity) {
    // Not blocking: nobody may ever write to a pipe of that name.
    const sys::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file || fstat(file.get(), &status) != 0) {
        failSystem(path);
    }
    if (!S_ISREG(status.st_mode)) {
        fail(path, "not a file");
    }
    if (status.st_size > maximumFile) {
        fail(path, "larger than " + std::to_string(maximumFile >> 20U) + " MiB");
    }
    identity = identityOf(status);
    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    std::size_t length = 0;
    while (length < bytes.size()) {
        const ssize_t count = read(file.get(), bytes.data() + length, bytes.size() - length);
        if (count < 0 && errno != EINTR) {
            failSystem(path);
        }
        if (count == 0) {
            break;
        }
        length += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    bytes.resize(length);
    return bytes;
}

/// The axes of a variable face.
class Variations {
public:
    explicit Variations(FT_Face face) : library_(face->glyph->library) {
        FT_Get_MM_Var(face, &description_);
    }
    Variations(const Variations&) = delete;
    Variations& operator=(const Variations&) = delete;
    ~Variations() { FT_Done_MM_Var(library_, description_); }

    [[nodiscard]] explicit operator bool() const { return description_ != nullptr; }

    /// The places of a named instance, counted from 1, or of the face itself.
    [[nodiscard]] std::vector<FT_Fixed> places(std::uint32_t instance) const {
        std::vector<FT_Fixed> places;
        for (const FT_Var_Axis& axis : axes()) {
            places.push_back(axis.def);
        }
        if (instance > 0 && instance <= description_->num_namedstyles) {
            const FT_Fixed* const named = description_->namedstyle[instance - 1].coords;
            // FreeType 2.12 hands negative ones out without their sign.
            std::transform(named, named + places.size(), places.begin(),
                           [](FT_Fixed place) { return static_cast<std::int32_t>(place); });
        }
        return places;
    }

    void move(std::vector<FT_Fixed>& places, const AxisValue& wanted) const {
        const auto tag = FT_MAKE_TAG(
            static_cast<unsigned char>(wanted.tag[0]), static_cast<unsigned char>(wanted.tag[1]),
            static_cast<unsigned char>(wanted.tag[2]), static_cast<unsigned char>(wanted.tag[3]));
        for (std::size_t i = 0; i < places.size(); ++i) {
            const FT_Var_Axis& axis = axes()[i];
            if (axis.tag == tag) {
                const FT_Fixed place = std::lround(wanted.value * 65536);
                places[i] = std::max(axis.minimum, std::min(place, axis.maximum));
            }
        }
    }

private:
    [[nodiscard]] std::span<const FT_Var_Axis> axes() const {
        return {description_->axis, description_->num_axis};
    }

    FT_Library library_;
    FT_MM_Var* description_ = nullptr;
};

} // namespace

Face::Face(FT_Library library, const Request& request)
    : path_(request.file), number_(request.face), bytes_(readFile(path_, identity_)) {
    FT_Face face = nullptr;
    check(FT_New_Memory_Face(library, reinterpret_cast<const FT_Byte*>(bytes_.data()),
                             static_cast<FT_Long>(bytes_.size()), static_cast<FT_Long>(number_),
                             &face),
          path_, "no font that can be drawn");
    face_.reset(face);
    font_.reset(hb_ft_font_create_referenced(face));
    hb_ft_font_set_load_flags(font_.get(), loadFlags);
}

bool Face::isOf(const Request& request) const {
    return request.file == path_ && request.face == number_ && identityOf(path_) == identity_;
}

void Face::set(const Request& request) {
    setAxes(request);
    setSize(request);
    hb_ft_font_changed(font_.get());
}

void Face::setSize(const Request& request) {
    FT_Face const face = face_.get();
    const double wanted = request.pixels * request.scale;
    strikeScale_ = 1;
    if (FT_IS_SCALABLE(face)) {
        // A resolution of 72 makes points of pixels.
        check(FT_Set_Char_Size(face, 0, std::lround(wanted * 64), 72, 72), path_, "no such size");
        return;
    }
    // The smallest that need not be enlarged, else the largest.
    const std::span<const FT_Bitmap_Size> sizes(
        face->available_sizes, static_cast<std::size_t>(std::max(0, face->num_fixed_sizes)));
    std::size_t best = 0;
    for (std::size_t i = 1; i < sizes.size(); ++i) {
        const double here = static_cast<double>(sizes[i].y_ppem) / 64;
        const double there = static_cast<double>(sizes[best].y_ppem) / 64;
        if (there < wanted ? here > there : here >= wanted && here < there) {
            best = i;
        }
    }
    if (sizes.empty() || sizes[best].y_ppem <= 0) {
        fail(path_, "neither outlines nor pictures");
    }
    check(FT_Select_Size(face, static_cast<FT_Int>(best)), path_, "no such size");
    strikeScale_ = wanted * 64 / static_cast<double>(sizes[best].y_ppem);
}

void Face::setAxes(const Request& request) {
    if (!FT_HAS_MULTIPLE_MASTERS(face_.get())) {
        return;
    }
    const Variations variations(face_.get());
    if (!variations) {
        return;
    }
    std::vector<FT_Fixed> places = variations.places(number_ >> 16U);
    for (const AxisValue& wanted : request.axes) {
        variations.move(places, wanted);
    }
    check(FT_Set_Var_Design_Coordinates(face_.get(), static_cast<FT_UInt>(places.size()),
                                        places.data()),
          path_, "no such places on its axes");
}

} // namespace preview
