// SPDX-License-Identifier: MIT
// Choosing letters, and marking them.
#include "host/qt/mnemonics.h"

#include <algorithm>

namespace host {

namespace {

/// Scripts without capitals are not typed by single keys.
bool isTyped(QChar character) {
    return character.isLetter() && character.toUpper() != character.toLower();
}

bool beginsWord(const QString& text, qsizetype at) {
    return at == 0 || !text[at - 1].isLetterOrNumber();
}

/// Where the text has its letters, those that begin a word first.
std::vector<qsizetype> placesOfLetters(const QString& text) {
    std::vector<qsizetype> places;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (isTyped(text[at])) {
            places.push_back(at);
        }
    }
    std::stable_partition(places.begin(), places.end(),
                          [&](qsizetype at) { return beginsWord(text, at); });
    return places;
}

bool has(const std::vector<QChar>& letters, QChar letter) {
    return std::find(letters.begin(), letters.end(), letter) != letters.end();
}

QChar firstFree(const QString& text, const std::vector<QChar>& taken) {
    for (const qsizetype at : placesOfLetters(text)) {
        if (!has(taken, text[at].toUpper())) {
            return text[at].toUpper();
        }
    }
    return {};
}

} // namespace

std::vector<QChar> chooseMnemonics(const std::vector<QString>& texts,
                                   const std::vector<QChar>& before) {
    std::vector<QChar> letters = before;
    letters.resize(texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (!texts[i].contains(letters[i], Qt::CaseInsensitive)) {
            letters[i] = {};
        }
    }
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (letters[i].isNull()) {
            letters[i] = firstFree(texts[i], letters);
        }
    }
    return letters;
}

QString labelOf(const QString& text, QChar mnemonic) {
    const std::vector<qsizetype> places = placesOfLetters(text);
    const auto marked = std::find_if(places.begin(), places.end(),
                                     [&](qsizetype at) { return text[at].toUpper() == mnemonic; });
    QString label;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (text[at] == u'&' || (marked != places.end() && *marked == at)) {
            label += u'&';
        }
        label += text[at];
    }
    return label;
}

} // namespace host
