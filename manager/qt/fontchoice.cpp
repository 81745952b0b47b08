// SPDX-License-Identifier: MIT
#include "manager/qt/fontchoice.h"

#include "manager/library/fields.h"
#include "manager/qt/text.h"

#include <optional>
#include <vector>

namespace manager {

namespace {

std::int32_t containerOf(const FaceTable& table, FaceRow row) {
    return static_cast<std::int32_t>(table.faces()[row].container);
}

} // namespace

FontChoice fontsOf(const FaceTable& table, std::span<const FaceRow> faces) {
    FontChoice choice;
    for (const FaceRow row : faces) {
        choice[containerOf(table, row)].insert(table.faces()[row].file);
    }
    std::set<std::int32_t> partial;
    for (const ListedFace& face : table.faces()) {
        const auto chosen = choice.find(static_cast<std::int32_t>(face.container));
        if (chosen != choice.end() && !chosen->second.contains(face.file)) {
            partial.insert(chosen->first);
        }
    }
    for (auto& [container, files] : choice) {
        if (!partial.contains(container)) {
            files.clear();
        }
    }
    return choice;
}

FontChoice fontsOf(const FaceModel& model, const QModelIndexList& rows) {
    const FaceListing& listing = model.listing();
    const FaceTable& table = listing.view().table;
    std::set<std::int32_t> whole;
    std::vector<FaceRow> single;
    for (const QModelIndex& index : rows) {
        const bool isFamily = !index.parent().isValid() && !listing.filter().isDrawing;
        for (const FaceRow row : model.facesToSwitch(index)) {
            if (isFamily) {
                whole.insert(containerOf(table, row));
            } else {
                single.push_back(row);
            }
        }
    }
    FontChoice choice = fontsOf(table, single);
    for (const std::int32_t container : whole) {
        choice[container].clear();
    }
    return choice;
}

QStringList toWords(const FontChoice& fonts, const FaceTable& table) {
    QStringList words;
    for (const auto& [container, files] : fonts) {
        if (files.empty()) {
            words.push_back(QString::number(container));
        }
    }
    std::set<std::string> paths; // a file may have several faces
    for (const ListedFace& face : table.faces()) {
        const auto chosen = fonts.find(static_cast<std::int32_t>(face.container));
        if (chosen != fonts.end() && chosen->second.contains(face.file)) {
            paths.insert(table.pathOf(face));
        }
    }
    for (const std::string& path : paths) {
        words.push_back(QStringLiteral("file:") + text(path));
    }
    return words;
}

QMimeData* toMimeData(const FontChoice& fonts) {
    std::string lines;
    for (const auto& [container, files] : fonts) {
        const std::string number = std::to_string(container);
        std::vector<std::string_view> fields{number};
        fields.insert(fields.end(), files.begin(), files.end());
        lines += joinFields(std::span<const std::string_view>(fields));
    }
    auto* const data = new QMimeData;
    data->setData(QLatin1String(fontsType), QByteArray::fromStdString(lines));
    return data;
}

FontChoice fontsIn(const QMimeData& data) {
    FontChoice fonts;
    const std::string lines = data.data(QLatin1String(fontsType)).toStdString();
    for (const std::string_view line : splitLines(lines)) {
        const auto fields = splitFields(line);
        const auto container =
            fields ? toContainerId(fields->front()) : std::optional<ContainerId>();
        if (container) {
            fonts[static_cast<std::int32_t>(*container)] = {fields->begin() + 1, fields->end()};
        }
    }
    return fonts;
}

} // namespace manager
