#include "QuellonUI/Toasts/ToastWindow.h"

#include "QuellonUI/Kit/WindowSystem.h"
#include "QuellonUI/Theme.h"
#include "QuellonUI/Toasts/ToastView.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QBitmap>
#include <QEvent>
#include <QGuiApplication>
#include <QPainter>
#include <QVBoxLayout>

namespace quellon {

namespace {

Qt::WindowFlags flagsOfToasts()
{
    Qt::WindowFlags flags = Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                            Qt::WindowDoesNotAcceptFocus | Qt::NoDropShadowWindowHint;
    // Window managers leave a window on the desktop where it came up and below one that fills the screen, and a Wayland
    // compositor moves those of X11 programs to where it likes.
    if (QGuiApplication::platformName() == QLatin1String{"xcb"}) flags |= Qt::BypassWindowManagerHint;
    return flags;
}

QAccessibleInterface* makeAccessible(const QString& className, QObject* object)
{
    if (className != QLatin1String{ToastWindow::staticMetaObject.className()}) return nullptr;
    return new QAccessibleWidget{static_cast<QWidget*>(object), QAccessible::AlertMessage};
}

} // namespace

ToastWindow::ToastWindow(const ToastModel& model) : QWidget(nullptr, flagsOfToasts()), view_(new ToastView{this})
{
    static const bool installed = (QAccessible::installFactory(makeAccessible), true);
    static_cast<void>(installed);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_AlwaysShowToolTips); // it is never the active window
    setAttribute(Qt::WA_MacAlwaysShowToolWindow);
    setFocusPolicy(Qt::NoFocus);
    setWindowTitle(QGuiApplication::applicationDisplayName());
    setModel(model);
}

void ToastWindow::setModel(const ToastModel& model)
{
    if (view_->model() == model) return;
    view_->setModel(model);
    setAccessibleName(toQString(model.notice.title));
    QStringList lines;
    for (const std::string& each : model.notice.text) lines.append(toQString(each));
    setAccessibleDescription(lines.join(QLatin1Char{'\n'}));
    fit();
}

void ToastWindow::showAt(QPoint corner)
{
    move(corner);
    if (isVisible()) return;
    shape();
    show();
    QAccessibleEvent alert{this, QAccessible::Alert};
    QAccessible::updateAccessibility(&alert);
}

void ToastWindow::fit()
{
    if (size() == view_->size()) return;
    setFixedSize(view_->size());
    if (!isVisible()) return;
    shape();
    Q_EMIT resized();
}

void ToastWindow::shape()
{
    // Where nobody composes windows, what is translucent is black.
    const bool isCut = !hasCompositor();
    view_->setFillsCorners(isCut);
    if (!isCut) {
        clearMask();
        return;
    }
    QBitmap outline{size()};
    outline.clear();
    QPainter painter{&outline};
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::color1);
    painter.drawRoundedRect(rect(), ToastView::radius, ToastView::radius);
    painter.end();
    setMask(outline);
}

bool ToastWindow::event(QEvent* event)
{
    const bool result = QWidget::event(event);
    if (event->type() == QEvent::LayoutRequest) fit();
    return result;
}

} // namespace quellon
