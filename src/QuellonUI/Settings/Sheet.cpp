#include "QuellonUI/Settings/Sheet.h"

#include "QuellonUI/Kit/Pressable.h"
#include "QuellonUI/Settings/Form/FocusOrder.h"
#include "QuellonUI/Theme.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace quellon {

namespace {

constexpr int margin = 24;
constexpr double radius = 12.0;

} // namespace

Sheet::Sheet(QWidget& window, QWidget& content) : QWidget(&window), content_(content)
{
    hide();
    content.setParent(this);
    window.installEventFilter(this);
    content.installEventFilter(this);
    setGeometry(window.rect());
}

void Sheet::present(QWidget& first)
{
    if (isPresented()) return;
    former_ = window()->focusWidget();
    // What it came from was pressed by keyboard when that shows where the keyboard is.
    const auto* const pressed = qobject_cast<Pressable*>(former_);
    const bool byKeyboard = pressed != nullptr && pressed->showsFocus();
    setGeometry(parentWidget()->rect());
    fit();
    raise();
    show();
    first.setFocus(byKeyboard ? Qt::TabFocusReason : Qt::MouseFocusReason);
}

void Sheet::dismiss()
{
    if (!isPresented()) return;
    const QWidget* const focus = window()->focusWidget();
    const bool hasFocus = focus == nullptr || isAncestorOf(focus);
    hide();
    if (!hasFocus) return;
    if (former_ && former_->isVisible())
        former_->setFocus(Qt::PopupFocusReason);
    else
        QWidget::focusNextPrevChild(true);
}

void Sheet::fit()
{
    const QSize room{width() - 2 * margin, height() - 2 * margin};
    const QSize size = content_.sizeHint().boundedTo(room);
    content_.setGeometry(QRect{QPoint{(width() - size.width()) / 2, (height() - size.height()) / 2}, size});
    update();
}

bool Sheet::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize) {
        setGeometry(parentWidget()->rect());
        fit();
    }
    if (watched == &content_ && event->type() == QEvent::LayoutRequest && isPresented()) fit();
    return QWidget::eventFilter(watched, event);
}

bool Sheet::focusNextPrevChild(bool next)
{
    if (!isPresented()) return QWidget::focusNextPrevChild(next);
    if (QWidget* const widget = FocusOrder::next(*this, next)) {
        widget->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    }
    return true;
}

void Sheet::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) {
        Q_EMIT escaped();
        return;
    }
    QWidget::keyPressEvent(event);
}

void Sheet::mousePressEvent(QMouseEvent* event)
{
    event->accept();
}

void Sheet::paintEvent(QPaintEvent* /*event*/)
{
    constexpr int shadow = 6;
    const Theme& theme = Theme::of(palette());
    const bool dark = theme.background.lightness() < 128;
    QPainter painter{this};
    painter.fillRect(rect(), QColor{0, 0, 0, dark ? 115 : 70});
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QRectF card{content_.geometry()};
    for (int i = shadow; i > 0; --i) {
        painter.setBrush(QColor{0, 0, 0, 10});
        painter.drawRoundedRect(card.adjusted(-i, -i + 2, i, i + 2), radius + i, radius + i);
    }
    painter.setPen(theme.separator);
    painter.setBrush(theme.background);
    painter.drawRoundedRect(card.adjusted(-0.5, -0.5, 0.5, 0.5), radius, radius);
}

} // namespace quellon
