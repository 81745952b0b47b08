// SPDX-License-Identifier: MIT
// How a face is drawn: its axes by slider, its named instances and features by box.
#pragma once

#include "manager/library/library.h"
#include "preview/request.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QScrollArea>
#include <QSlider>

#include <functional>
#include <map>
#include <memory>

class QGridLayout;
class QBoxLayout;
class QVBoxLayout;

namespace manager {

/// [main-thread]
class LookPanel : public QScrollArea {
public:
    /// `changed` is called when the user has set something.
    LookPanel(std::function<void()> changed, QWidget* parent);

    /// Offers what a face has. `instances` are the named ones of its file. Features that the user
    /// has switched and that it has too stay so; axes begin at its own place.
    void offer(const faces::Face& face, const std::vector<faces::Face>& instances);
    void clear();

    /// What is set otherwise than the face has it.
    [[nodiscard]] std::vector<preview::AxisValue> axes() const;
    [[nodiscard]] std::vector<std::string> features() const;

    [[nodiscard]] QSlider* slider(const std::string& tag) const { return axes_.at(tag).slider; }
    [[nodiscard]] QDoubleSpinBox* value(const std::string& tag) const {
        return axes_.at(tag).value;
    }
    [[nodiscard]] QCheckBox* feature(const std::string& tag) const { return features_.at(tag); }
    [[nodiscard]] QComboBox* instances() const { return instances_; } ///< null: there are none

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    struct AxisFields {
        QSlider* slider = nullptr;
        QDoubleSpinBox* value = nullptr;
        double own = 0; ///< where the face stands on it
    };
    using Places = std::map<std::string, double>;

    [[nodiscard]] std::unique_ptr<QWidget> begin();
    /// `initial` is where the file begins.
    void addInstances(QBoxLayout& row, const std::vector<faces::Face>& instances,
                      const Places& initial);
    void addAxis(QGridLayout& grid, const faces::Axis& axis, double own);
    void addFeatures(QVBoxLayout& column, const std::vector<std::string>& tags);
    void addReset(QBoxLayout& row);
    void orderStops();
    void move(const Places& places);
    void tell();
    /// Has the box name the instance where the axes stand, if there is one.
    void showInstance();
    [[nodiscard]] int neededHeight() const;
    void fit();
    void reset();

    std::function<void()> changed_;
    std::map<std::string, AxisFields> axes_;
    std::map<std::string, QCheckBox*> features_;
    QComboBox* instances_ = nullptr;
    std::vector<Places> places_; ///< of the instances, the face's own first
    bool isMoving_ = false;      ///< several axes at once
};

} // namespace manager
