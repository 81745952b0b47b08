// SPDX-License-Identifier: MIT
#include "manager/qt/fontfilestanding.h"

#include "manager/view/facestates.h"
#include "manager/view/texts.h"

#include <utility>

namespace manager {

std::vector<FileStanding> readStandings(Desk& desk, const std::vector<std::string>& files,
                                        const std::vector<faces::FontFileContents>& contents) {
    std::vector<FileStanding> standings(files.size());
    for (std::size_t i = 0; i < files.size(); ++i) {
        FileStanding& standing = standings[i];
        standing.known = findInLibrary(desk.library(), files[i], contents[i]);
        if (!standing.known) {
            continue;
        }
        const FaceMatch& face = standing.known->face;
        auto set = desk.activation().setOf(face.holder);
        if (set && FilesByName(*set).find(face.fileName) != nullptr) {
            standing.isActive = true;
            standing.reasons = std::move(set->reasons);
        }
    }
    return standings;
}

QString wordsOf(const FileStanding& standing) {
    const auto text = [](const std::string& plain) { return QString::fromStdString(plain); };
    const bool isOwn = standing.known && !standing.known->isForSession;
    QString words = text(translated("This font is not in the library."));
    if (isOwn) {
        const FaceMatch& face = standing.known->face;
        words = text(translated("In the library, as %1"))
                    .arg(text(joinPath(face.folder, face.fileName)));
    }
    if (standing.known && standing.known->face.shownByDesktop) {
        words += QLatin1Char('\n') + text(translated("The desktop shows it without being asked."));
    } else if (standing.isActive) {
        const std::string why = whyOf(standing.reasons);
        words += QLatin1Char('\n') + (why.empty() ? text(translated("active"))
                                                  : text(translated("Active: %1")).arg(text(why)));
    }
    return words;
}

} // namespace manager
