#include "QuellonUI/Kit/StyleDrawing.h"

#include "QuellonUI/Theme.h"

#include <QPainter>
#include <QStyleOption>

#include <algorithm>
#include <array>

namespace quellon::StyleDrawing {

namespace {

constexpr double radius = 6.0;
constexpr double half = 0.5;

const Theme& themeOf(const QStyleOption& option)
{
    return Theme::of(option.palette);
}

bool is(const QStyleOption& option, QStyle::StateFlag flag)
{
    return option.state.testFlag(flag);
}

/// Within the half pixel that keeps a fine line on the pixels.
QRectF within(const QRect& rect)
{
    return QRectF{rect}.adjusted(half, half, -half, -half);
}

/// Puts the painter back as it was, and fades what is disabled.
class Painting {
public:
    Painting(const QStyleOption& option, QPainter& painter) : painter_(painter)
    {
        constexpr double faint = 0.5;
        painter_.save();
        painter_.setRenderHint(QPainter::Antialiasing);
        if (!is(option, QStyle::State_Enabled)) painter_.setOpacity(faint);
    }
    ~Painting() { painter_.restore(); }
    Painting(const Painting&) = delete;
    Painting& operator=(const Painting&) = delete;

private:
    QPainter& painter_;
};

void ring(const Theme& theme, const QRectF& area, double corner, QPainter& painter)
{
    painter.setPen(QPen{theme.accent, 2.0});
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(area.adjusted(half, half, -half, -half), corner, corner);
}

/// A tick, in a square of 16 points at `at`.
void tick(const QColor& colour, const QPointF& at, QPainter& painter)
{
    const std::array points{at + QPointF{4.2, 8.3}, at + QPointF{6.9, 11.0}, at + QPointF{11.9, 5.2}};
    painter.setPen(QPen{colour, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin});
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(points.data(), static_cast<int>(points.size()));
}

/// An angle that points down at `centre`, turned clockwise.
void chevron(const QColor& colour, const QPointF& centre, double degrees, QPainter& painter)
{
    constexpr std::array points{QPointF{-3.5, -1.75}, QPointF{0.0, 1.75}, QPointF{3.5, -1.75}};
    painter.save();
    painter.translate(centre);
    painter.rotate(degrees);
    painter.setPen(QPen{colour, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin});
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(points.data(), static_cast<int>(points.size()));
    painter.restore();
}

} // namespace

void button(const QStyleOptionButton& option, QPainter& painter)
{
    const Painting painting{option, painter};
    const Theme& theme = themeOf(option);
    const bool primary = option.features.testFlag(QStyleOptionButton::DefaultButton);
    const QRectF area = within(option.rect);
    painter.setPen(primary ? QPen{Qt::NoPen} : QPen{theme.border});
    painter.setBrush(primary ? theme.accentFill : theme.card);
    painter.drawRoundedRect(area, radius, radius);
    if (is(option, QStyle::State_Sunken) || is(option, QStyle::State_MouseOver)) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(is(option, QStyle::State_Sunken) ? theme.pressed : theme.hover);
        painter.drawRoundedRect(area, radius, radius);
    }
    if (is(option, QStyle::State_HasFocus) && is(option, QStyle::State_KeyboardFocusChange)) {
        ring(theme, area, radius, painter);
    }
}

void field(const QStyleOption& option, QPainter& painter)
{
    const Painting painting{option, painter};
    const Theme& theme = themeOf(option);
    const QRectF area = within(option.rect);
    painter.setPen(theme.border);
    painter.setBrush(theme.card);
    painter.drawRoundedRect(area, radius, radius);
    if (is(option, QStyle::State_HasFocus)) ring(theme, area, radius, painter);
}

void checkBox(const QStyleOption& option, QPainter& painter)
{
    constexpr double corner = 4.0;
    const Painting painting{option, painter};
    const Theme& theme = themeOf(option);
    const bool on = is(option, QStyle::State_On) || is(option, QStyle::State_NoChange);
    const QRectF area = within(option.rect);
    painter.setPen(on ? QPen{Qt::NoPen} : QPen{theme.border});
    painter.setBrush(on ? theme.accentFill : theme.card);
    painter.drawRoundedRect(area, corner, corner);
    if (is(option, QStyle::State_On)) tick(Qt::white, option.rect.topLeft(), painter);
    if (is(option, QStyle::State_NoChange)) {
        constexpr double inset = 4.0;
        painter.setPen(QPen{Qt::white, 1.8, Qt::SolidLine, Qt::RoundCap});
        painter.drawLine(QPointF{area.left() + inset, area.center().y()},
                         QPointF{area.right() - inset, area.center().y()});
    }
}

void radioButton(const QStyleOption& option, QPainter& painter)
{
    const Painting painting{option, painter};
    const Theme& theme = themeOf(option);
    const bool on = is(option, QStyle::State_On);
    const QRectF area = within(option.rect);
    painter.setPen(on ? QPen{Qt::NoPen} : QPen{theme.border});
    painter.setBrush(on ? theme.accentFill : theme.card);
    painter.drawEllipse(area);
    if (!on) return;
    constexpr double inset = 5.0;
    painter.setBrush(Qt::white);
    painter.drawEllipse(area.adjusted(inset, inset, -inset, -inset));
}

void focus(const QStyleOption& option, QPainter& painter)
{
    constexpr double corner = 4.0;
    const Painting painting{option, painter};
    ring(themeOf(option), within(option.rect), corner, painter);
}

void frame(const QStyleOption& option, QPainter& painter)
{
    const Painting painting{option, painter};
    painter.setPen(themeOf(option).border);
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(within(option.rect), radius, radius);
}

void panel(const QStyleOption& option, QPainter& painter)
{
    const Painting painting{option, painter};
    const Theme& theme = themeOf(option);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.fillRect(option.rect, theme.card);
    painter.setPen(theme.border);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(option.rect.adjusted(0, 0, -1, -1));
}

void hover(const QStyleOption& option, QPainter& painter)
{
    const bool down = is(option, QStyle::State_Sunken) || is(option, QStyle::State_On);
    if (!down && !is(option, QStyle::State_MouseOver)) return;
    const Painting painting{option, painter};
    painter.setPen(Qt::NoPen);
    painter.setBrush(down ? themeOf(option).pressed : themeOf(option).hover);
    painter.drawRoundedRect(QRectF{option.rect}, radius, radius);
}

void row(const QStyleOption& option, QPainter& painter)
{
    const bool selected = is(option, QStyle::State_Selected);
    if (!selected && !is(option, QStyle::State_MouseOver)) return;
    const Painting painting{option, painter};
    const Theme& theme = themeOf(option);
    painter.setPen(Qt::NoPen);
    painter.setBrush(selected ? theme.accentFill : theme.hover);
    painter.drawRoundedRect(QRectF{option.rect}.adjusted(1, 0, -1, 0), radius, radius);
}

void arrow(const QStyleOption& option, QPainter& painter)
{
    const Painting painting{option, painter};
    chevron(themeOf(option).secondaryText, QRectF{option.rect}.center(), 0.0, painter);
}

void comboBox(const QStyleOptionComboBox& option, const QRect& arrowArea, QPainter& painter)
{
    const Painting painting{option, painter};
    const Theme& theme = themeOf(option);
    const QRectF area = within(option.rect);
    painter.setPen(option.frame ? QPen{theme.border} : QPen{Qt::NoPen});
    painter.setBrush(option.frame ? theme.card : QColor{Qt::transparent});
    painter.drawRoundedRect(area, radius, radius);
    if (is(option, QStyle::State_MouseOver) || is(option, QStyle::State_On)) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme.hover);
        painter.drawRoundedRect(area, radius, radius);
    }
    constexpr double apart = 3.5;
    const QPointF centre = QRectF{arrowArea}.center();
    chevron(theme.secondaryText, centre - QPointF{0.0, apart}, 180.0, painter);
    chevron(theme.secondaryText, centre + QPointF{0.0, apart}, 0.0, painter);
    if (is(option, QStyle::State_HasFocus)) ring(theme, area, radius, painter);
}

void thumb(const QStyleOptionSlider& option, const QRect& area, QPainter& painter)
{
    if (option.maximum <= option.minimum) return;
    constexpr int quiet = 70;
    constexpr int lively = 120;
    constexpr double inset = 2.0;
    const Painting painting{option, painter};
    const bool active = is(option, QStyle::State_MouseOver) || is(option, QStyle::State_Sunken);
    QColor colour = themeOf(option).text;
    colour.setAlpha(active ? lively : quiet);
    const QRectF place = QRectF{area}.adjusted(inset, inset, -inset, -inset);
    const double corner = std::min(place.width(), place.height()) / 2;
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawRoundedRect(place, corner, corner);
}

void menuItem(const QStyleOptionMenuItem& option, QPainter& painter)
{
    constexpr int inset = 4;
    constexpr int side = 16;
    const Painting painting{option, painter};
    const Theme& theme = themeOf(option);
    painter.fillRect(option.rect, theme.card);
    if (option.menuItemType == QStyleOptionMenuItem::Separator) {
        const int middle = option.rect.center().y();
        painter.fillRect(QRect{option.rect.left() + 2 * inset, middle, option.rect.width() - 4 * inset, 1},
                         theme.separator);
        return;
    }
    const bool selected = is(option, QStyle::State_Selected) && is(option, QStyle::State_Enabled);
    const QRect area = option.rect.adjusted(inset, 0, -inset, 0);
    if (selected) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme.accentFill);
        painter.drawRoundedRect(QRectF{area}, radius - 1, radius - 1);
    }
    const QColor colour = selected ? QColor{Qt::white} : theme.text;
    const QRect mark{area.left() + inset, area.center().y() - side / 2 + 1, side, side};
    if (option.checked && option.icon.isNull()) tick(colour, mark.topLeft(), painter);
    option.icon.paint(&painter, mark, Qt::AlignCenter, selected ? QIcon::Selected : QIcon::Normal);
    const QStringList parts = option.text.split(QLatin1Char{'\t'});
    const QRect text = option.rect.adjusted(menuTextLeft, 0, -menuTextRight, 0);
    painter.setFont(option.font);
    painter.setPen(colour);
    painter.drawText(text, static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter | Qt::TextHideMnemonic), parts.front());
    if (parts.size() > 1) painter.drawText(text, static_cast<int>(Qt::AlignRight | Qt::AlignVCenter), parts[1]);
    if (option.menuItemType == QStyleOptionMenuItem::SubMenu) {
        chevron(colour, QPointF(area.right() - 2.0 * inset, area.center().y()), -90.0, painter);
    }
}

} // namespace quellon::StyleDrawing
