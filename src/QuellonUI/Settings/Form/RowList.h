#pragma once

#include <QBoxLayout>
#include <QWidget>

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

namespace quellon {

/// Widgets for the rows of a model, one below the other in a layout. Each stays with what its row is about, wherever
/// that moves: so does the focus in it, and what is being typed there. What is no longer there is taken away.
template <typename Row, typename Model>
class RowList {
public:
    using Make = std::function<Row*()>;
    /// Whether two rows are about the same.
    using IsSame = std::function<bool(const Model&, const Model&)>;

    RowList(QBoxLayout& layout, Make make, IsSame isSame)
        : layout_(layout), make_(std::move(make)), isSame_(std::move(isSame))
    {
    }

    [[nodiscard]] const std::vector<Row*>& rows() const { return rows_; }

    /// True when rows came or moved: the order of the focus is then to follow.
    bool setModels(const std::vector<Model>& models)
    {
        std::vector<Row*> former = std::exchange(rows_, {});
        const std::vector<Row*> before = former;
        for (const Model& model : models) rows_.push_back(take(former, model));
        const bool moved = rows_ != before;
        if (moved) arrange();
        for (std::size_t i = 0; i < models.size(); ++i) rows_[i]->setModel(models[i]);
        for (Row* const row : former) remove(*row, before);
        return moved;
    }

private:
    QBoxLayout& layout_;
    Make make_;
    IsSame isSame_;
    std::vector<Row*> rows_;

    Row* take(std::vector<Row*>& former, const Model& model)
    {
        const auto found = std::ranges::find_if(former, [&](const Row* row) { return isSame_(row->model(), model); });
        if (found == former.end()) return make_();
        Row* const row = *found;
        former.erase(found);
        return row;
    }

    void arrange()
    {
        for (Row* const row : rows_) {
            layout_.removeWidget(row);
            layout_.addWidget(row);
            row->show();
            row->raise(); // The order of the children is that in which they are read out.
            row->setFirst(row == rows_.front());
        }
    }

    /// The focus goes to what takes the row's place, or else to the row before.
    void remove(Row& row, const std::vector<Row*>& before)
    {
        if (row.isAncestorOf(row.window()->focusWidget()) && !rows_.empty()) {
            const auto place = static_cast<std::size_t>(std::ranges::find(before, &row) - before.begin());
            rows_[std::min(place, rows_.size() - 1)]->takeFocus();
        }
        layout_.removeWidget(&row);
        row.hide();
        row.deleteLater(); // What it reported may have led here.
    }
};

} // namespace quellon
