#pragma once

#include "QuellonUI/Settings/LogListModel.h"

#include <QFont>
#include <QHash>
#include <QStyledItemDelegate>

class QTextLayout;

namespace quellon {

/// Draws one line of the activity log: the symbol of its kind, the message in as many lines as it needs, the time.
class LogDelegate final : public QStyledItemDelegate {
    Q_OBJECT
public:
    LogDelegate(const LogListModel& model, QObject* parent);

    /// How wide the rows are. True when that has changed, and their heights with it.
    bool setWidth(int width);
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    const LogListModel& model_;
    QFont message_;
    QFont time_;
    int width_ = 0;
    mutable QHash<QString, int> heights_; ///< Of messages at this width: to lay them all out takes its time.

    [[nodiscard]] QRect messageArea(const QRect& row) const;
    int layOut(QTextLayout& layout) const;
    [[nodiscard]] int messageHeight(const QString& message) const;
};

} // namespace quellon
