// SPDX-License-Identifier: MIT
#include "manager/view/facetable.h"

#include "faces/namekey.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <limits>
#include <numeric>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace manager {

namespace {

std::vector<std::string> wordsOf(std::string_view text) {
    std::vector<std::string> words;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        if (std::string key = faces::nameKey(text.substr(0, end)); !key.empty()) {
            words.push_back(std::move(key));
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return words;
}

} // namespace

/// In the order of their keys, with the place of each by its number.
struct FaceTable::KnownFamilies {
    explicit KnownFamilies(Database& database) {
        Statement statement(database, "SELECT id, name, key FROM family ORDER BY key, name");
        while (statement.step()) {
            places.emplace(statement.number(0), static_cast<std::uint32_t>(list.size()));
            list.push_back({statement.text(1), statement.text(2)});
        }
    }
    struct Known {
        std::string name;
        std::string key;
    };
    std::vector<Known> list;
    std::unordered_map<std::int64_t, std::uint32_t> places;
};

FaceTable::FaceTable(Library& library) {
    const Reading together(library.database());
    const KnownFamilies families(library.database());
    readFaces(library.database(), families);
}

void FaceTable::readFaces(Database& database, const KnownFamilies& families) {
    std::unordered_map<std::int64_t, std::uint32_t> folders;
    Statement known(database, "SELECT id, path FROM directory");
    while (known.step()) {
        folders.emplace(known.number(0), static_cast<std::uint32_t>(folders_.size()));
        folders_.push_back(known.text(1));
    }
    std::vector<std::string> names;
    std::size_t length = 0;
    std::vector<ListedFace> read; // whose families are places in the list for now
    Statement statement(
        database,
        "SELECT face.id, face.container, name.family, name.style, face.weight, face.width, "
        "face.slant, face.technology, face.axes IS NOT NULL, face.postscript_key, directory.shown, "
        "directory.away, directory.id, file.name, face.number, face.names FROM face JOIN file ON "
        "file.id = "
        "face.file "
        "JOIN directory ON directory.id = file.directory "
        "JOIN name ON name.face = face.id AND name.position = 0 WHERE file.spare = 0");
    while (statement.step()) {
        ListedFace& face = read.emplace_back();
        face.family = families.places.at(statement.number(2));
        face.id = static_cast<FaceId>(statement.number(0));
        face.container = static_cast<ContainerId>(statement.number(1));
        face.style = statement.text(3);
        face.look = {statement.real(4), statement.real(5),
                     static_cast<faces::Slant>(statement.number(6))};
        face.technology = static_cast<faces::Technology>(statement.number(7));
        face.variable = statement.number(8) != 0;
        const std::string_view name = statement.view(9);
        face.name = name.empty() ? 0 : std::hash<std::string_view>{}(name);
        face.shownByDesktop = statement.number(10) != 0;
        face.away = statement.number(11) != 0;
        face.folder = folders.at(statement.number(12));
        face.file = statement.text(13);
        face.index = static_cast<std::uint32_t>(statement.number(14));
        names.push_back(statement.text(15));
        length += names.back().size();
    }
    std::vector<std::uint32_t> order(read.size());
    std::iota(order.begin(), order.end(), 0U);
    // Spellings of a name that differ in case and blanks are one family.
    const auto keyOf = [&](const ListedFace& face) -> const std::string& {
        return families.list[face.family].key;
    };
    std::vector<std::uint32_t> ranks;
    for (std::size_t i = 0; i < families.list.size(); ++i) {
        const bool isAnother = i == 0 || families.list[i].key != families.list[i - 1].key;
        ranks.push_back(i == 0 ? 0 : ranks.back() + (isAnother ? 1 : 0));
    }
    std::sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
        const auto place = [&](const ListedFace& face) {
            return std::tuple(ranks[face.family], face.look.weight, face.look.width,
                              face.look.slant);
        };
        const auto more = [](const ListedFace& face) { return std::tie(face.style, face.id); };
        const auto placeA = place(read[a]);
        const auto placeB = place(read[b]);
        return placeA != placeB ? placeA < placeB : more(read[a]) < more(read[b]);
    });

    faces_.reserve(read.size());
    names_.reserve(length);
    const std::string* key = nullptr;
    for (const std::uint32_t i : order) {
        ListedFace& face = read[i];
        if (key == nullptr || *key != keyOf(face)) {
            key = &keyOf(face);
            families_.push_back(
                {families.list[face.family].name, static_cast<FaceRow>(faces_.size()), 0});
        }
        ++families_.back().count;
        face.family = static_cast<std::uint32_t>(families_.size() - 1);
        byId_.emplace_back(face.id, static_cast<FaceRow>(faces_.size()));
        namesBegin_.push_back(static_cast<std::uint32_t>(names_.size()));
        names_ += names[i];
        faces_.push_back(std::move(face));
    }
    namesBegin_.push_back(static_cast<std::uint32_t>(names_.size()));
    std::sort(byId_.begin(), byId_.end());
}

std::optional<FaceRow> FaceTable::rowOf(FaceId id) const {
    const auto place = std::lower_bound(byId_.begin(), byId_.end(), std::pair(id, FaceRow{0}));
    return place != byId_.end() && place->first == id ? std::optional(place->second) : std::nullopt;
}

std::string_view FaceTable::namesOf(FaceRow row) const {
    return std::string_view(names_).substr(namesBegin_[row],
                                           namesBegin_[row + 1] - namesBegin_[row]);
}

std::vector<FaceRow> FaceTable::find(std::string_view text,
                                     const std::vector<FaceRow>* among) const {
    std::vector<FaceRow> found;
    if (among != nullptr) {
        found = *among;
    } else {
        found.resize(faces_.size());
        std::iota(found.begin(), found.end(), FaceRow{0});
    }
    for (const std::string& word : wordsOf(text)) {
        std::vector<FaceRow> kept;
        if (found.size() == faces_.size()) {
            // All the names in one go.
            const char* const begin = names_.data();
            const char* const end = begin + names_.size();
            const char* at = begin;
            auto row = namesBegin_.begin();
            while (at < end) {
                const auto* const hit = static_cast<const char*>(
                    memmem(at, static_cast<std::size_t>(end - at), word.data(), word.size()));
                if (hit == nullptr) {
                    break;
                }
                row = std::upper_bound(row, namesBegin_.end(),
                                       static_cast<std::uint32_t>(hit - begin));
                kept.push_back(static_cast<FaceRow>(row - namesBegin_.begin() - 1));
                at = begin + *row;
            }
        } else {
            std::copy_if(found.begin(), found.end(), std::back_inserter(kept), [&](FaceRow one) {
                const std::string_view names = namesOf(one);
                return memmem(names.data(), names.size(), word.data(), word.size()) != nullptr;
            });
        }
        found = std::move(kept);
    }
    return found;
}

} // namespace manager
