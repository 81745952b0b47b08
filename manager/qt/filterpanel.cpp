// SPDX-License-Identifier: MIT
#include "manager/qt/filterpanel.h"

#include "manager/qt/flowlayout.h"
#include "manager/qt/text.h"
#include "manager/view/featurenames.h"
#include "manager/view/tagnames.h"
#include "manager/view/texts.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace manager {

namespace {

QString nameOfTag(FilterKind kind, const std::string& tag) {
    // TRANSLATORS: the code of your language
    const std::string locale = translated("en");
    switch (kind) {
    case FilterKind::Language:
        return text(languageName(tag, locale));
    case FilterKind::Script:
        return text(scriptName(tag, locale));
    case FilterKind::Axis:
        return text(axisName(tag, {}));
    default:
        return text(tag);
    }
}

} // namespace

FilterPanel::FilterPanel(std::function<void()> changed, QWidget* parent)
    : QWidget(parent), changed_(std::move(changed)) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    button_ = new QToolButton(this);
    button_->setText(text(translated("Filters")));
    button_->setCheckable(true);
    button_->setShortcut(Qt::CTRL | Qt::SHIFT | Qt::Key_F);
    button_->setToolTip(text(translated("Narrow the list by weight, script, licence and more")));
    panel_ = new QWidget(this);
    makeFields();
    panel_->hide();
    connect(button_, &QToolButton::toggled, this, [this](bool shown) {
        panel_->setVisible(shown);
        if (shown) {
            fields_.begin()->second->setFocus();
        }
    });
    offerAgain_.setSingleShot(true);
    connect(&offerAgain_, &QTimer::timeout, this, [this] { offer(std::exchange(waiting_, {})); });
    chips_ = new QWidget(this);
    flow_ = new FlowLayout(chips_);
    chips_->hide();
    column->addWidget(panel_);
    column->addWidget(chips_);
}

void FilterPanel::makeFields() {
    auto* const grid = new QGridLayout(panel_);
    grid->setContentsMargins(8, 2, 8, 2);
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(4);
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 1);
    int place = 0;
    auto* const flags = new FlowLayout();
    for (const FilterKind kind : allFilterKinds) {
        QWidget* const field = makeField(kind);
        fields_.emplace(kind, field);
        if (formOf(kind) == FilterForm::Flag) {
            flags->addWidget(field);
            continue;
        }
        auto* const label = new QLabel(text(titleOf(kind)), panel_);
        label->setBuddy(field);
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        grid->addWidget(label, place / 2, place % 2 * 2);
        grid->addWidget(field, place / 2, place % 2 * 2 + 1);
        ++place;
    }
    grid->addLayout(flags, (place + 1) / 2, 0, 1, 4);
}

QWidget* FilterPanel::makeField(FilterKind kind) {
    const QString title = text(titleOf(kind));
    if (formOf(kind) == FilterForm::Flag) {
        auto* const box = new QCheckBox(title, panel_);
        connect(box, &QCheckBox::toggled, this,
                [this, kind](bool on) { set(kind, on ? "1" : ""); });
        return box;
    }
    if (formOf(kind) == FilterForm::Text) {
        auto* const line = new QLineEdit(panel_);
        line->setAccessibleName(title);
        line->setPlaceholderText(text(translated("Any")));
        connect(line, &QLineEdit::textChanged, this,
                [this, kind](const QString& written) { set(kind, written.toStdString()); });
        return line;
    }
    auto* const box = new QComboBox(panel_);
    box->setAccessibleName(title);
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(8);
    box->addItem(text(translated("Any")), QString());
    int place = 0;
    for (const std::string& choice : filterChoices(kind)) {
        box->addItem(text(choice), QString::number(place++));
    }
    connect(box, &QComboBox::currentIndexChanged, this, [this, kind, box](int index) {
        set(kind, box->itemData(index).toString().toStdString());
    });
    return box;
}

void FilterPanel::offer(const FilterTags& offered) {
    for (const auto& [kind, tags] : offered) {
        auto& box = *static_cast<QComboBox*>(fields_.at(kind));
        if (box.count() == static_cast<int>(tags.size()) + 1 && offered_[kind] == tags) {
            continue; // to name and sort hundreds of languages takes long
        }
        if (box.view()->isVisible()) { // it would close or move under the user
            waiting_[kind] = tags;
            box.view()->installEventFilter(this);
            continue;
        }
        offered_[kind] = tags;
        std::vector<std::pair<QString, QString>> items;
        std::transform(tags.begin(), tags.end(), std::back_inserter(items),
                       [kind = kind](const std::string& tag) {
                           return std::pair(nameOfTag(kind, tag), text(tag));
                       });
        std::sort(items.begin(), items.end(), [](const auto& a, const auto& b) {
            return QString::localeAwareCompare(a.first, b.first) < 0;
        });
        const QSignalBlocker quiet(box);
        while (box.count() > 1) {
            box.removeItem(box.count() - 1);
        }
        for (const auto& [name, tag] : items) {
            box.addItem(name, tag);
        }
        showField(kind);
    }
}

bool FilterPanel::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Hide && !waiting_.empty()) {
        watched->removeEventFilter(this);
        offerAgain_.start(0); // what is chosen first
    }
    return QWidget::eventFilter(watched, event);
}

void FilterPanel::set(FilterKind kind, const std::string& value) {
    const auto known = values_.find(kind);
    if (value == (known == values_.end() ? "" : known->second)) {
        return;
    }
    if (value.empty()) {
        values_.erase(kind);
    } else {
        values_[kind] = value;
    }
    showField(kind);
    showChips();
    changed_();
}

void FilterPanel::setAll(FilterValues values) {
    values_ = std::move(values);
    for (const FilterKind kind : allFilterKinds) {
        showField(kind);
    }
    showChips();
    changed_();
}

void FilterPanel::showField(FilterKind kind) {
    const auto known = values_.find(kind);
    const QString value = known == values_.end() ? QString() : text(known->second);
    QWidget* const field = fields_.at(kind);
    const QSignalBlocker quiet(field);
    if (auto* const box = qobject_cast<QCheckBox*>(field)) {
        box->setChecked(!value.isEmpty());
    } else if (auto* const line = qobject_cast<QLineEdit*>(field)) {
        if (line->text() != value) {
            line->setText(value);
        }
    } else if (auto* const choices = qobject_cast<QComboBox*>(field)) {
        if (choices->findData(value) < 0) { // no face has it any more
            choices->addItem(textOf(kind, value.toStdString()), value);
        }
        choices->setCurrentIndex(choices->findData(value));
    }
}

QString FilterPanel::textOf(FilterKind kind, const std::string& value) const {
    switch (formOf(kind)) {
    case FilterForm::Choice:
        return text(filterChoices(kind).at(static_cast<std::size_t>(std::stoi(value))));
    case FilterForm::Tag:
        return nameOfTag(kind, value);
    default:
        return text(value);
    }
}

void FilterPanel::showChips() {
    const bool hadFocus = chips_->isAncestorOf(focusWidget());
    flow_->clear();
    const auto add = [this](const QString& shown, const QString& heard) {
        auto* const chip = new QToolButton(chips_);
        chip->setText(QString(shown).replace('&', QStringLiteral("&&")) + QStringLiteral("  ✕"));
        chip->setAccessibleName(heard);
        chip->setToolTip(heard);
        chip->setFocusPolicy(Qt::StrongFocus);
        flow_->addWidget(chip);
        return chip;
    };
    for (const auto& [kind, value] : values_) {
        const QString title = text(titleOf(kind));
        const QString shown = formOf(kind) == FilterForm::Flag
                                  ? title
                                  : QStringLiteral("%1: %2").arg(title, textOf(kind, value));
        QToolButton* const chip =
            add(shown, text(translated("Remove the filter \"%1\"")).arg(shown));
        connect(chip, &QToolButton::clicked, this, [this, kind = kind] { set(kind, ""); });
    }
    if (values_.size() > 1) {
        const QString all = text(translated("Remove all filters"));
        connect(add(all, all), &QToolButton::clicked, this, [this] { clear(); });
    }
    chips_->setVisible(!values_.empty());
    if (hadFocus) {
        button_->setFocus();
    }
}

} // namespace manager
