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

/// In the order of their keys, with the rank of each by its number. Spellings of a name that differ
/// in case and blanks have the same rank.
struct FaceTable::KnownFamilies {
    explicit KnownFamilies(Database& database) {
        Statement statement(database, "SELECT id, name, key FROM family ORDER BY key, name");
        std::string key;
        while (statement.step()) {
            if (ranks == 0 || statement.view(2) != key) {
                key = statement.text(2);
                ++ranks;
            }
            places.emplace(statement.number(0), Place{ranks - 1, names.size()});
            names.push_back(statement.text(1));
        }
    }
    struct Place {
        std::uint32_t rank;
        std::size_t name;
    };
    std::vector<std::string> names;
    std::uint32_t ranks = 0;
    std::unordered_map<std::int64_t, Place> places;
};

/// All that are no spares, by number.
struct FaceTable::KnownFiles {
    explicit KnownFiles(Database& database) {
        std::unordered_map<std::int64_t, std::uint32_t> places;
        Statement directories(database, "SELECT id, path, shown, away FROM directory");
        while (directories.step()) {
            places.emplace(directories.number(0), static_cast<std::uint32_t>(folders.size()));
            folders.push_back(
                {directories.text(1), directories.number(2) != 0, directories.number(3) != 0});
        }
        Statement statement(database,
                            "SELECT id, directory, name FROM file WHERE spare = 0 ORDER BY id");
        while (statement.step()) {
            list.push_back(
                {statement.number(0), places.at(statement.number(1)), statement.text(2)});
        }
    }
    struct Folder {
        std::string path;
        bool shown;
        bool away;
    };
    struct File {
        std::int64_t id;
        std::uint32_t folder;
        std::string name;
    };
    [[nodiscard]] const File* find(std::int64_t id) const {
        const auto place = std::lower_bound(
            list.begin(), list.end(), id,
            [](const File& file, std::int64_t wanted) { return file.id < wanted; });
        return place != list.end() && place->id == id ? &*place : nullptr;
    }
    std::vector<Folder> folders;
    std::vector<File> list;
};

/// As they come, whose families are ranks.
struct FaceTable::ReadFaces {
    std::vector<ListedFace> faces;
    std::vector<std::size_t> familyNames; ///< their places among the known ones
    std::string names;
    std::vector<std::size_t> namesEnd;
};

FaceTable::FaceTable(Library& library) {
    const Reading together(library.database());
    const KnownFamilies families(library.database());
    sort(readFaces(library.database(), families), families);
}

// The tables are read one beside the other, each in its own order, rather than searched for each
// face.
FaceTable::ReadFaces FaceTable::readFaces(Database& database, const KnownFamilies& families) {
    const KnownFiles files(database);
    for (const auto& folder : files.folders) {
        folders_.push_back(folder.path);
    }
    ReadFaces read;
    Statement named(database,
                    "SELECT face, family, style FROM name WHERE position = 0 ORDER BY face");
    bool isNamed = named.step();
    Statement statement(database,
                        "SELECT id, file, container, weight, width, slant, technology, "
                        "axes IS NOT NULL, postscript_key, number, names FROM face ORDER BY id");
    while (statement.step()) {
        const std::int64_t id = statement.number(0);
        while (isNamed && named.number(0) < id) {
            isNamed = named.step();
        }
        const KnownFiles::File* const file = files.find(statement.number(1));
        if (!isNamed || named.number(0) != id || file == nullptr) {
            continue;
        }
        const KnownFamilies::Place family = families.places.at(named.number(1));
        read.familyNames.push_back(family.name);
        ListedFace& face = read.faces.emplace_back();
        face.family = family.rank;
        face.id = static_cast<FaceId>(id);
        face.container = static_cast<ContainerId>(statement.number(2));
        face.style = named.text(2);
        face.look = {statement.real(3), statement.real(4),
                     static_cast<faces::Slant>(statement.number(5))};
        face.technology = static_cast<faces::Technology>(statement.number(6));
        face.variable = statement.number(7) != 0;
        const std::string_view name = statement.view(8);
        face.name = name.empty() ? 0 : std::hash<std::string_view>{}(name);
        face.folder = file->folder;
        face.shownByDesktop = files.folders[file->folder].shown;
        face.away = files.folders[file->folder].away;
        face.file = file->name;
        face.index = static_cast<std::uint32_t>(statement.number(9));
        read.names += statement.view(10);
        read.namesEnd.push_back(read.names.size());
    }
    return read;
}

void FaceTable::sort(ReadFaces read, const KnownFamilies& families) {
    // Into its family first, as there are many; then within each.
    std::vector<std::uint32_t> begins(families.ranks + 1U);
    for (const ListedFace& face : read.faces) {
        ++begins[face.family + 1];
    }
    std::partial_sum(begins.begin(), begins.end(), begins.begin());
    std::vector<std::uint32_t> order(read.faces.size());
    std::vector<std::uint32_t> ends(begins.begin(), begins.end() - 1);
    for (std::uint32_t i = 0; i < read.faces.size(); ++i) {
        order[ends[read.faces[i].family]++] = i;
    }
    const auto less = [&](std::uint32_t a, std::uint32_t b) {
        const auto place = [&](std::uint32_t i) {
            const ListedFace& face = read.faces[i];
            return std::tie(face.look.weight, face.look.width, face.look.slant, face.style,
                            face.id);
        };
        return place(a) < place(b);
    };
    faces_.reserve(read.faces.size());
    namesBegin_.reserve(read.faces.size() + 1);
    names_.reserve(read.names.size());
    byId_.resize(read.faces.size()); // they were read in the order of their numbers
    for (std::uint32_t rank = 0; rank < families.ranks; ++rank) {
        const std::span<std::uint32_t> together(order.data() + begins[rank],
                                                ends[rank] - begins[rank]);
        std::sort(together.begin(), together.end(), less);
        for (const std::uint32_t i : together) {
            const auto row = static_cast<FaceRow>(faces_.size());
            if (i == together.front()) {
                families_.push_back({families.names[read.familyNames[i]], row,
                                     static_cast<std::uint32_t>(together.size())});
            }
            const std::size_t namesBegin = i == 0 ? 0 : read.namesEnd[i - 1];
            namesBegin_.push_back(static_cast<std::uint32_t>(names_.size()));
            names_.append(read.names, namesBegin, read.namesEnd[i] - namesBegin);
            ListedFace& face = faces_.emplace_back(std::move(read.faces[i]));
            face.family = static_cast<std::uint32_t>(families_.size() - 1);
            byId_[i] = {face.id, row};
        }
    }
    namesBegin_.push_back(static_cast<std::uint32_t>(names_.size()));
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
