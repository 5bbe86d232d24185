#include "QuellonUI/Settings/LogDelegate.h"

#include "QuellonUI/Kit/Symbol.h"
#include "QuellonUI/Theme.h"

#include <QFontMetrics>
#include <QPainter>
#include <QTextLayout>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace quellon {

namespace {

constexpr int symbolSize = 16;
constexpr int inset = 12;
constexpr int gap = 8;
constexpr int padding = 6;

Tint tint(GuardEvent::Kind kind)
{
    switch (kind) {
    case GuardEvent::Kind::info:
        break;
    case GuardEvent::Kind::warning:
        return Tint::orange;
    case GuardEvent::Kind::enforced:
        return Tint::red;
    }
    return Tint::secondary;
}

void drawGround(QPainter& painter, const QStyleOptionViewItem& option, const Theme& theme)
{
    constexpr double radius = 6.0;
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    const bool focused = option.state.testFlag(QStyle::State_HasFocus);
    if (!selected && !focused) return;
    QColor ground = theme.accent;
    constexpr float faint = 0.18F;
    ground.setAlphaF(faint);
    painter.setPen(focused ? QPen{theme.accent} : QPen{Qt::NoPen});
    painter.setBrush(selected ? QBrush{ground} : QBrush{Qt::NoBrush});
    painter.drawRoundedRect(QRectF{option.rect}.adjusted(4.5, 1.5, -4.5, -1.5), radius, radius);
}

} // namespace

LogDelegate::LogDelegate(const LogListModel& model, QObject* parent)
    : QStyledItemDelegate(parent), model_(model), message_(Fonts::callout()), time_(Fonts::caption2())
{
}

bool LogDelegate::setWidth(int width)
{
    if (width == width_) return false;
    width_ = width;
    heights_.clear();
    return true;
}

QRect LogDelegate::messageArea(const QRect& row) const
{
    const int time = QFontMetrics{time_}.horizontalAdvance(QStringLiteral("00:00:00"));
    return row.adjusted(inset + symbolSize + gap, padding, -inset - time - gap, -padding);
}

/// Breaks the message into lines of the column's width. How high they are together.
int LogDelegate::layOut(QTextLayout& layout) const
{
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    const int width = messageArea(QRect{0, 0, width_, 0}).width();
    double height = 0.0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        line.setPosition({0.0, height});
        height += line.height();
    }
    layout.endLayout();
    return static_cast<int>(std::ceil(height));
}

int LogDelegate::messageHeight(const QString& message) const
{
    constexpr int mostKept = 1'000;
    const auto known = heights_.constFind(message);
    if (known != heights_.constEnd()) return *known;
    if (heights_.size() >= mostKept) heights_.clear();
    QTextLayout layout{message, message_};
    const int height = layOut(layout);
    heights_.insert(message, height);
    return height;
}

QSize LogDelegate::sizeHint(const QStyleOptionViewItem& /*option*/, const QModelIndex& index) const
{
    const int height = messageHeight(toQString(model_.row(index).message));
    return {width_, std::max(height, symbolSize) + 2 * padding};
}

void LogDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const OverviewModel::LogLine& line = model_.row(index);
    const Theme& theme = Theme::of(option.widget->palette());
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    drawGround(*painter, option, theme);
    const QRect message = messageArea(option.rect);
    const QFontMetrics metrics{message_};
    const QRect firstLine{message.left(), message.top(), message.width(), metrics.height()};
    const QPoint symbol{option.rect.left() + inset, firstLine.center().y() - symbolSize / 2};
    painter->drawPixmap(symbol, symbolPixmap(LogTabModel::symbol(line.kind), symbolSize, theme.tint(tint(line.kind)),
                                             option.widget->devicePixelRatioF()));
    QTextLayout layout{toQString(line.message), message_};
    layOut(layout);
    painter->setPen(theme.text);
    layout.draw(painter, message.topLeft());
    painter->setFont(time_);
    painter->setPen(theme.secondaryText);
    const QRect time = firstLine.adjusted(0, 0, option.rect.right() - inset - firstLine.right(), 0);
    painter->drawText(time, static_cast<int>(Qt::AlignRight | Qt::AlignVCenter), toQString(line.time));
    painter->restore();
}

} // namespace quellon
