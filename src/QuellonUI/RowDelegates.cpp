#include "QuellonUI/RowDelegates.h"

#include "QuellonUI/Symbols.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace quellon {

namespace {

using RowGeometry::inset;
constexpr int gap = 10;
constexpr int barHeight = 4;
constexpr int barDistance = 5;
constexpr int usagePadding = 6;
constexpr int activityPadding = 3;

/// What shows the row that the keyboard or the pointer is on.
void drawHighlight(QPainter& painter, const QStyleOptionViewItem& option, const Theme& theme)
{
    constexpr double radius = 6.0;
    const bool focused = option.state.testFlag(QStyle::State_HasFocus);
    if (!focused && !option.state.testFlag(QStyle::State_MouseOver)) return;
    painter.setPen(focused ? QPen{theme.accent} : QPen{Qt::NoPen});
    painter.setBrush(theme.hover);
    painter.drawRoundedRect(QRectF{option.rect}.adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
}

/// Text on the line `area`, elided where it does not fit.
void drawText(QPainter& painter, const QRect& area, const QFont& font, const QColor& colour, Qt::Alignment side,
              const QString& text)
{
    painter.setFont(font);
    painter.setPen(colour);
    painter.drawText(area, static_cast<int>(side | Qt::AlignVCenter | Qt::TextSingleLine),
                     QFontMetrics{font}.elidedText(text, Qt::ElideRight, area.width()));
}

void drawBar(QPainter& painter, const QRectF& area, double share, const Theme& theme)
{
    const double radius = area.height() / 2;
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.track);
    painter.drawRoundedRect(area, radius, radius);
    if (share <= 0.0) return;
    QRectF filled = area;
    filled.setWidth(std::max(area.height(), area.width() * std::min(share, 1.0)));
    painter.setBrush(theme.accent);
    painter.drawRoundedRect(filled, radius, radius);
}

QColor kindColour(GuardEvent::Kind kind, const Theme& theme)
{
    switch (kind) {
    case GuardEvent::Kind::info:
        break;
    case GuardEvent::Kind::warning:
        return theme.warning;
    case GuardEvent::Kind::enforced:
        return theme.bad;
    }
    return Qt::transparent;
}

} // namespace

UsageDelegate::UsageDelegate(const UsageListModel& model, QObject* parent)
    : QStyledItemDelegate(parent),
      model_(model),
      theme_(Theme::of({})),
      name_(Fonts::body()),
      numbers_(Fonts::caption())
{
}

void UsageDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const OverviewModel::Row& row = model_.value(index);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    drawHighlight(*painter, option, theme_);
    const QRect area = option.rect.adjusted(inset, usagePadding, -inset, -usagePadding);
    QRect line{area.topLeft(), QSize{area.width(), QFontMetrics{name_}.height()}};
    const QString bytes = toQString(row.bytes);
    const QString share = toQString(row.shareText);
    const QFontMetrics numbers{numbers_};
    const int shareWidth = numbers.horizontalAdvance(QStringLiteral("100%"));
    drawText(*painter, line, numbers_, theme_.faintText, Qt::AlignRight, share);
    line.adjust(0, 0, -shareWidth - gap, 0);
    drawText(*painter, line, numbers_, theme_.secondaryText, Qt::AlignRight, bytes);
    line.adjust(0, 0, -numbers.horizontalAdvance(bytes) - gap, 0);
    drawText(*painter, line, name_, theme_.text, Qt::AlignLeft, toQString(row.app));
    drawBar(*painter, QRectF(area.left(), line.bottom() + 1 + barDistance, area.width(), barHeight), row.share, theme_);
    painter->restore();
}

QSize UsageDelegate::sizeHint(const QStyleOptionViewItem& /*option*/, const QModelIndex& /*index*/) const
{
    return {0, 2 * usagePadding + QFontMetrics{name_}.height() + barDistance + barHeight};
}

ActivityDelegate::ActivityDelegate(const ActivityListModel& model, QObject* parent)
    : QStyledItemDelegate(parent), model_(model), theme_(Theme::of({})), font_(Fonts::caption())
{
}

void ActivityDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    constexpr int dot = 6;
    const OverviewModel::LogLine& line = model_.value(index);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    drawHighlight(*painter, option, theme_);
    QRect area = option.rect.adjusted(inset, activityPadding, -inset, -activityPadding);
    const QString time = toQString(line.time);
    drawText(*painter, area, font_, theme_.faintText, Qt::AlignLeft, time);
    area.setLeft(area.left() + QFontMetrics{font_}.horizontalAdvance(time) + gap);
    painter->setPen(Qt::NoPen);
    painter->setBrush(kindColour(line.kind, theme_));
    if (line.kind != GuardEvent::Kind::info) {
        painter->drawEllipse(QRectF(area.left(), area.center().y() - dot / 2.0 + 0.5, dot, dot));
        area.setLeft(area.left() + dot + gap / 2);
    }
    drawText(*painter, area, font_, theme_.text, Qt::AlignLeft, withDrawableSymbols(toQString(line.message), font_));
    painter->restore();
}

QSize ActivityDelegate::sizeHint(const QStyleOptionViewItem& /*option*/, const QModelIndex& /*index*/) const
{
    return {0, 2 * activityPadding + QFontMetrics{font_}.height()};
}

} // namespace quellon
