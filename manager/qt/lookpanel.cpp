// SPDX-License-Identifier: MIT
#include "manager/qt/lookpanel.h"

#include "manager/qt/flowlayout.h"
#include "manager/qt/text.h"
#include "manager/view/featurenames.h"
#include "manager/view/texts.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace manager {

namespace {

constexpr int steps = 100; ///< of a slider in one of the axis' units

} // namespace

LookPanel::LookPanel(std::function<void()> changed, QWidget* parent)
    : QScrollArea(parent), changed_(std::move(changed)) {
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::ClickFocus); // it scrolls to what Tab reaches
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    clear();
}

QSize LookPanel::sizeHint() const {
    constexpr int lines = 11; // more is scrolled
    return {QScrollArea::sizeHint().width(),
            std::min(neededHeight(), lines * fontMetrics().lineSpacing())};
}

// A scroll area's own has room for a bar, though there may be nothing to scroll.
QSize LookPanel::minimumSizeHint() const {
    return QScrollArea::minimumSizeHint().boundedTo({QWIDGETSIZE_MAX, sizeHint().height()});
}

void LookPanel::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    fit(); // the features need more lines, or less
}

int LookPanel::neededHeight() const {
    const QLayout& layout = *widget()->layout();
    return layout.hasHeightForWidth() ? layout.totalHeightForWidth(viewport()->width())
                                      : layout.totalSizeHint().height();
}

void LookPanel::fit() {
    widget()->setMinimumHeight(neededHeight());
    updateGeometry();
}

std::unique_ptr<QWidget> LookPanel::begin() {
    axes_.clear();
    features_.clear();
    places_.clear();
    instances_ = nullptr;
    auto content = std::make_unique<QWidget>();
    auto* const column = new QVBoxLayout(content.get());
    column->setContentsMargins(0, 0, 6, 0);
    return content;
}

void LookPanel::clear() {
    setWidget(begin().release()); // the one before is deleted
}

void LookPanel::offer(const faces::Face& face, const std::vector<faces::Face>& instances) {
    std::map<std::string, bool> switched;
    for (const auto& [tag, box] : features_) {
        switched.emplace(tag, box->isChecked());
    }
    auto content = begin();
    auto& column = static_cast<QVBoxLayout&>(*content->layout());
    Places own;
    for (const faces::Axis& axis : face.axes) {
        own[axis.tag] = axis.initial;
    }
    for (const auto& [tag, value] : face.position) {
        own[tag] = value;
    }
    places_.push_back(own);
    Places initial;
    for (const faces::Axis& axis : face.axes) {
        initial[axis.tag] = axis.initial;
    }
    auto* const top = new QHBoxLayout;
    column.addLayout(top);
    if (!instances.empty()) {
        addInstances(*top, instances, initial);
    }
    auto grid = std::make_unique<QGridLayout>();
    grid->setColumnStretch(1, 1);
    for (const faces::Axis& axis : face.axes) {
        if (!axis.hidden && axis.minimum < axis.maximum) {
            addAxis(*grid, axis, own[axis.tag]);
        }
    }
    if (grid->count() != 0) {
        column.addLayout(grid.release());
    }
    addFeatures(column, face.features);
    for (const auto& [tag, box] : features_) {
        if (const auto before = switched.find(tag); before != switched.end()) {
            box->setChecked(before->second);
        }
        connect(box, &QCheckBox::toggled, this, [this] { tell(); });
    }
    if (axes_.empty() && features_.empty()) {
        auto* const none = new QLabel(text(translated("This font has no axes and no features.")));
        none->setWordWrap(true);
        column.addWidget(none);
        column.addStretch(1);
    } else {
        addReset(*top);
    }
    setWidget(content.release()); // whole: what is not shown yet has no height
    orderStops();
    fit();
}

// What is made anew comes last in the window.
void LookPanel::orderStops() {
    auto stops = widget()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
    // Made when it is known that there is something to reset, though it stands at the top.
    std::stable_partition(stops.begin(), stops.end(), [this](QWidget* stop) {
        return stop == instances_ || qobject_cast<QPushButton*>(stop) != nullptr;
    });
    QWidget* before = this;
    for (QWidget* const stop : stops) {
        if (stop->focusPolicy() != Qt::NoFocus) { // nothing can come after one that has none
            setTabOrder(before, stop);
            before = stop;
        }
    }
}

void LookPanel::addInstances(QBoxLayout& row, const std::vector<faces::Face>& instances,
                             const Places& initial) {
    instances_ = new QComboBox;
    instances_->setAccessibleName(text(translated("Named instance")));
    instances_->setPlaceholderText(text(translated("Set by hand")));
    const bool isInitial = places_.front() == initial;
    instances_->addItem(text(isInitial ? translated("Default") : translated("As chosen")));
    for (const faces::Face& instance : instances) {
        instances_->addItem(text(instance.names.front().style));
        places_.emplace_back(instance.position.begin(), instance.position.end());
    }
    // None may be named where the file begins.
    if (!isInitial && std::find(places_.begin(), places_.end(), initial) == places_.end()) {
        instances_->addItem(text(translated("Default")));
        places_.push_back(initial);
    }
    instances_->setCurrentIndex(0); // none is, where there is a text for that
    connect(instances_, &QComboBox::activated, this,
            [this](int place) { move(places_[static_cast<std::size_t>(place)]); });
    row.addWidget(instances_, 1);
}

void LookPanel::addAxis(QGridLayout& grid, const faces::Axis& axis, double own) {
    const QString name = text(axisName(axis.tag, axis.name));
    auto* const label = new QLabel(name);
    label->setTextFormat(Qt::PlainText);
    auto* const slider = new QSlider(Qt::Horizontal);
    auto* const value = new QDoubleSpinBox;
    value->setDecimals(2);
    value->setRange(axis.minimum, axis.maximum);
    const double range = axis.maximum - axis.minimum;
    value->setSingleStep(range >= steps ? 1 : range / steps);
    value->setValue(own);
    value->setAccessibleName(name);
    slider->setRange(static_cast<int>(std::ceil(axis.minimum * steps)),
                     static_cast<int>(std::floor(axis.maximum * steps)));
    slider->setSingleStep(static_cast<int>(std::ceil(range)));
    slider->setPageStep(static_cast<int>(std::ceil(range * steps / 10)));
    slider->setValue(static_cast<int>(std::lround(own * steps)));
    slider->setAccessibleName(name);
    connect(slider, &QSlider::valueChanged, value,
            [value](int place) { value->setValue(static_cast<double>(place) / steps); });
    connect(value, &QDoubleSpinBox::valueChanged, this, [this, slider](double place) {
        const QSignalBlocker blocker(slider); // it would round what was typed
        slider->setValue(static_cast<int>(std::lround(place * steps)));
        if (!isMoving_) {
            showInstance();
        }
        tell();
    });
    const int row = grid.rowCount();
    grid.addWidget(label, row, 0);
    grid.addWidget(slider, row, 1);
    grid.addWidget(value, row, 2);
    axes_.emplace(axis.tag, AxisFields{slider, value, value->value()});
}

void LookPanel::addFeatures(QVBoxLayout& column, const std::vector<std::string>& tags) {
    auto* const flow = new FlowLayout;
    flow->setContentsMargins(0, 0, 0, 0);
    for (const std::string& tag : tags) {
        if (isChoice(tag) && !features_.contains(tag)) {
            auto* const box = new QCheckBox(text(featureName(tag)));
            box->setChecked(isOnByItself(tag));
            flow->addWidget(box);
            features_.emplace(tag, box);
        }
    }
    column.addLayout(flow);
}

void LookPanel::addReset(QBoxLayout& row) {
    auto* const button = new QPushButton(text(translated("As the font has it")));
    connect(button, &QPushButton::clicked, this, [this] { reset(); });
    row.addWidget(button);
    if (instances_ == nullptr) {
        row.addStretch(1);
    }
}

void LookPanel::move(const Places& places) {
    isMoving_ = true;
    for (const auto& [tag, value] : places) {
        if (const auto axis = axes_.find(tag); axis != axes_.end()) {
            axis->second.value->setValue(value);
        }
    }
    isMoving_ = false;
    showInstance();
    tell();
}

void LookPanel::showInstance() {
    if (instances_ == nullptr) {
        return;
    }
    const auto isThere = [this](int place) {
        constexpr double rounding = 0.006; // of a field that shows two digits
        const Places& instance = places_[static_cast<std::size_t>(place)];
        return std::all_of(axes_.begin(), axes_.end(), [&](const auto& axis) {
            const auto& [tag, fields] = axis;
            const auto value = instance.find(tag);
            return value != instance.end() &&
                   std::abs(value->second - fields.value->value()) < rounding;
        });
    };
    int shown = instances_->currentIndex();
    if (shown >= 0 && isThere(shown)) {
        return; // others may stand there, too
    }
    for (shown = instances_->count() - 1; shown >= 0 && !isThere(shown);) {
        --shown;
    }
    instances_->setCurrentIndex(shown);
}

void LookPanel::reset() {
    isMoving_ = true;
    for (const auto& [tag, box] : features_) {
        box->setChecked(isOnByItself(tag));
    }
    if (instances_ != nullptr) {
        instances_->setCurrentIndex(0);
    }
    move(places_.front());
}

void LookPanel::tell() {
    if (!isMoving_) {
        changed_();
    }
}

std::vector<preview::AxisValue> LookPanel::axes() const {
    std::vector<preview::AxisValue> values;
    for (const auto& [tag, axis] : axes_) {
        if (axis.value->value() != axis.own && values.size() < preview::maximumAxes) {
            values.push_back({tag, axis.value->value()});
        }
    }
    return values;
}

std::vector<std::string> LookPanel::features() const {
    std::vector<std::string> values;
    for (const auto& [tag, box] : features_) {
        if (box->isChecked() != isOnByItself(tag) && values.size() < preview::maximumFeatures) {
            values.push_back(box->isChecked() ? tag : tag + "=0");
        }
    }
    return values;
}

} // namespace manager
