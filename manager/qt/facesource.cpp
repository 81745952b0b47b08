// SPDX-License-Identifier: MIT
#include "manager/qt/facesource.h"

#include "manager/view/facefacts.h"

#include <algorithm>
#include <utility>

namespace manager {

bool isInstanceOf(const faces::Face& other, std::uint32_t index) {
    constexpr std::uint32_t ofFile = 0xffff;
    return other.index > ofFile && (other.index & ofFile) == (index & ofFile);
}

bool isNamedTwice(const faces::Face& instance, const std::vector<faces::Face>& faces) {
    return std::any_of(faces.begin(), faces.end(), [&](const faces::Face& face) {
        return !face.axes.empty() && face.index != instance.index &&
               isInstanceOf(instance, face.index) &&
               nameForPeople(face) == nameForPeople(instance) &&
               std::all_of(face.axes.begin(), face.axes.end(), [&](const faces::Axis& axis) {
                   const auto place =
                       std::find_if(instance.position.begin(), instance.position.end(),
                                    [&](const auto& value) { return value.first == axis.tag; });
                   return place == instance.position.end() || place->second == axis.initial;
               });
    });
}

void LibraryFaces::readFace(FaceId id, FaceTaker take) {
    reader_.run([id, take = std::move(take)](Desk& desk) -> LibraryReader::Taker {
        auto details = desk.library().face(id);
        std::vector<faces::Face> instances;
        if (details && !details->face.axes.empty()) {
            for (FaceDetails& other : desk.library().faces(details->match.container)) {
                if (other.match.folder == details->match.folder &&
                    other.match.fileName == details->match.fileName &&
                    isInstanceOf(other.face, details->face.index)) {
                    instances.push_back(std::move(other.face));
                }
            }
        }
        const faces::Face face = details ? std::move(details->face) : faces::Face();
        return [take, face, instances] { take(face, instances); };
    });
}

void LibraryFaces::readCharacters(FaceId id, CharacterTaker take) {
    reader_.run([id, take = std::move(take)](Desk& desk) -> LibraryReader::Taker {
        const auto details = desk.library().face(id);
        auto characters = std::make_shared<const Characters>(details ? details->face.coverage
                                                                     : faces::Coverage());
        return [take, characters = std::move(characters)] { take(characters); };
    });
}

} // namespace manager
