#include "QuellonUI/Panel/MenuPanel.h"

#include "QuellonUI/Kit/WindowSystem.h"
#include "QuellonUI/Panel/MenuContent.h"
#include "QuellonUI/Panel/PanelLayout.h"
#include "QuellonUI/Panel/PanelPlace.h"
#include "QuellonUI/Theme.h"

#include <QApplication>
#include <QCloseEvent>
#include <QEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <utility>

namespace quellon {

namespace {

constexpr double radius = 12.0;
constexpr int barWidth = 10;

/// What a key does to a scroll bar.
QAbstractSlider::SliderAction scrolls(int key)
{
    switch (key) {
    case Qt::Key_PageUp:
        return QAbstractSlider::SliderPageStepSub;
    case Qt::Key_PageDown:
        return QAbstractSlider::SliderPageStepAdd;
    case Qt::Key_Home:
        return QAbstractSlider::SliderToMinimum;
    case Qt::Key_End:
        return QAbstractSlider::SliderToMaximum;
    default:
        return QAbstractSlider::SliderNoAction;
    }
}

} // namespace

MenuPanel::MenuPanel() : isPlaced_(canPlaceWindows())
{
    setWindowTitle(toQString(MenuPanelModel::windowTitle));
    setAccessibleName(windowTitle());
    if (isPlaced_) {
        setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
        setAttribute(Qt::WA_TranslucentBackground);
    } else {
        setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    }
    // The program goes on without it.
    setAttribute(Qt::WA_QuitOnClose, false);
}

MenuPanel::~MenuPanel() = default;

void MenuPanel::make()
{
    content_ = new MenuContent;
    connect(content_, &MenuContent::acted, this, &MenuPanel::acted);
    connect(content_, &MenuContent::laidOut, this, [this] {
        if (isOpen_) fit();
    });
    area_ = new QScrollArea{this};
    area_->setFrameShape(QFrame::NoFrame);
    area_->setFocusPolicy(Qt::NoFocus);
    area_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area_->setWidget(content_);
    area_->viewport()->setAutoFillBackground(false);
    content_->setAutoFillBackground(false);
    makeScrollBar();
    auto* const layout = new QVBoxLayout{this};
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSizeConstraint(QLayout::SetNoConstraint);
    layout->addWidget(area_);
}

void MenuPanel::makeScrollBar()
{
    bar_ = new QScrollBar{Qt::Vertical, this};
    bar_->setFocusPolicy(Qt::NoFocus);
    bar_->hide();
    QScrollBar* const inner = area_->verticalScrollBar();
    connect(inner, &QScrollBar::rangeChanged, this, [this, inner](int from, int to) {
        bar_->setSingleStep(inner->singleStep());
        bar_->setRange(from, to);
        bar_->setVisible(to > from);
        bar_->raise();
    });
    connect(inner, &QScrollBar::valueChanged, bar_, &QScrollBar::setValue);
    connect(bar_, &QScrollBar::valueChanged, inner, &QScrollBar::setValue);
}

void MenuPanel::setModel(const MenuPanelModel& model)
{
    if (model == model_ && content_ != nullptr) return;
    model_ = model;
    if (isOpen_) show(model_);
}

void MenuPanel::show(const MenuPanelModel& model)
{
    content_->setModel(model);
    content_->layOut();
    fit();
}

void MenuPanel::openAt(const QPoint& anchor, const QRect& freeArea)
{
    anchor_ = anchor;
    freeArea_ = freeArea;
    if (content_ == nullptr) make();
    if (!isOpen_) {
        isComposed_ = hasCompositor();
        sinceLeft_.invalidate();
        area_->verticalScrollBar()->setValue(0);
    }
    const bool opens = !isOpen_;
    isOpen_ = true;
    show(model_);
    QWidget::show();
    raise();
    activateWindow();
    if (!opens) return;
    // No control has the keyboard yet: the first Tab gives it to the first.
    content_->setFocus(Qt::OtherFocusReason);
    Q_EMIT opened();
}

void MenuPanel::dismiss()
{
    if (!std::exchange(isOpen_, false)) return;
    hide();
    Q_EMIT closed();
}

bool MenuPanel::closedJustNow() const
{
    constexpr qint64 click = 300; // milliseconds from press to release, and a little
    return !isOpen_ && sinceLeft_.isValid() && sinceLeft_.elapsed() < click;
}

void MenuPanel::fit()
{
    const QSize wanted{PanelLayout::width, content_->contentHeight()};
    content_->resize(wanted);
    if (isPlaced_) {
        const QRect place = panelPlace(anchor_, wanted, freeArea_);
        if (place != geometry()) setGeometry(place);
        shape();
    } else {
        setFixedSize(wanted.boundedTo(freeArea_.size()));
    }
}

void MenuPanel::shape()
{
    if (isComposed_) {
        clearMask();
        return;
    }
    QPainterPath path;
    path.addRoundedRect(QRectF{rect()}, radius, radius);
    setMask(QRegion{path.toFillPolygon().toPolygon()});
}

bool MenuPanel::event(QEvent* event)
{
    if (event->type() == QEvent::WindowDeactivate && isOpen_ && isPlaced_) leave();
    return QWidget::event(event);
}

/// Goes, unless it is a menu of its own that has the keyboard: then that is looked at again when the menu is gone.
void MenuPanel::leave()
{
    QWidget* const popup = QApplication::activePopupWidget();
    if (popup == nullptr) {
        sinceLeft_.start();
        dismiss();
        return;
    }
    auto* const menu = qobject_cast<QMenu*>(popup);
    if (menu == nullptr) return;
    const auto lookAgain = [this] {
        if (isOpen_ && !isActiveWindow()) leave();
    };
    connect(menu, &QMenu::aboutToHide, this, lookAgain,
            static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
}

/// Never refuses: the end of the program asks every window.
void MenuPanel::closeEvent(QCloseEvent* event)
{
    dismiss();
    event->accept();
}

void MenuPanel::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Cancel) || event->matches(QKeySequence::Close)) {
        dismiss();
        return;
    }
    const auto action = scrolls(event->key());
    if (action == QAbstractSlider::SliderNoAction) {
        QWidget::keyPressEvent(event);
        return;
    }
    area_->verticalScrollBar()->triggerAction(action);
}

void MenuPanel::paintEvent(QPaintEvent* /*event*/)
{
    const Theme& theme = Theme::of(palette());
    QPainter painter{this};
    if (!isPlaced_) {
        painter.fillRect(rect(), theme.background);
        return;
    }
    constexpr double half = 0.5;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(theme.border);
    painter.setBrush(theme.background);
    painter.drawRoundedRect(QRectF{rect()}.adjusted(half, half, -half, -half), radius, radius);
}

void MenuPanel::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    if (bar_ == nullptr) return;
    const int inset = static_cast<int>(radius);
    bar_->setPageStep(height());
    bar_->setGeometry(width() - barWidth - 1, inset, barWidth, height() - 2 * inset);
}

} // namespace quellon
