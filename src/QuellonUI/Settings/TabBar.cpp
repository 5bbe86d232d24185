#include "QuellonUI/Settings/TabBar.h"

#include "QuellonUI/Kit/Symbol.h"
#include "QuellonUI/Theme.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>

#include <algorithm>

namespace quellon {

namespace {

constexpr int symbolSize = 22;
constexpr int leastWidth = 80;
constexpr int sidePadding = 12;
constexpr int topPadding = 7;
constexpr int gap = 3;

} // namespace

TabButton::TabButton(QWidget* parent) : Pressable(parent), action_(new ButtonAction{*this})
{
    setFont(Fonts::caption());
    setCheckable(true);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(action_, &ButtonAction::acted, this, &TabButton::acted);
}

void TabButton::setModel(const SettingsModel::Tab& tab)
{
    action_->setModel(tab.button);
    if (symbol_ != tab.button.symbol) {
        symbol_ = tab.button.symbol;
        update();
    }
    if (isChecked() == tab.selected) return;
    setChecked(tab.selected);
    QAccessible::State changed;
    changed.selected = true;
    QAccessibleStateChangeEvent event{this, changed};
    QAccessible::updateAccessibility(&event);
}

QSize TabButton::sizeHint() const
{
    const int width = fontMetrics().horizontalAdvance(text()) + 2 * sidePadding;
    return {std::max(leastWidth, width), 2 * topPadding + symbolSize + gap + fontMetrics().height()};
}

void TabButton::keyPressEvent(QKeyEvent* event)
{
    // The bar's: for the toolkit's buttons these keys are another Tab.
    if (event->key() == Qt::Key_Left || event->key() == Qt::Key_Right)
        event->ignore();
    else
        Pressable::keyPressEvent(event);
}

void TabButton::paintEvent(QPaintEvent* /*event*/)
{
    constexpr double radius = 8.0;
    const Theme& theme = Theme::of(palette());
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    if (isChecked()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme.track);
        painter.drawRoundedRect(QRectF{rect()}, radius, radius);
    }
    drawHover(painter, QRectF{rect()}, radius);
    if (showsFocus()) drawFocus(painter, QRectF{rect()}, radius);
    const QColor colour = isChecked() ? theme.accentText : theme.secondaryText;
    painter.drawPixmap((width() - symbolSize) / 2, topPadding,
                       symbolPixmap(symbol_, symbolSize, colour, devicePixelRatioF()));
    painter.setPen(colour);
    const QRect title{0, topPadding + symbolSize + gap, width(), fontMetrics().height()};
    painter.drawText(title, static_cast<int>(Qt::AlignCenter | Qt::TextHideMnemonic), text());
}

TabBar::TabBar(QWidget* parent) : FormView(parent), line_(new QHBoxLayout{this})
{
    constexpr int margin = 10;
    constexpr int between = 6;
    line_->setContentsMargins(margin, margin, margin, margin);
    line_->setSpacing(between);
    line_->addStretch(1);
    line_->addStretch(1);
}

void TabBar::setModel(const std::vector<SettingsModel::Tab>& tabs)
{
    while (buttons_.size() < tabs.size()) {
        auto* const button = new TabButton{this};
        line_->insertWidget(line_->count() - 1, button);
        relay(button);
        buttons_.push_back(button);
    }
    for (std::size_t i = 0; i < tabs.size(); ++i) buttons_[i]->setModel(tabs[i]);
}

void TabBar::followPage()
{
    const QWidget* const focus = window()->focusWidget();
    if (focus != open() && std::ranges::find(buttons_, focus) != buttons_.end()) takeFocus();
}

TabButton* TabBar::open() const
{
    const auto found = std::ranges::find_if(buttons_, [](const TabButton* each) { return each->isChecked(); });
    return found != buttons_.end() ? *found : nullptr;
}

void TabBar::takeFocus()
{
    // The reason is one that shows no ring: no key has been pressed.
    if (TabButton* const button = open()) button->setFocus(Qt::PopupFocusReason);
}

void TabBar::keyPressEvent(QKeyEvent* event)
{
    const bool mirrored = layoutDirection() == Qt::RightToLeft;
    if (event->key() == Qt::Key_Left)
        step(mirrored ? 1 : -1);
    else if (event->key() == Qt::Key_Right)
        step(mirrored ? -1 : 1);
    else
        FormView::keyPressEvent(event);
}

void TabBar::step(int by)
{
    const auto from = std::ranges::find_if(buttons_, [](const TabButton* each) { return each->hasFocus(); });
    if (from == buttons_.end()) return;
    const auto place = (from - buttons_.begin()) + by;
    if (place < 0 || place >= static_cast<std::ptrdiff_t>(buttons_.size())) return;
    TabButton* const to = buttons_[static_cast<std::size_t>(place)];
    to->setFocus(Qt::TabFocusReason);
    to->click();
}

} // namespace quellon
