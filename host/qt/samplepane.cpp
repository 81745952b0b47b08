// SPDX-License-Identifier: MIT
// Words as they are shown now, and as they would be in another face.
#include "host/qt/samplepane.h"

#include "host/core/translation.h"

#include <QLabel>
#include <QPainter>
#include <QScrollBar>
#include <QStringList>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace host {

namespace {

QString toQt(const std::string& text) {
    return QString::fromStdString(text);
}

constexpr double lineSpacing = 1.6;
constexpr int padding = 6;

/// One line, with dots for what has no room.
class ShortenedLabel : public QLabel {
public:
    explicit ShortenedLabel(QWidget* parent) : QLabel(parent) {
        setTextFormat(Qt::PlainText);
        setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    }
    QSize sizeHint() const override { return {0, fontMetrics().lineSpacing()}; }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, width());
        style()->drawItemText(&painter, rect(), Qt::AlignVCenter | Qt::AlignLeft, palette(),
                              isEnabled(), shown, foregroundRole());
        setToolTip(shown == text() ? QString() : text().toHtmlEscaped());
    }
};

bool contains(const std::u32string& text, char32_t character) {
    return text.find(character) != std::u32string::npos;
}

QLabel* heading(const QString& text, QWidget* parent) {
    auto* const label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    return label;
}

QString namesOf(const std::vector<Sample>& samples, std::string (*nameOf)(const Sample&)) {
    QStringList names;
    for (const Sample& sample : samples) {
        names.append(toQt(nameOf(sample)));
    }
    names.removeDuplicates();
    return names.join(QStringLiteral(", "));
}

} // namespace

WordsInFaces::WordsInFaces(preview::Faces& faces, std::function<void()> changed, QWidget* parent)
    : QAbstractScrollArea(parent), faces_(faces), changed_(std::move(changed)) {
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
}

WordsInFaces::~WordsInFaces() {
    forget();
}

void WordsInFaces::forget() {
    for (Line& line : lines_) {
        faces_.cancel(std::exchange(line.asked, 0));
        line.answer = nullptr;
    }
}

void WordsInFaces::show(std::vector<Words> words) {
    forget();
    lines_.clear();
    QStringList texts;
    for (Words& each : words) {
        texts.append(toQt(each.text));
        lines_.push_back({std::move(each), 0, nullptr});
    }
    setAccessibleDescription(texts.join(QLatin1Char('\n')));
    changed_();
    setRange();
    viewport()->update();
}

bool WordsInFaces::isBroken() const {
    return std::any_of(lines_.begin(), lines_.end(), [](const Line& line) {
        return line.answer != nullptr && !line.answer->problem.empty();
    });
}

QString WordsInFaces::missing() const {
    std::u32string all; // in the order of reading
    for (const Line& line : lines_) {
        for (const char32_t c : toQt(line.words.text).toStdU32String()) {
            if (line.answer != nullptr && contains(line.answer->missing, c) && !contains(all, c)) {
                all += c;
            }
        }
    }
    return QString::fromStdU32String(all);
}

int WordsInFaces::lineHeight() const {
    return static_cast<int>(facePixels(font()) * lineSpacing);
}

QSize WordsInFaces::sizeHint() const {
    constexpr int lines = 5;
    constexpr int ems = 16;
    return {static_cast<int>(facePixels(font())) * ems, lines * lineHeight() + 2 * padding};
}

QSize WordsInFaces::minimumSizeHint() const {
    return {sizeHint().width() / 2, lineHeight() + 2 * padding};
}

void WordsInFaces::ask(Line& line) {
    const auto at = static_cast<std::size_t>(&line - lines_.data());
    line.asked = faces_.ask(
        {line.words.face.file, line.words.face.index, line.words.text, facePixels(font()), scale_},
        [this, at](const preview::SharedAnswer& answer) {
            lines_[at].asked = 0;
            lines_[at].answer = answer;
            changed_();
            viewport()->update();
        });
}

void WordsInFaces::setRange() {
    const int room = viewport()->height();
    const int height = static_cast<int>(lines_.size()) * lineHeight() + 2 * padding;
    verticalScrollBar()->setRange(0, std::max(0, height - room));
    verticalScrollBar()->setSingleStep(lineHeight());
    verticalScrollBar()->setPageStep(room);
    // There is nothing to do by keyboard where all is seen.
    setFocusPolicy(height > room ? Qt::StrongFocus : Qt::NoFocus);
}

void WordsInFaces::resizeEvent(QResizeEvent* /*event*/) {
    setRange();
}

void WordsInFaces::paintEvent(QPaintEvent* /*event*/) {
    if (std::exchange(scale_, devicePixelRatioF()) != devicePixelRatioF()) {
        forget();
    }
    QPainter painter(viewport());
    constexpr double baseline = 1.1; // in ems from a line's top
    QRectF area = viewport()->rect().adjusted(padding, padding, -padding, 0);
    area.translate(0, -verticalScrollBar()->value());
    area.setHeight(lineHeight());
    for (Line& line : lines_) {
        if (line.answer == nullptr && line.asked == 0) {
            ask(line); // wherever it is: what it lacks is told of all
        }
        if (line.answer != nullptr && line.answer->problem.empty()) {
            preview::drawFace(
                painter, line.answer->picture, scale_,
                {area, baseline * facePixels(font()), preview::runsFromTheRight(line.words.text)},
                palette().color(QPalette::Text));
        }
        area.translate(0, lineHeight());
    }
}

SamplePane::SamplePane(FaceServices services, QWidget* parent)
    : QWidget(parent), services_(services), beforeName_(new ShortenedLabel(this)),
      afterName_(new ShortenedLabel(this)), note_(new ShortenedLabel(this)),
      before_(new WordsInFaces(
          services.faces, [] {}, this)),
      after_(new WordsInFaces(
          services.faces, [this] { note(); }, this)) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(heading(toQt(translated("Before")), this));
    column->addWidget(beforeName_);
    column->addWidget(before_, 1);
    column->addSpacing(padding);
    column->addWidget(heading(toQt(translated("After")), this));
    column->addWidget(afterName_);
    column->addWidget(after_, 1);
    column->addWidget(note_);
    note_->hide();
    setObjectName(QStringLiteral("samples"));
    before_->setObjectName(QStringLiteral("before"));
    after_->setObjectName(QStringLiteral("after"));
    before_->setAccessibleName(toQt(translated("Before")));
    after_->setAccessibleName(toQt(translated("After")));
    hide();
}

void SamplePane::setSamples(std::vector<Sample> samples) {
    samples_ = std::move(samples);
    std::vector<WordsInFaces::Words> words;
    for (const Sample& sample : samples_) {
        words.push_back({sample.text, sample.standIn});
    }
    before_->show(std::move(words));
    beforeName_->setText( // TRANSLATORS: the lacking fonts, and those of the desktop that stand in
                          // for them
        toQt(translated("%1, shown in %2"))
            .arg(namesOf(samples_, [](const Sample& sample) { return sample.lacking; }),
                 namesOf(samples_, [](const Sample& sample) { return sample.standIn.name; })));
    setVisible(!samples_.empty());
    showChosen();
}

void SamplePane::choose(const std::string& name) {
    if (std::exchange(chosen_, name) != name) {
        showChosen();
    }
}

void SamplePane::showChosen() {
    const auto face =
        chosen_.empty() || !services_.source.face ? std::nullopt : services_.source.face(chosen_);
    known_ = face.has_value();
    std::vector<WordsInFaces::Words> words;
    for (const Sample& sample : samples_) {
        if (face) {
            words.push_back({sample.text, *face});
        }
    }
    afterName_->setText(chosen_.empty() ? toQt(translated("Choose a font in the list."))
                                        : toQt(chosen_));
    after_->show(std::move(words));
}

void SamplePane::note() {
    const QString missing = after_->missing();
    if (!chosen_.empty() && (!known_ || after_->isBroken())) {
        note_->setText(toQt(translated("This font cannot be shown.")));
    } else if (!missing.isEmpty()) {
        note_->setText(toQt(translated("Not in this font: %1")).arg(missing));
    } else {
        note_->clear();
    }
    note_->setVisible(!note_->text().isEmpty());
}

} // namespace host
