#pragma once

#include <QBoxLayout>

/// Distances that the settings window's parts share, in points.
namespace quellon::SettingsMetrics {

inline constexpr int pageMargin = 18;
inline constexpr int cardGap = 14;
inline constexpr int rowPadding = 5;
/// From the edge of a card to the text of a note below it.
inline constexpr int footerInset = 14;

/// A page: its cards one below the other.
inline void setPage(QBoxLayout& column)
{
    column.setContentsMargins(pageMargin, pageMargin, pageMargin, pageMargin);
    column.setSpacing(cardGap);
}

/// Rows on a card.
inline void setRows(QBoxLayout& column)
{
    constexpr int side = 14;
    constexpr int end = 4;
    column.setContentsMargins(side, end, side, end);
    column.setSpacing(0);
}

/// What stands on a sheet.
inline void setSheet(QBoxLayout& column)
{
    constexpr int margin = 20;
    constexpr int gap = 10;
    column.setContentsMargins(margin, margin, margin, margin);
    column.setSpacing(gap);
}

} // namespace quellon::SettingsMetrics
