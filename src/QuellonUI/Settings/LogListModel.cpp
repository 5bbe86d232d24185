#include "QuellonUI/Settings/LogListModel.h"

#include "QuellonUI/Theme.h"

#include <algorithm>

namespace quellon {

void LogListModel::setRows(const std::vector<OverviewModel::LogLine>& rows)
{
    if (rows == rows_) return;
    // Where the line that was on top is now.
    const auto known = rows_.empty() ? rows.end() : std::ranges::find(rows, rows_.front());
    const auto added = static_cast<std::size_t>(known - rows.begin());
    const std::size_t kept = rows.size() - added;
    if (kept <= rows_.size() && std::equal(known, rows.end(), rows_.begin())) {
        cutTo(kept);
        takeAtTop(rows, added);
        return;
    }
    beginResetModel();
    rows_ = rows;
    endResetModel();
}

void LogListModel::cutTo(std::size_t count)
{
    if (count == rows_.size()) return;
    beginRemoveRows({}, static_cast<int>(count), static_cast<int>(rows_.size()) - 1);
    rows_.resize(count);
    endRemoveRows();
}

void LogListModel::takeAtTop(const std::vector<OverviewModel::LogLine>& rows, std::size_t count)
{
    if (count == 0) return;
    beginInsertRows({}, 0, static_cast<int>(count) - 1);
    rows_.insert(rows_.begin(), rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(count));
    endInsertRows();
}

const OverviewModel::LogLine& LogListModel::row(const QModelIndex& index) const
{
    return rows_[static_cast<std::size_t>(index.row())];
}

int LogListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant LogListModel::data(const QModelIndex& index, int role) const
{
    if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole) return {};
    return toQString(LogTabModel::line(row(index)));
}

} // namespace quellon
