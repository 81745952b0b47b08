// SPDX-License-Identifier: MIT
// Widgets one after the other, in as many lines as they need.
#pragma once

#include <QLayout>

#include <memory>
#include <vector>

namespace manager {

/// [main-thread]
class FlowLayout : public QLayout {
public:
    explicit FlowLayout(QWidget* parent = nullptr);
    FlowLayout(const FlowLayout&) = delete;
    FlowLayout& operator=(const FlowLayout&) = delete;
    ~FlowLayout() override;

    /// Takes all widgets out; they are deleted later.
    void clear();

    void addItem(QLayoutItem* item) override;
    [[nodiscard]] int count() const override { return static_cast<int>(items_.size()); }
    [[nodiscard]] QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override { return minimumSize(); }
    [[nodiscard]] QSize minimumSize() const override;
    void setGeometry(const QRect& area) override;

private:
    /// Gives the height that is needed.
    int arrange(const QRect& area, bool move) const;

    std::vector<std::unique_ptr<QLayoutItem>> items_;
};

} // namespace manager
