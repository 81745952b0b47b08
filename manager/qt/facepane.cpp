// SPDX-License-Identifier: MIT
#include "manager/qt/facepane.h"

#include "faces/remark.h"
#include "manager/qt/text.h"
#include "manager/qt/userprocess.h"
#include "manager/view/texts.h"

#include <QEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <QVBoxLayout>

#include <utility>

namespace manager {

namespace {

/// An open folder in the colour of a button's text: the toolkit's has light edges on dark ground.
QIcon folderIcon(const QWidget& around) {
    constexpr int side = 16;
    const double scale = around.devicePixelRatioF();
    QPixmap picture(QSize(side, side) * scale);
    picture.setDevicePixelRatio(scale);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(around.palette().color(QPalette::ButtonText), 1.2, Qt::SolidLine,
                        Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QPolygonF({{1.5, 13}, {1.5, 3}, {6, 3}, {7.5, 5}, {13, 5}, {13, 7.5}}));
    painter.drawPolygon(QPolygonF({{1.5, 13}, {4, 7.5}, {15, 7.5}, {12.5, 13}}));
    return picture;
}

} // namespace

FacePane::FacePane(preview::Faces& faces, FaceSource& source,
                   std::function<void(const QString&)> wrote, QWidget* parent)
    : QWidget(parent), source_(source) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(6, 6, 6, 6);
    title_ = new QLabel(this);
    title_->setTextFormat(Qt::PlainText);
    title_->setWordWrap(true);
    QFont font = title_->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.25);
    title_->setFont(font);
    why_ = new QLabel(this);
    why_->setTextFormat(Qt::PlainText);
    why_->setWordWrap(true);
    why_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    why_->setFocusPolicy(Qt::StrongFocus);
    path_ = new PathLabel(this);
    folder_ = new QToolButton(this);
    folder_->setIcon(folderIcon(*this));
    folder_->setAutoRaise(true);
    folder_->setAccessibleName(text(translated("Open the folder of the font")));
    folder_->setToolTip(folder_->accessibleName());
    folder_->hide();
    connect(folder_, &QToolButton::clicked, this,
            [this] { openFolder(QFileInfo(text(shown_.front().file)).absolutePath()); });
    // The order in which they are made is the one of Tab.
    QLayout* const tools = makeTools(std::move(wrote));
    look_ = new LookPanel([this] { applyLook(); }, this);
    look_->hide();
    views_ = new QTabWidget(this);
    views_->setDocumentMode(true);
    lookButton_ = new QToolButton(this);
    lookButton_->setText(text(translated("A&xes and features")));
    lookButton_->setCheckable(true);
    lookButton_->setEnabled(false);
    connect(lookButton_, &QToolButton::toggled, this, [this] { readLook(); });
    auto* const corner = new QWidget(this);
    auto* const beside = new QHBoxLayout(corner);
    constexpr int above = 3; // of the pages: as the tabs stand
    beside->setContentsMargins(0, 0, 0, above);
    beside->addWidget(lookButton_);
    views_->setCornerWidget(corner);
    waterfall_ = new Waterfall(faces, this);
    characters_ = new CharacterPane(faces, this);
    views_->addTab(waterfall_, text(translated("&Text")));
    views_->addTab(characters_, text(translated("&Characters")));
    connect(views_, &QTabWidget::currentChanged, this, [this] { showCharacters(); });
    for (QWidget* const head : {static_cast<QWidget*>(title_), static_cast<QWidget*>(why_),
                                static_cast<QWidget*>(path_), static_cast<QWidget*>(folder_)}) {
        // What is below stays where it is while letters are typed that choose and unchoose.
        QSizePolicy policy = head->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        head->setSizePolicy(policy);
        head->setMinimumHeight(head->fontMetrics().height());
    }
    column->addWidget(title_);
    column->addWidget(why_);
    auto* const place = new QHBoxLayout;
    place->addWidget(path_, 1);
    place->addWidget(folder_);
    column->addLayout(place);
    column->addLayout(tools);
    cut_ = new QLabel(text(translated("Only the beginning of this long text is drawn.")), this);
    cut_->setWordWrap(true);
    cut_->hide();
    column->addWidget(cut_);
    column->addWidget(look_);
    column->addWidget(views_, 1);
}

QLayout* FacePane::makeTools(std::function<void(const QString&)> wrote) {
    auto* const tools = new QHBoxLayout;
    sample_ = new QLineEdit(this);
    sample_->setPlaceholderText(text(translated("Your own text")));
    sample_->setAccessibleName(text(translated("Your own text")));
    sample_->setClearButtonEnabled(true);
    connect(sample_, &QLineEdit::textChanged, this, [this, wrote = std::move(wrote)] {
        wrote(sample_->text());
        const bool isCut = sample_->text().toUtf8().size() > qsizetype{preview::maximumText};
        cut_->setVisible(isCut);
        sample_->setAccessibleDescription(isCut ? cut_->text() : QString());
        showText();
    });
    paper_ = new QComboBox(this);
    paper_->addItem(text(translated("Paper as the window")));
    paper_->addItem(text(translated("Light paper")));
    paper_->addItem(text(translated("Dark paper")));
    paper_->setAccessibleName(text(translated("Paper")));
    connect(paper_, &QComboBox::currentIndexChanged, this, [this](int place) {
        waterfall_->setPaper(static_cast<Paper>(place));
        characters_->setPaper(static_cast<Paper>(place));
    });
    tools->addWidget(sample_, 1);
    tools->addWidget(paper_);
    return tools;
}

void FacePane::show(ChosenFaces chosen) {
    title_->setText(chosen.title);
    title_->setVisible(!chosen.title.isEmpty());
    why_->setText(chosen.why);
    why_->setVisible(!chosen.why.isEmpty());
    path_->setPath(chosen.path);
    path_->setVisible(!chosen.path.isEmpty());
    folder_->setVisible(!chosen.path.isEmpty());
    waterfall_->setEmptyNote(text(chosen.title.isEmpty()
                                      ? translated("Choose a font to see it here.")
                                      : translated("The library has no such font to show.")));
    shown_ = chosen.faces;
    showText();
    waterfall_->setFaces(std::move(chosen.faces));
    readLook();
    showCharacters();
}

void FacePane::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange && folder_ != nullptr) {
        folder_->setIcon(folderIcon(*this));
    }
    QWidget::changeEvent(event);
}

void FacePane::showCharacters() {
    if (views_->currentWidget() != characters_) {
        lettered_.reset(); // read when they are looked at
        awaited_.reset();
        return;
    }
    if (shown_.empty()) {
        lettered_.reset();
        awaited_.reset();
        characters_->show({}, nullptr);
        return;
    }
    const ShownFace& face = shown_.front();
    awaited_ = face.id;
    if (lettered_ == face.id) {
        characters_->grid().tryAgain();
        return;
    }
    source_.readCharacters(face.id, [this, face](std::shared_ptr<const Characters> characters) {
        // Else another one was chosen meanwhile, or it was asked for twice.
        if (awaited_ == face.id && lettered_ != face.id) {
            lettered_ = face.id;
            characters_->show(face, std::move(characters));
        }
    });
}

void FacePane::readLook() {
    const bool isOne = shown_.size() == 1;
    lookButton_->setEnabled(isOne);
    look_->setVisible(isOne && lookButton_->isChecked());
    if (look_->isHidden()) {
        if (isOne && dressed_ == shown_.front().id) {
            applyLook(); // it keeps its look
        } else if (dressed_) {
            dressed_.reset();
            offered_.reset();
            look_->clear();
        }
        return;
    }
    const FaceId id = shown_.front().id;
    if (dressed_ == id && offered_ == id) {
        applyLook();
        return;
    }
    dressed_ = id; // also asked for again, as reading it may have failed
    offered_.reset();
    source_.readFace(
        id, [this, id](const faces::Face& face, const std::vector<faces::Face>& instances) {
            if (dressed_ == id && offered_ != id) { // else another one was chosen meanwhile
                look_->offer(face, instances);
                offered_ = id;
                applyLook();
            }
        });
}

void FacePane::applyLook() {
    if (shown_.size() != 1 || offered_ != shown_.front().id) {
        return;
    }
    shown_.front().axes = look_->axes();
    shown_.front().features = look_->features();
    waterfall_->setLook(shown_.front());
    characters_->setLook(shown_.front());
}

void FacePane::showText() {
    if (const std::string own = sample_->text().toStdString(); !own.empty()) {
        waterfall_->setText(own);
    } else if (shown_.size() < 2) {
        constexpr const char* english =
            faces::marked("The quick brown fox jumps over the lazy dog");
        const std::string words = translated(english);
        waterfall_->setSampleTexts({words, text(words).toUpper().toStdString(), english});
    } else {
        waterfall_->setSampleTexts({translated("Hamburgefonstiv 0123456789")});
    }
}

} // namespace manager
