#pragma once

#include <QLayout>
#include <QList>

namespace quellon {

/// Puts widgets one behind the other, and goes on in the next line where there is no room. What is wider than a line
/// gets a line, and is cut to its width.
class FlowLayout final : public QLayout {
    Q_OBJECT
public:
    /// The gap is that between the widgets of a line; between lines there is `lineGap`.
    explicit FlowLayout(int gap, int lineGap);
    ~FlowLayout() override;

    void addItem(QLayoutItem* item) override;
    [[nodiscard]] int count() const override;
    [[nodiscard]] QLayoutItem* itemAt(int index) const override;
    [[nodiscard]] QLayoutItem* takeAt(int index) override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSize() const override;
    [[nodiscard]] Qt::Orientations expandingDirections() const override { return {}; }
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    void setGeometry(const QRect& rect) override;

private:
    int gap_;
    int lineGap_;
    QList<QLayoutItem*> items_;

    /// Goes through the places of the items within `rect`, and gives the height of all lines.
    int arrange(const QRect& rect, bool place) const;
};

} // namespace quellon
