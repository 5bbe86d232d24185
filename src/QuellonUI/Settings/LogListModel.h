#pragma once

#include "QuellonCore/Presentation/LogTabModel.h"

#include <QAbstractListModel>

#include <vector>

namespace quellon {

/// The lines of the activity log for a list view, newest first. New lines come in at the top and old ones go at the
/// bottom, so that what is selected stays so.
class LogListModel final : public QAbstractListModel {
    Q_OBJECT
public:
    using QAbstractListModel::QAbstractListModel;

    void setRows(const std::vector<OverviewModel::LogLine>& rows);
    [[nodiscard]] const OverviewModel::LogLine& row(const QModelIndex& index) const;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    /// A line in words, for screen readers and for copies.
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

private:
    std::vector<OverviewModel::LogLine> rows_;

    void takeAtTop(const std::vector<OverviewModel::LogLine>& rows, std::size_t count);
    void cutTo(std::size_t count);
};

} // namespace quellon
