// SPDX-License-Identifier: MIT
// Where the toolkit finds translations.
#include "host/qt/translators.h"

#include "host/core/translation.h"

#include <QCoreApplication>
#include <QLibraryInfo>

namespace host {

/// A null string lets the next translator try.
QString LayoutTranslator::translate(const char* /*context*/, const char* text,
                                    const char* /*comment*/, int /*number*/) const {
    const std::string result = translated(text);
    return result != text ? QString::fromStdString(result) : QString();
}

Translators::Translators() {
    // TRANSLATORS: the name of Qt's own catalogue in your language
    if (toolkit_.load(QString::fromStdString(translated("qtbase_en")),
                      QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(&toolkit_);
    }
    QCoreApplication::installTranslator(&layouts_);
}

} // namespace host
