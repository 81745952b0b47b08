// SPDX-License-Identifier: MIT
// An index of a family has the number 0, one of a face that of its family's place and 1.
#include "manager/qt/facemodel.h"

#include "manager/qt/fontchoice.h"
#include "manager/qt/text.h"
#include "manager/view/texts.h"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <utility>

namespace manager {

namespace {

QString technologyText(faces::Technology technology) {
    switch (technology) {
    case faces::Technology::Type1:
        return QStringLiteral("Type 1");
    case faces::Technology::TrueType:
        return QStringLiteral("TrueType");
    default:
        return QStringLiteral("OpenType");
    }
}

/// Tells the state of a row by that of a face.
void setState(ListRow& row, const FaceStates& states, FaceRow face) {
    row.same = states.of(face);
    row.state = wordOf(*row.same);
    row.isAway = states.isAway(face) && row.same != FaceState::Away;
    if (row.isAway) {
        row.state = text(translated("%1 (away)")).arg(row.state);
    }
}

/// The face that shows a family best: upright, near the regular weight and width.
FaceRow bestOf(const FaceTable& table, std::span<const FaceRow> faces) {
    const auto distance = [&](FaceRow row) {
        const faces::Style& look = table.faces()[row].look;
        return std::abs(look.weight - 400) + 10 * std::abs(look.width - 100) +
               (look.slant == faces::Slant::Upright ? 0 : 1000);
    };
    return *std::min_element(faces.begin(), faces.end(),
                             [&](FaceRow a, FaceRow b) { return distance(a) < distance(b); });
}

} // namespace

QString wordOf(FaceState state) {
    switch (state) {
    case FaceState::Inactive:
        return text(translated("inactive"));
    case FaceState::Active:
        return text(translated("active"));
    case FaceState::Conflicting:
        return text(translated("conflicting"));
    case FaceState::Shown:
        return text(translated("shown by the desktop"));
    case FaceState::Away:
        return text(translated("away"));
    }
    return {};
}

void FaceModel::show(std::shared_ptr<const LibraryView> view, ListFilter filter) {
    beginResetModel();
    damaged_.clear();
    listing_.show(std::move(view), std::move(filter));
    endResetModel();
}

void FaceModel::setDamaged(FaceRow face, bool damaged) {
    if (damaged == damaged_.contains(face)) {
        return;
    }
    if (damaged) {
        damaged_.insert(face);
    } else {
        damaged_.erase(face);
    }
    const auto tell = [&](std::size_t place) {
        const QModelIndex family = index(static_cast<int>(place), 0);
        if (const QModelIndex shown = indexOfFace(face, family); shown.isValid()) {
            emit dataChanged(shown, shown);
            emit dataChanged(family, family);
        }
    };
    if (!isDrawing()) {
        if (const auto place = listing_.placeOf(listing_.view().table.faces()[face].family)) {
            tell(*place);
        }
        return;
    }
    for (std::size_t i = 0; i < listing_.families().size(); ++i) {
        tell(i); // several of a drawing's fonts may be replaced by it
    }
}

std::size_t FaceModel::familyOf(const QModelIndex& index) {
    return index.internalId() == 0 ? static_cast<std::size_t>(index.row())
                                   : static_cast<std::size_t>(index.internalId() - 1);
}

std::span<const FaceRow> FaceModel::facesOf(const QModelIndex& index) const {
    if (!index.isValid()) {
        return {};
    }
    const ShownFamily& family = listing_.families()[familyOf(index)];
    const auto faces = std::span(listing_.faces()).subspan(family.first, family.count);
    return index.internalId() == 0 ? faces
                                   : faces.subspan(static_cast<std::size_t>(index.row()), 1);
}

const std::string& FaceModel::nameOf(std::size_t family) const {
    const std::uint32_t place = listing_.families()[family].family;
    return isDrawing() ? listing_.view().drawing[place].name
                       : listing_.view().table.families()[place].name;
}

ListRow FaceModel::familyRow(std::size_t family) const {
    const LibraryView& view = listing_.view();
    const ShownFamily& shown = listing_.families()[family];
    const auto faces = std::span(listing_.faces()).subspan(shown.first, shown.count);
    const FaceRow first = faces.front();
    std::size_t active = 0;
    std::size_t alike = 0; // as the first one
    for (const FaceRow face : faces) {
        const FaceState state = view.states.of(face);
        active += state == FaceState::Active || state == FaceState::Conflicting ? 1 : 0;
        alike +=
            state == view.states.of(first) && view.states.isAway(face) == view.states.isAway(first)
                ? 1
                : 0;
    }
    ListRow row;
    row.isFamily = true;
    row.title = text(nameOf(family));
    row.detail = text(translated("%1 style", "%1 styles", faces.size()));
    row.sample = bestOf(view.table, faces);
    if (alike == faces.size()) {
        setState(row, view.states, first);
    } else {
        row.state = active == 0 ? text(translated("differs by style"))
                                : text(translated("%1 active", "%1 active", active));
    }
    return row;
}

ListRow FaceModel::askedRow(std::size_t font) const {
    const LibraryView& view = listing_.view();
    const ShownFamily& shown = listing_.families()[font];
    const AskedFont& asked = view.drawing[shown.family];
    ListRow row;
    row.isFamily = true;
    row.title = text(nameOf(font));
    row.detail = text(translated("%1 candidate", "%1 candidates", shown.count));
    if (shown.count != 0) {
        row.sample = listing_.faces()[shown.first];
    }
    if (asked.isShown) {
        row.same = FaceState::Shown;
        row.state = wordOf(*row.same);
        return row;
    }
    if (shown.count != 0 && listing_.choice(shown.first).isExact) {
        setState(row, view.states, *row.sample);
        return row;
    }
    const bool isHeld = !asked.choices.empty() && asked.choices.front().isExact;
    if (const auto held = isHeld ? view.table.rowOf(asked.choices.front().face) : std::nullopt) {
        setState(row, view.states, *held);
        row.state += text(translated(", hidden by the search or the filters"));
        return row;
    }
    row.state = text(translated("not in the library"));
    row.same = FaceState::Away; // as one that cannot be seen either
    return row;
}

ListRow FaceModel::faceRow(std::size_t place) const {
    const LibraryView& view = listing_.view();
    const FaceRow face = listing_.faces()[place];
    const ListedFace& listed = view.table.faces()[face];
    ListRow row;
    row.title = text(listed.style);
    row.detail = technologyText(listed.technology);
    if (listed.variable) {
        constexpr std::uint32_t ofFile = 0xffff; // above it the instance, from 1
        row.detail +=
            text(listed.index > ofFile ? translated(", named instance") : translated(", variable"));
    }
    if (isDrawing()) {
        const AskedFont::Choice& choice = listing_.choice(place);
        row.title = text(view.table.families()[listed.family].name) + ' ' + row.title;
        row.detail = text(choice.isExact ? translated("the font asked for")
                                         : faces::lineOf(choice.reason, translated));
        row.isDetailFirst = true;
    } else if (listing_.filter().isCopied) {
        row.detail = text(folderOf(view.table.pathOf(listed)));
        row.isDetailFirst = true;
    }
    setState(row, view.states, face);
    if (const std::string why = whyOf(view.states.why(listed.container));
        view.states.isActive(face) && !why.empty()) {
        row.state += QStringLiteral(": ") + text(why);
    }
    row.sample = face;
    return row;
}

ListRow FaceModel::row(const QModelIndex& index) const {
    const std::size_t family = familyOf(index);
    ListRow row =
        index.internalId() != 0
            ? faceRow(listing_.families()[family].first + static_cast<std::size_t>(index.row()))
        : isDrawing() ? askedRow(family)
                      : familyRow(family);
    if (row.sample && damaged_.contains(*row.sample)) {
        row.detail += QStringLiteral(", ") + text(translated("cannot be drawn"));
    }
    return row;
}

std::span<const FaceRow> FaceModel::facesToSwitch(const QModelIndex& index) const {
    const auto faces = facesOf(index);
    return isDrawing() && !faces.empty() ? faces.first(1) : faces;
}

QModelIndex FaceModel::indexOfFace(FaceRow face, const QModelIndex& family) const {
    const auto faces = facesOf(family);
    const auto found = isDrawing() ? std::find(faces.begin(), faces.end(), face)
                                   : std::lower_bound(faces.begin(), faces.end(), face);
    return found != faces.end() && *found == face
               ? index(static_cast<int>(found - faces.begin()), 0, family)
               : QModelIndex();
}

QModelIndex FaceModel::index(int row, int column, const QModelIndex& parent) const {
    if (row < 0 || column != 0 || row >= rowCount(parent)) {
        return {};
    }
    return createIndex(row, column,
                       parent.isValid() ? static_cast<quintptr>(parent.row()) + 1 : quintptr{0});
}

QModelIndex FaceModel::parent(const QModelIndex& index) const {
    return !index.isValid() || index.internalId() == 0
               ? QModelIndex()
               : createIndex(static_cast<int>(familyOf(index)), 0, quintptr{0});
}

int FaceModel::rowCount(const QModelIndex& parent) const {
    if (!parent.isValid()) {
        return static_cast<int>(listing_.families().size());
    }
    return parent.internalId() == 0 ? static_cast<int>(listing_.families()[familyOf(parent)].count)
                                    : 0;
}

QVariant FaceModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole: // what letters typed into the list look for
        return index.internalId() == 0 ? text(nameOf(familyOf(index))) : row(index).title;
    case Qt::ToolTipRole: // it may be cut
        return row(index).title + QLatin1Char('\n') + row(index).below();
    case Qt::AccessibleTextRole: {
        const ListRow shown = row(index);
        return QStringLiteral("%1, %2, %3").arg(shown.title, shown.detail, shown.state);
    }
    default:
        return {};
    }
}

Qt::ItemFlags FaceModel::flags(const QModelIndex& index) const {
    const Qt::ItemFlags flags = QAbstractItemModel::flags(index);
    return index.isValid() ? flags | Qt::ItemIsDragEnabled : flags;
}

QStringList FaceModel::mimeTypes() const {
    return {QLatin1String(fontsType)};
}

QMimeData* FaceModel::mimeData(const QModelIndexList& indexes) const {
    return toMimeData(fontsOf(*this, indexes));
}

} // namespace manager
