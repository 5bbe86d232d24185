#pragma once

#include <QBoxLayout>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace quellon {

/// The rows of a list, each with a `key()`: whoever stays in the list keeps its row, and with it the keyboard. Rows
/// that are no longer needed are hidden and used again.
template <typename Row>
class RowPool {
public:
    /// `begin` is the place of the first row in `layout`, `make` makes another one.
    RowPool(QBoxLayout& layout, int begin, std::function<Row*()> make)
        : layout_(layout), begin_(begin), make_(std::move(make))
    {
    }

    /// Shows one row for each model, in order.
    template <typename Models, typename Key>
    void setModels(const Models& models, const Key& keyOf)
    {
        for (std::size_t i = 0; i < models.size(); ++i) {
            Row* const row = rowFor(models, i, keyOf);
            place(*row, i);
            row->setModel(models[i]);
            row->show();
        }
        shown_ = models.size();
        for (std::size_t i = shown_; i < rows_.size(); ++i) rows_[i]->hide();
    }
    /// Those that are shown, in order.
    [[nodiscard]] std::vector<Row*> shown() const { return {rows_.begin(), rows_.begin() + offset(shown_)}; }

private:
    QBoxLayout& layout_;
    int begin_;
    std::function<Row*()> make_;
    std::vector<Row*> rows_; ///< Those that are shown before those that are not; like this they stand in the layout.
    std::size_t shown_ = 0;

    static std::ptrdiff_t offset(std::size_t place) { return static_cast<std::ptrdiff_t>(place); }

    /// The row that showed the model last, or else one that shows none of those that are to be shown.
    template <typename Models, typename Key>
    Row* rowFor(const Models& models, std::size_t place, const Key& keyOf)
    {
        const auto from = rows_.begin() + offset(place);
        const auto same =
            std::find_if(from, rows_.end(), [&](const Row* row) { return row->key() == keyOf(models[place]); });
        if (same != rows_.end()) return *same;
        const auto isFree = [&](const Row* row) {
            return std::none_of(models.begin() + offset(place), models.end(),
                                [&](const auto& model) { return keyOf(model) == row->key(); });
        };
        const auto free = std::find_if(from, rows_.end(), isFree);
        if (free != rows_.end()) return *free;
        rows_.push_back(make_());
        layout_.insertWidget(begin_ + static_cast<int>(rows_.size()) - 1, rows_.back());
        return rows_.back();
    }
    void place(Row& row, std::size_t place)
    {
        const auto now = std::find(rows_.begin(), rows_.end(), &row);
        const auto wanted = rows_.begin() + offset(place);
        if (now == wanted) return;
        std::rotate(wanted, now, now + 1);
        layout_.removeWidget(&row);
        layout_.insertWidget(begin_ + static_cast<int>(place), &row);
    }
};

} // namespace quellon
