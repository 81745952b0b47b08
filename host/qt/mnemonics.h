// SPDX-License-Identifier: MIT
// The letters that press buttons together with Alt, found in whatever the buttons say.
#pragma once

#include <QChar>
#include <QString>

#include <vector>

namespace host {

/// One letter of each text, in capitals, that no other of them gets: the first of a word where it
/// can be; null where none is left. A text keeps its letter of `before` (which may be shorter) as
/// long as it has it.
[[nodiscard]] std::vector<QChar> chooseMnemonics(const std::vector<QString>& texts,
                                                 const std::vector<QChar>& before);

/// The text as a label of the toolkit in which `mnemonic`, if it is not null, is marked.
[[nodiscard]] QString labelOf(const QString& text, QChar mnemonic);

} // namespace host
