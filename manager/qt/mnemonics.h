// SPDX-License-Identifier: MIT
// Names that are part of a menu's texts.
#pragma once

#include <QString>

#include <string>

namespace manager {

/// `name` as a menu shows it: an "&" of its own is no mnemonic.
[[nodiscard]] inline QString inMenu(QString name) {
    return name.replace(QLatin1Char('&'), QStringLiteral("&&"));
}

/// `text` with `name` at its "%1", to be the text of an undo step, which stands in a menu.
[[nodiscard]] inline QString undoText(const std::string& text, const QString& name) {
    return QString::fromStdString(text).arg(inMenu(name));
}

} // namespace manager
