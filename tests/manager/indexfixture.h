// SPDX-License-Identifier: MIT
// An index of files that are empty: what each holds is told by its name.
#pragma once

#include "manager/library/library.h"
#include "manager/library/update.h"
#include "tests/manager/fullface.h"
#include "tests/manager/sandbox.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace managertest {

inline faces::Face plainFace(const std::string& family, const std::string& style,
                             faces::Technology technology = faces::Technology::TrueType,
                             std::uint32_t revision = 1) {
    faces::Face face;
    face.technology = technology;
    face.postScriptName = family + "-" + style;
    face.fullNames = {family + " " + style};
    face.names = {{family, style, "en"}};
    face.revision = revision;
    return face;
}

class AnIndex : public testing::Test {
protected:
    void add(const std::string& path, const faces::Face& face, const std::string& bytes = "") {
        const std::string full = sandbox_.write(path, bytes);
        faces_[full] = face;
    }
    manager::UpdateReport scan(const manager::UpdateProgress& progress = {}) {
        return manager::updateLibrary(*library_, std::vector{root_}, manager::FontReaderLimits{},
                                      progress, [this](const std::string& path) {
                                          return faces::FontFileContents{false, {faces_.at(path)}};
                                      });
    }
    /// PostScript names by the numbers of their containers, with what is activated of each.
    std::map<std::int32_t, std::string> shown() {
        std::map<std::int32_t, std::string> result;
        for (const manager::Container& container : library_->containers()) {
            std::string& names = result[static_cast<std::int32_t>(container.id)];
            for (const manager::LibraryFile& file : library_->files(container.id)) {
                names += manager::nameOf(file.path) + " ";
            }
        }
        return result;
    }
    /// Makes the index one of schema 4 or 3 and opens it again.
    void goBackTo(int schema) {
        library_->database().run(
            ("DROP INDEX face_order; DROP INDEX file_whole; ALTER TABLE face DROP COLUMN names; "
             "ALTER TABLE face DROP COLUMN family_key; ALTER TABLE container DROP COLUMN faces; "
             "ALTER TABLE container DROP COLUMN files; " +
             std::string(schema == 3 ? "ALTER TABLE file DROP COLUMN whole; " : "") +
             "PRAGMA user_version=" + std::to_string(schema))
                .c_str());
        library_.reset();
        library_ = manager::openLibrary(sandbox_.places(), {}, [](const std::string&) {});
    }
    std::vector<std::string> found(const manager::FaceQuery& query) {
        std::vector<std::string> names;
        for (const manager::FaceMatch& face : library_->search(query).faces) {
            names.push_back(face.postScriptName);
        }
        return names;
    }

    Sandbox sandbox_;
    std::string root_ = sandbox_.library();
    std::map<std::string, faces::Face> faces_;
    std::unique_ptr<manager::Library> library_ =
        std::make_unique<manager::Library>(sandbox_.places());
};

} // namespace managertest
