#pragma once

#include <QAbstractListModel>

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

namespace quellon {

/// A list of values for a list view. Telling it values that it has already changes nothing, and a change keeps the
/// place to which the view is scrolled.
template <typename Value>
class ValueListModel final : public QAbstractListModel {
public:
    /// One row in words: for the accessibility tree and the tool tip.
    using Describe = std::function<QString(const Value&)>;

    explicit ValueListModel(Describe describe) : describe_(std::move(describe)) {}

    void setValues(const std::vector<Value>& values)
    {
        const int before = rowCount();
        const int after = static_cast<int>(values.size());
        if (after < before) beginRemoveRows({}, after, before - 1);
        if (after > before) beginInsertRows({}, before, after - 1);
        const std::vector<Value> former = std::exchange(values_, values);
        if (after < before) endRemoveRows();
        if (after > before) endInsertRows();
        for (int row = 0; row < std::min(before, after); ++row) {
            if (former[at(row)] != values_[at(row)]) Q_EMIT dataChanged(index(row), index(row));
        }
    }

    [[nodiscard]] const Value& value(const QModelIndex& index) const { return values_[at(index.row())]; }
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(values_.size());
    }
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override
    {
        if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole && role != Qt::ToolTipRole) return {};
        return describe_(value(index));
    }

private:
    Describe describe_;
    std::vector<Value> values_;

    static std::size_t at(int row) { return static_cast<std::size_t>(row); }
};

} // namespace quellon
