#pragma once

#include "QuellonCore/Presentation/OverviewModel.h"
#include "QuellonUI/Theme.h"
#include "QuellonUI/ValueListModel.h"

#include <QStyledItemDelegate>

namespace quellon {

using UsageListModel = ValueListModel<OverviewModel::Row>;
using ActivityListModel = ValueListModel<OverviewModel::LogLine>;

namespace RowGeometry {
/// From the edge of a row to its content.
inline constexpr int inset = 8;
} // namespace RowGeometry

/// Draws one application: its name, its bytes, its share as a bar.
class UsageDelegate final : public QStyledItemDelegate {
    Q_OBJECT
public:
    UsageDelegate(const UsageListModel& model, QObject* parent);

    void setTheme(const Theme& theme) { theme_ = theme; }
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    const UsageListModel& model_;
    Theme theme_;
    QFont name_;
    QFont numbers_;
};

/// Draws one line of the activity log.
class ActivityDelegate final : public QStyledItemDelegate {
    Q_OBJECT
public:
    ActivityDelegate(const ActivityListModel& model, QObject* parent);

    void setTheme(const Theme& theme) { theme_ = theme; }
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    const ActivityListModel& model_;
    Theme theme_;
    QFont font_;
};

} // namespace quellon
