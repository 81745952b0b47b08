// SPDX-License-Identifier: MIT
#include "manager/qt/setchoice.h"

#include <QJsonObject>

namespace manager {

QJsonArray SetChoice::sets() const {
    const QString id = QStringLiteral("id");
    const auto change = [](const QJsonArray& added, const QJsonArray& removed) {
        return QJsonObject{{QStringLiteral("added"), added}, {QStringLiteral("removed"), removed}};
    };
    QJsonArray sets;
    for (const std::int32_t container : containers) {
        sets.push_back(QJsonObject{{id, container}, {QStringLiteral("active"), on}});
    }
    const QJsonArray byHand{QJsonArray{QStringLiteral("hand")}};
    for (const auto& [container, names] : files) {
        QJsonArray changed;
        for (const std::string& name : names) {
            changed.push_back(QString::fromStdString(name));
        }
        sets.push_back(
            QJsonObject{{id, container},
                        {QStringLiteral("reasons"), change(on ? byHand : QJsonArray(), {})},
                        {QStringLiteral("files"), on ? change(changed, {}) : change({}, changed)}});
    }
    return sets;
}

SetChoice choiceOf(const FaceModel& model, const QModelIndexList& rows, bool on) {
    const FaceListing& listing = model.listing();
    const LibraryView& view = listing.view();
    SetChoice choice{on, {}, {}};
    std::map<std::int32_t, std::set<std::string>> files;
    for (const QModelIndex& index : rows) {
        const bool isFamily = !index.parent().isValid() && !listing.filter().isDrawing;
        for (const FaceRow row : model.facesToSwitch(index)) {
            const ListedFace& face = view.table.faces()[row];
            const auto container = static_cast<std::int32_t>(face.container);
            const bool isActive = view.states.isActive(row);
            if (on ? isActive || face.away || face.shownByDesktop
                   : !isActive && !(isFamily && !view.states.why(face.container).empty())) {
                continue;
            }
            if (isFamily) {
                choice.containers.insert(container);
            } else {
                files[container].insert(face.file);
            }
        }
    }
    for (auto& [container, names] : files) {
        if (!choice.containers.contains(container)) {
            choice.files.emplace(container, std::move(names));
        }
    }
    return choice;
}

} // namespace manager
