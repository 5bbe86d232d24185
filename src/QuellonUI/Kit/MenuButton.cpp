#include "QuellonUI/Kit/MenuButton.h"

#include "QuellonUI/Kit/Symbol.h"
#include "QuellonUI/Kit/ToolTipText.h"
#include "QuellonUI/Theme.h"

#include <QAccessibleWidget>
#include <QHelpEvent>
#include <QMenu>
#include <QPainter>
#include <QToolTip>

namespace quellon {

namespace {

constexpr int topPadding = 2;
constexpr int symbolGap = 4;
constexpr double radius = 5.0;
// With a ground.
constexpr int groundSidePadding = 12;
constexpr int groundTopPadding = 5;
constexpr double groundRadius = 6.0;

/// What a screen reader sees: a button that opens a menu.
class MenuButtonAccessible final : public QAccessibleWidget {
public:
    explicit MenuButtonAccessible(QWidget* widget) : QAccessibleWidget(widget, QAccessible::ButtonMenu) {}

    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State result = QAccessibleWidget::state();
        result.hasPopup = true;
        return result;
    }
    [[nodiscard]] QStringList actionNames() const override
    {
        return QStringList{showMenuAction()} + QAccessibleWidget::actionNames();
    }
    void doAction(const QString& name) override
    {
        if (name == showMenuAction() || name == pressAction())
            static_cast<MenuButton*>(widget())->animateClick();
        else
            QAccessibleWidget::doAction(name);
    }
};

QAccessibleInterface* accessible(const QString& /*className*/, QObject* object)
{
    auto* const button = qobject_cast<MenuButton*>(object);
    return button != nullptr ? new MenuButtonAccessible{button} : nullptr;
}

} // namespace

MenuButton::MenuButton(const QFont& font, QWidget* parent) : Pressable(parent), menu_(new QMenu{this})
{
    static const bool installed = (QAccessible::installFactory(&accessible), true);
    static_cast<void>(installed);
    setFont(font);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    // A click beside the menu only closes it; on this button it would open it again.
    menu_->setAttribute(Qt::WA_NoMouseReplay);
    connect(menu_, &QMenu::aboutToHide, this, qOverload<>(&QWidget::update));
    connect(this, &Pressable::chosen, this, [this] { menu_->popup(mapToGlobal(QPoint{0, height()})); });
}

void MenuButton::setSymbols(std::string_view before, std::string_view behind)
{
    if (before == before_ && behind == behind_) return;
    before_ = before;
    behind_ = behind;
    updateGeometry();
    update();
}

void MenuButton::setTint(Tint tint)
{
    if (tint == tint_) return;
    tint_ = tint;
    update();
}

void MenuButton::setGround()
{
    hasGround_ = true;
    updateGeometry();
    update();
}

int MenuButton::side() const
{
    return hasGround_ ? groundSidePadding : sidePadding;
}

int MenuButton::top() const
{
    return hasGround_ ? groundTopPadding : topPadding;
}

int MenuButton::symbolRoom(const std::string& symbol) const
{
    return symbol.empty() ? 0 : fontMetrics().height() - 1 + symbolGap;
}

QString MenuButton::title() const
{
    return text().replace(QLatin1String{"&&"}, QLatin1String{"&"});
}

QString MenuButton::shownTitle() const
{
    const int room = width() - symbolRoom(before_) - symbolRoom(behind_) - 2 * side();
    return fontMetrics().elidedText(title(), Qt::ElideMiddle, room);
}

QSize MenuButton::sizeHint() const
{
    const int symbols = symbolRoom(before_) + symbolRoom(behind_);
    return {fontMetrics().horizontalAdvance(title()) + 1 + symbols + 2 * side(), fontMetrics().height() + 2 * top()};
}

QSize MenuButton::minimumSizeHint() const
{
    return {symbolRoom(before_) + symbolRoom(behind_) + 2 * side(), sizeHint().height()};
}

bool MenuButton::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip && shownTitle() != title()) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), toolTipOf(title()), this);
        return true;
    }
    return Pressable::event(event);
}

void MenuButton::drawGround(QPainter& painter) const
{
    if (!hasGround_) {
        drawHover(painter, QRectF{rect()}, radius);
        if (showsFocus()) drawFocus(painter, QRectF{rect()}, radius);
        return;
    }
    constexpr double gap = 1.0; // between the ground and the focus ring's outer edge
    const QRectF area = QRectF{rect()}.adjusted(gap, gap, -gap, -gap);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Theme::of(palette()).control);
    painter.drawRoundedRect(area, groundRadius, groundRadius);
    drawHover(painter, area, groundRadius);
    if (showsFocus()) drawFocus(painter, QRectF{rect()}, groundRadius + gap);
}

void MenuButton::paintEvent(QPaintEvent* /*event*/)
{
    const Theme& theme = Theme::of(palette());
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(opacity());
    drawGround(painter);
    const QColor colour = theme.textTint(tint_);
    const int symbol = fontMetrics().height() - 1;
    const int symbolTop = (height() - symbol) / 2;
    const QRect area = rect().adjusted(side(), 0, -side(), 0);
    drawSymbol(painter, {area.left(), symbolTop}, before_, symbol, colour);
    drawSymbol(painter, {area.left() + area.width() - symbol, symbolTop}, behind_, symbol, colour);
    painter.setPen(colour);
    painter.drawText(area.adjusted(symbolRoom(before_), 0, -symbolRoom(behind_), 0), Qt::AlignLeft | Qt::AlignVCenter,
                     shownTitle());
}

} // namespace quellon
