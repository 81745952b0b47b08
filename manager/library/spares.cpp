// SPDX-License-Identifier: MIT
// Faces by their PostScript names; those without a name stand for themselves.
#include "manager/library/spares.h"

#include <map>
#include <set>
#include <string>
#include <utility>

namespace manager {

void markSpares(Database& database, std::int64_t container) {
    Statement read(database,
                   "SELECT file.id, face.postscript_key, face.number, file.spare FROM file "
                   "JOIN face ON face.file = file.id WHERE file.container = ? "
                   "ORDER BY face.revision DESC, file.name, face.id");
    read.bind(1, container);
    std::map<std::int64_t, bool> wasSpare;
    std::set<std::int64_t> shown;
    std::map<std::string, std::int64_t> fileOfFace;
    while (read.step()) {
        const std::int64_t file = read.number(0);
        const std::string name = read.text(1);
        wasSpare[file] = read.number(3) != 0;
        if (name.empty() || fileOfFace.emplace(name, file).first->second == file) {
            shown.insert(file);
        }
    }
    read.reset();
    Statement mark(database, "UPDATE file SET spare = ? WHERE id = ?");
    for (const auto& [file, was] : wasSpare) {
        const bool isSpare = !shown.contains(file);
        if (isSpare != was) {
            mark.bind(1, std::int64_t{isSpare}).bind(2, file).run();
        }
    }
}

} // namespace manager
