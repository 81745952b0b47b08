// SPDX-License-Identifier: MIT
// The document's own words, before and after a replacement.
#pragma once

#include "host/qt/fontdelegate.h"

#include <QAbstractScrollArea>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

class QLabel;

namespace host {

/// [main-thread] Lines of words, each in a face of its own, that scroll.
class WordsInFaces : public QAbstractScrollArea {
public:
    struct Words {
        std::string text;
        FaceFile face;
        bool operator==(const Words&) const = default;
    };

    /// `faces` outlives it. `changed` is called when more is known of what can be shown.
    WordsInFaces(preview::Faces& faces, std::function<void()> changed, QWidget* parent);
    ~WordsInFaces() override;

    void show(std::vector<Words> words);
    /// Whether there are words that cannot be drawn.
    bool isBroken() const;
    /// The characters of the words that the faces lack, each once, as far as is known.
    QString missing() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    struct Line {
        Words words;
        preview::Faces::Id asked = 0;
        preview::SharedAnswer answer;
    };
    void forget();
    void ask(Line& line);
    void setRange();
    int lineHeight() const;

    preview::Faces& faces_;
    std::function<void()> changed_;
    std::vector<Line> lines_;
    double scale_ = 0;
};

/// [main-thread] Hidden while there are no words.
class SamplePane : public QWidget {
public:
    /// What `services` names outlives it.
    SamplePane(FaceServices services, QWidget* parent);

    void setSamples(std::vector<Sample> samples);
    /// The font that is to come; empty: none is chosen.
    void choose(const std::string& name);

private:
    void showChosen();
    void note();

    FaceServices services_;
    std::vector<Sample> samples_;
    std::string chosen_;
    bool known_ = false; ///< the chosen one's face
    QLabel* beforeName_;
    QLabel* afterName_;
    QLabel* note_;
    WordsInFaces* before_;
    WordsInFaces* after_;
};

} // namespace host
