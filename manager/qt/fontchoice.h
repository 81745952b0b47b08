// SPDX-License-Identifier: MIT
// Fonts as they are put into collections and tags, and dragged there: of a family all that belongs
// to it, of a face its file alone.
#pragma once

#include "manager/qt/facemodel.h"

#include <QMimeData>
#include <QStringList>

#include <cstdint>
#include <map>
#include <set>
#include <span>
#include <string>

namespace manager {

/// By the container, names of those of its files that are meant; none: all that it has.
using FontChoice = std::map<std::int32_t, std::set<std::string>>;

/// These faces by their files; all that a container has when all its files are among them.
[[nodiscard]] FontChoice fontsOf(const FaceTable& table, std::span<const FaceRow> faces);
/// The fonts of these rows.
[[nodiscard]] FontChoice fontsOf(const FaceModel& model, const QModelIndexList& rows);

/// What the commands call them: whole containers by number, other fonts by their files.
[[nodiscard]] QStringList toWords(const FontChoice& fonts, const FaceTable& table);

/// What dragged ones are: a line of fields for each container, its number first.
inline constexpr const char* fontsType = "application/x-glyphora-fonts";
[[nodiscard]] QMimeData* toMimeData(const FontChoice& fonts);
/// Empty when there are none.
[[nodiscard]] FontChoice fontsIn(const QMimeData& data);

} // namespace manager
