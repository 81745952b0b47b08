// SPDX-License-Identifier: MIT
// The filters beside the search: fields that come and go by a button, and a chip of each that is
// set, which takes it away.
#pragma once

#include "manager/view/facefilters.h"

#include <QTimer>
#include <QWidget>

#include <functional>
#include <map>

class QCheckBox;
class QComboBox;
class QGridLayout;
class QLineEdit;
class QToolButton;

namespace manager {

class FlowLayout;

/// [main-thread]
class FilterPanel : public QWidget {
public:
    /// `changed` is called when another value is set.
    FilterPanel(std::function<void()> changed, QWidget* parent);

    /// What shows and hides the fields, to stand elsewhere.
    [[nodiscard]] QToolButton& button() { return *button_; }
    /// Offers the languages, scripts and features that the library has.
    void offer(const FilterTags& offered);
    [[nodiscard]] const FilterValues& values() const { return values_; }
    void set(FilterKind kind, const std::string& value);
    /// Takes all other filters away.
    void setAll(FilterValues values);
    void clear() { setAll({}); }
    /// The field of a filter.
    [[nodiscard]] QWidget* field(FilterKind kind) const { return fields_.at(kind); }

protected:
    /// Offers what came while its list was open.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void makeFields();
    QWidget* makeField(FilterKind kind);
    void showField(FilterKind kind);
    void showChips();
    [[nodiscard]] QString textOf(FilterKind kind, const std::string& value) const;

    std::function<void()> changed_;
    FilterValues values_;
    FilterTags offered_;
    FilterTags waiting_; ///< to be offered once their lists are closed
    QTimer offerAgain_;
    std::map<FilterKind, QWidget*> fields_;
    QToolButton* button_ = nullptr;
    QWidget* panel_ = nullptr;
    QWidget* chips_ = nullptr;
    FlowLayout* flow_ = nullptr;
};

} // namespace manager
