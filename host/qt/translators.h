// SPDX-License-Identifier: MIT
// The texts of layouts and of the toolkit itself in the user's language.
#pragma once

#include <QTranslator>

namespace host {

/// Asks the host's catalogue for the texts of layouts, whatever widget has them.
class LayoutTranslator : public QTranslator {
public:
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* text, const char* comment,
                      int number) const override;
};

/// [main-thread] While they live, the toolkit speaks the language that was chosen before. Its own
/// texts stay English where their translation is not installed.
class Translators {
public:
    Translators();

private:
    QTranslator toolkit_;
    LayoutTranslator layouts_;
};

} // namespace host
